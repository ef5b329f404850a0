#pragma once

#include "geos/simu/NgmADistribution.h"

/// Uniform law on the integers min .. max.
///
/// Sample:   min + (x (max - min + 1)) div m in unsigned 64-bit arithmetic; the product wraps when
///           the largest constant set meets more than 2^16 integers, and the law is then another
class NgmDistributionUniformI final : public NbbCloneable<NgmDistributionUniformI, NgmADistribution>
{
public:
  explicit NgmDistributionUniformI(quint64 seed, tSize size = DEFAULT_SIZE, bool trace = false);
  NgmDistributionUniformI(qint64 min, qint64 max, quint64 seed, tSize size = DEFAULT_SIZE,
                          bool trace = false);

  qint64 nextI() override;
  double getLowerBound() const override { return double(_min); }
  double getUpperBound() const override { return double(_max); }
  bool givesInteger() const override { return true; }
  bool hasCdf() const override { return false; }
  QString getParamInfo(const NbdVariableDetails &details) const override;

private:
  qint64 _min = 0;
  qint64 _max = 100;
};
