#pragma once

#include "geos/simu/NgmADistribution.h"

/// Uniform law on ]min, max[.
///
/// Sample:   min + (max - min) x / m, x being the next number and m the modulus of the generator
class NgmDistributionUniformD final : public NbbCloneable<NgmDistributionUniformD, NgmADistribution>
{
public:
  explicit NgmDistributionUniformD(quint64 seed, tSize size = DEFAULT_SIZE, bool trace = false);
  NgmDistributionUniformD(double min, double max, quint64 seed, tSize size = DEFAULT_SIZE,
                          bool trace = false);

  double nextR() override
  {
    return _min +
           (_max - _min) * double(qint64(nextNumber())) / double(qint64(generator().getModulus()));
  }

  /// Passes n samples by.
  void skip(qint64 n);

  double getDf(double value) const override;
  double getCdf(double value) const override;
  double getInvCdf(double p) const override;
  double getLowerBound() const override { return _min; }
  double getUpperBound() const override { return _max; }
  bool givesInteger() const override { return false; }
  bool hasCdf() const override { return true; }
  QString getParamInfo(const NbdVariableDetails &details) const override;

private:
  double _min = 0.;
  double _max = 1.;
};
