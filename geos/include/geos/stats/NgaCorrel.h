#pragma once

#include "geos/base/NgaStatSum.h"

#include <vector>

/// Running sums of n variables and of their pairs. Entry (i, i) sums variable i alone; entry (i, j)
/// sums variable i over the samples where i and j are both defined, and the products of i and j.
class NgaCorrel : public NgaIAdditive, public NbbIDebuggable
{
public:
  /// `degree` is the highest moment kept.
  NgaCorrel(int nVariables, int degree);

  int getNVariables() const { return _nVariables; }
  NgaStatSum &at(int i, int j) { return _sums[std::size_t(i) * _nVariables + j]; }
  const NgaStatSum &at(int i, int j) const { return _sums[std::size_t(i) * _nVariables + j]; }

  void doSum(const NgaIAdditive &other) override;
  NgaCorrel *clone() const override { return new NgaCorrel(*this); }
  QString debug(int level) const override;

private:
  int _nVariables;
  std::vector<NgaStatSum> _sums;
};
