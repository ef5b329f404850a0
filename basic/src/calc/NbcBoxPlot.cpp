#include "basic/calc/NbcBoxPlot.h"

NbcBoxPlot::~NbcBoxPlot() = default;

void NbcBoxPlot::setPosition(double center, double width)
{
  _center = center;
  _width = width;
}

void NbcBoxPlot::setQuartiles(double lower, double median, double upper)
{
  _lowerQuartile = lower;
  _median = median;
  _upperQuartile = upper;
}

void NbcBoxPlot::setExtremes(double minimum, double maximum)
{
  _minimum = minimum;
  _maximum = maximum;
}

QString NbcBoxPlot::debug(int level) const
{
  return QString(2 * level, QLatin1Char(' ')) +
         QStringLiteral("Box at %1: n=%2, %3 [%4 %5 %6] %7, mean=%8\n")
             .arg(_center)
             .arg(_count)
             .arg(_minimum)
             .arg(_lowerQuartile)
             .arg(_median)
             .arg(_upperQuartile)
             .arg(_maximum)
             .arg(_mean);
}
