#pragma once

#include "basic/calc/NbcAProgressComposite.h"
#include "geos/base/NgcACalculator.h"

/// A calculator made of sub-calculators that run one after another, each with its share of the
/// progress. Its own data sets are checked, but their variables are left to the sub-calculators to
/// open.
class NgcACalculatorComposite : public NbcAProgressComposite<NgcACalculator>
{
public:
  ~NgcACalculatorComposite() override;

protected:
  NgcACalculatorComposite();

  void _doFinalChecks() override;
};
