#include "geos/base/NgcACalculatorComposite.h"

NgcACalculatorComposite::NgcACalculatorComposite() = default;

NgcACalculatorComposite::~NgcACalculatorComposite()
{
  _finish();
}

void NgcACalculatorComposite::_doFinalChecks()
{
  _checkRules();
}
