#include "basic/calc/NbcStatMono.h"

#include <algorithm>

QString NbcStatMono::debug(int level) const
{
  const QString indent(2 * std::max(0, level), ' ');
  const auto line = [&](const char *name, double value) {
    return indent + QString::fromLatin1(name) + QStringLiteral(" = ") + NbbGlobal::toString(value) +
           '\n';
  };
  return NbcStatBasic::debug(level) + line("Skewness", _skewness) + line("Kurtosis", _kurtosis) +
         line("Geometric mean", _geometricMean) + line("Harmonic mean", _harmonicMean);
}
