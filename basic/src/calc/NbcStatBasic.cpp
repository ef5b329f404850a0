#include "basic/calc/NbcStatBasic.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

NbcStatBasic::~NbcStatBasic() = default;

void NbcStatBasic::setNDefined(qint64 countNoW, qint64 count)
{
  _nDefinedNoW = countNoW;
  _nDefined = count;
}

void NbcStatBasic::setMinimum(double minimumNoW, double minimum)
{
  _minimumNoW = minimumNoW;
  _minimum = minimum;
}

void NbcStatBasic::setMaximum(double maximumNoW, double maximum)
{
  _maximumNoW = maximumNoW;
  _maximum = maximum;
}

void NbcStatBasic::setVariance(double variance)
{
  _variance = variance;
  _standardDeviation =
      NbbGlobal::isDefined(variance) ? std::sqrt(std::max(0., variance)) : NbbGlobal::D_FFFF;
}

double NbcStatBasic::getVariationCoefficient() const
{
  if (!NbbGlobal::isDefined(_mean) || !NbbGlobal::isDefined(_standardDeviation) || _mean == 0.)
    return NbbGlobal::D_FFFF;
  return _standardDeviation / _mean;
}

QString NbcStatBasic::debug(int level) const
{
  const QString indent(2 * std::max(0, level), ' ');
  QString text;
  const auto addLine = [&](const char *name, const QVariant &value) {
    text += indent + QString::fromLatin1(name) + QStringLiteral(" = ") +
            NbbGlobal::toString(value) + '\n';
  };
  addLine("Total count", _nTotal);
  addLine("Defined count", _nDefined);
  addLine("Defined count (unweighted)", _nDefinedNoW);
  addLine("Weight", _weight);
  addLine("Minimum", _minimum);
  addLine("Minimum (unweighted)", _minimumNoW);
  addLine("Maximum", _maximum);
  addLine("Maximum (unweighted)", _maximumNoW);
  addLine("Mean", _mean);
  addLine("Variance", _variance);
  addLine("Standard deviation", _standardDeviation);
  return text;
}
