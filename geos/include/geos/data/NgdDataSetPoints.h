#pragma once

#include "basic/base/NbbCloneable.h"
#include "geos/data/NgdADataSet.h"
#include "geos/data/NgdBufferManagerPoints.h"

/// A data set of scattered points.
class NgdDataSetPoints : public NbbCloneable<NgdDataSetPoints, NgdADataSet>
{
public:
  NgdDataSetPoints();

  /// A points data set with the role bindings of any other. With `detach` it has no provider and is
  /// not open.
  NgdDataSetPoints(const NgdADataSet &other, bool detach);

  using NgdADataSet::setDataProvider;
  void setDataProvider(QSharedPointer<NbpIProviderR> provider) override;
  qint64 getNSamples() const override;
  void updateBoundingBox(NbgBox &box) const override;
  NgdBufferManagerPoints *createBufferManager() const override;
  void saveFromBufferInParent(const NbdAData &buffer) const override;
  QString debug(int level) const override;
};
