#include "geos/interpol/XValRes.h"

#include "basic/base/NbbStringFormat.h"

QString XValRes::debug(int /*level*/) const
{
  const NbbStringFormat format = NbbStringFormat::createFromVarType(Nbd::TYPE_DOUBLE);
  const auto text = [&format](double value) { return format.valueToString(value); };
  return QStringLiteral("XVal estimation             : %1\n").arg(text(estimation)) +
         QStringLiteral("XVal real value             : %1\n").arg(text(realValue)) +
         QStringLiteral("XVal std dev                : %1\n").arg(text(standardDeviation)) +
         QStringLiteral("XVal error                  : %1\n").arg(text(error)) +
         QStringLiteral("XVal std error              : %1\n").arg(text(standardizedError)) +
         QStringLiteral("XVal squared error          : %1\n").arg(text(squaredError)) +
         QStringLiteral("XVal squared std error      : %1\n").arg(text(squaredStandardizedError)) +
         QStringLiteral("XVal root squared error     : %1\n").arg(text(rootSquaredError)) +
         QStringLiteral("XVal root squared std error : %1\n")
             .arg(text(rootSquaredStandardizedError));
}
