#include "geos/base/NgaProportionSum.h"

#include "basic/calc/NbcProportions.h"
#include "basic/error/NbeAssertion.h"

void NgaProportionSum::addCategory(int category, double weight)
{
  _add(category, 1, weight);
}

void NgaProportionSum::addCategories(int n, const int *categories)
{
  // Equal codes usually come in runs; the map is looked up once a run.
  for (int first = 0; first < n;) {
    int last = first + 1;
    while (last < n && categories[last] == categories[first])
      ++last;
    _add(categories[first], last - first, last - first);
    first = last;
  }
}

void NgaProportionSum::doSum(const NgaIAdditive &other)
{
  const auto *sum = dynamic_cast<const NgaProportionSum *>(&other);
  if (!sum)
    NBE_FAIL(QStringLiteral("Not a proportion sum !"));
  for (auto it = sum->_categories.cbegin(); it != sum->_categories.cend(); ++it)
    _add(it.key(), it->count, it->weight);
}

void NgaProportionSum::_add(int category, qint64 count, double weight)
{
  Category &sum = _categories[category];
  sum.count += count;
  sum.weight += weight;
  _totalCount += count;
  _totalWeight += weight;
}

void NgaProportionSum::fill(NbcProportions &record) const
{
  const double definedWeight = _totalWeight - getWeight(NbbGlobal::I32_FFFF);
  for (auto it = _categories.cbegin(); it != _categories.cend(); ++it) {
    record.setNbUnits(it.key(), it->count);
    record.setWeightByCat(it.key(), it->weight);
    if (it.key() != NbbGlobal::I32_FFFF && definedWeight > 0.)
      record.setProportion(it.key(), it->weight / definedWeight);
  }
}

QString NgaProportionSum::debug(int level) const
{
  NbcProportions record;
  fill(record);
  return record.debug(level);
}
