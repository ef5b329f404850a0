#pragma once

#include "basic/base/NbbGlobal.h"
#include "basic/base/NbbIDebuggable.h"

/// What a box plot draws: where it stands, the quartiles of its values, and their extremes and
/// mean.
///
/// A record only. Values that were not set are NbbGlobal::D_FFFF, the count is 0.
class NbcBoxPlot : public NbbIDebuggable
{
public:
  NbcBoxPlot() = default;
  NbcBoxPlot(const NbcBoxPlot &) = default;
  NbcBoxPlot &operator=(const NbcBoxPlot &) = default;
  ~NbcBoxPlot() override;

  /// Centre and width of the box along the axis on which boxes stand side by side.
  void setPosition(double center, double width);
  double getCenter() const { return _center; }
  double getWidth() const { return _width; }

  /// Number of values.
  void setCount(qint64 count) { _count = count; }
  qint64 getCount() const { return _count; }

  void setQuartiles(double lower, double median, double upper);
  double getLowerQuartile() const { return _lowerQuartile; }
  double getMedian() const { return _median; }
  double getUpperQuartile() const { return _upperQuartile; }

  void setExtremes(double minimum, double maximum);
  double getMinimum() const { return _minimum; }
  double getMaximum() const { return _maximum; }

  void setMean(double mean) { _mean = mean; }
  double getMean() const { return _mean; }

  /// One line, indented by `level` times two blanks.
  QString debug(int level) const override;

private:
  double _center = NbbGlobal::D_FFFF;
  double _width = NbbGlobal::D_FFFF;
  qint64 _count = 0;
  double _lowerQuartile = NbbGlobal::D_FFFF;
  double _median = NbbGlobal::D_FFFF;
  double _upperQuartile = NbbGlobal::D_FFFF;
  double _minimum = NbbGlobal::D_FFFF;
  double _maximum = NbbGlobal::D_FFFF;
  double _mean = NbbGlobal::D_FFFF;
};
