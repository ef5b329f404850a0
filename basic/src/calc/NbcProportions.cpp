#include "basic/calc/NbcProportions.h"

#include <algorithm>

NbcProportions::~NbcProportions() = default;

void NbcProportions::setNbUnits(int category, qint64 count)
{
  _categories[category].count = count;
}

qint64 NbcProportions::getNbUnits() const
{
  qint64 count = 0;
  for (int category : getValues())
    count += getNbUnits(category);
  return count;
}

void NbcProportions::setWeightByCat(int category, double weight)
{
  _categories[category].weight = weight;
}

void NbcProportions::setProportion(int category, double proportion)
{
  _categories[category].proportion = proportion;
}

QList<int> NbcProportions::getValues() const
{
  QList<int> values = _categories.keys();
  values.removeOne(NbbGlobal::I32_FFFF);
  return values;
}

QString NbcProportions::debug(int level) const
{
  const QString indent(2 * std::max(0, level), ' ');
  QString text;
  for (auto it = _categories.cbegin(); it != _categories.cend(); ++it)
    text += indent + QStringLiteral("Category %1: count = %2, weight = %3, proportion = %4\n")
                         .arg(NbbGlobal::toString(it.key()))
                         .arg(it->count)
                         .arg(it->weight)
                         .arg(it->proportion);
  return text;
}
