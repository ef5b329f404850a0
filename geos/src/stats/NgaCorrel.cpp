#include "geos/stats/NgaCorrel.h"

#include "basic/error/NbeAssertion.h"

NgaCorrel::NgaCorrel(int nVariables, int degree)
    : _nVariables(nVariables), _sums(std::size_t(nVariables) * nVariables, NgaStatSum(degree))
{
}

void NgaCorrel::doSum(const NgaIAdditive &other)
{
  const auto *correl = dynamic_cast<const NgaCorrel *>(&other);
  if (!correl || correl->_nVariables != _nVariables)
    NBE_FAIL(QStringLiteral("Objects don't have the same size"));
  for (std::size_t k = 0; k < _sums.size(); ++k)
    _sums[k].doSum(correl->_sums[k]);
}

QString NgaCorrel::debug(int level) const
{
  QString text;
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = 0; j < _nVariables; ++j)
      text += QStringLiteral("(%1, %2)\n").arg(i).arg(j) + at(i, j).debug(level);
  }
  return text;
}
