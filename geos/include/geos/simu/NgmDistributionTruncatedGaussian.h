#pragma once

#include "geos/simu/NgmDistributionUniformD.h"

#include <array>

/// Standard normal law given that the value lies in [min, max]. An undefined min is -20, an
/// undefined max is 20.
///
/// Sample:   rejection, the interval being cut at -2, 0 and 2, each piece with its own
///           envelope: exponential between the cuts, |x| exp(-x^2 / 2) beyond them. A uniform value
///           when the pieces have no weight (empty interval, or so far out that the density
///           underflows).
class NgmDistributionTruncatedGaussian final
    : public NbbCloneable<NgmDistributionTruncatedGaussian, NgmADistribution>
{
public:
  explicit NgmDistributionTruncatedGaussian(quint64 seed, tSize size = DEFAULT_SIZE,
                                            bool trace = false);
  NgmDistributionTruncatedGaussian(double min, double max, quint64 seed, tSize size = DEFAULT_SIZE,
                                   bool trace = false);

  double nextR() override;
  double getDf(double value) const override;
  double getCdf(double value) const override;
  double getInvCdf(double p) const override;
  double getLowerBound() const override { return _min; }
  double getUpperBound() const override { return _max; }
  bool givesInteger() const override { return false; }
  bool hasCdf() const override { return true; }
  QString getParamInfo(const NbdVariableDetails &details) const override;

  /// The streams go on.
  void setBounds(double min, double max);

private:
  /// One piece of the interval: its bounds and the share of all pieces up to it.
  struct Piece
  {
    double a = 0.;
    double b = 0.;
    double cumulative = 0.;
  };

  double _min = -10.;
  double _max = 0.;
  std::array<Piece, 4> _pieces;
  bool _isEmpty = false;
  NgmDistributionUniformD _uniform1;
  NgmDistributionUniformD _uniform2;
  NgmDistributionUniformD _uniform3;
  NgmDistributionUniformD _uniform4;
};
