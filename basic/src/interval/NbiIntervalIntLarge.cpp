#include "basic/interval/NbiIntervalIntLarge.h"

#include "basic/error/NbeAssertion.h"

NbiIntervalIntSmallO64 NbiIntervalIntLarge::toSmallO64() const
{
  const NbiIntervalIntSmallO64 result(getLower(), getUpper());
  if (!isEmpty() && !result.isValid())
    NBE_FAIL(QStringLiteral("The interval is too long"));
  return result;
}
