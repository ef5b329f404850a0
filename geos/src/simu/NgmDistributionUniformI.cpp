#include "geos/simu/NgmDistributionUniformI.h"

NgmDistributionUniformI::NgmDistributionUniformI(quint64 seed, tSize size, bool trace)
    : NgmDistributionUniformI(0, 100, seed, size, trace)
{
}

NgmDistributionUniformI::NgmDistributionUniformI(qint64 min, qint64 max, quint64 seed, tSize size,
                                                 bool trace)
    : NbbCloneable(QStringLiteral("UniformI"), seed, size, trace), _min(min), _max(max)
{
}

qint64 NgmDistributionUniformI::nextI()
{
  const quint64 count = quint64(_max) - quint64(_min) + 1;
  return qint64(quint64(_min) + nextNumber() * count / generator().getModulus());
}

QString NgmDistributionUniformI::getParamInfo(const NbdVariableDetails & /*details*/) const
{
  return QStringLiteral("min=%1, max=%2").arg(_min).arg(_max);
}
