#include "geos/data/NgdDataSetPoints.h"

#include "basic/base/NbbDebug.h"
#include "basic/data/NbdDataPoints.h"
#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgBox.h"
#include "basic/provider/NbpIProviderR.h"

NgdDataSetPoints::NgdDataSetPoints() = default;

NgdDataSetPoints::NgdDataSetPoints(const NgdADataSet &other, bool detach) : NbbCloneable(other)
{
  if (detach) {
    _provider.reset();
    _opened = false;
  }
}

void NgdDataSetPoints::setDataProvider(QSharedPointer<NbpIProviderR> provider)
{
  _setDataProvider(provider);
}

qint64 NgdDataSetPoints::getNSamples() const
{
  return getDataProvider() ? getDataProvider()->getSampleCount() : 0;
}

void NgdDataSetPoints::updateBoundingBox(NbgBox &box) const
{
  _requireProvider().updateBoundingBox(box);
}

NgdBufferManagerPoints *NgdDataSetPoints::createBufferManager() const
{
  return new NgdBufferManagerPoints(*this);
}

void NgdDataSetPoints::saveFromBufferInParent(const NbdAData &buffer) const
{
  const auto *points = dynamic_cast<const NbdDataPoints *>(&buffer);
  if (!points)
    NBE_FAIL(QStringLiteral("Passed argument is meant to be NbdDataPoints"));
  if (points->getParentInterval().isValid())
    saveFromBuffer(points->getParentInterval(), *points);
  else
    NbbDebug::printWarning(
        QStringLiteral("NgdDataSetPoints::saveFromBufferInParent: warning empty or invalid "
                       "interval."));
}

QString NgdDataSetPoints::debug(int level) const
{
  return QStringLiteral("DataSetPoints: Nb Dim : %1 / Nb Samp : %2 /")
             .arg(getNDimensions())
             .arg(getNSamples()) +
         NgdADataSet::debug(level);
}
