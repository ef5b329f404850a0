#pragma once

#include "basic/base/NbbCloneable.h"
#include "basic/geom/NbgGeomGrid.h"
#include "geos/data/NgdADataSet.h"
#include "geos/data/NgdBufferManagerGrid.h"

class NbdDataGrid;
class NbiIntervalIntSmall;
class NbpIProviderGridR;

/// A data set on a regular grid.
class NgdDataSetGrid : public NbbCloneable<NgdDataSetGrid, NgdADataSet>
{
public:
  NgdDataSetGrid();

  using NgdADataSet::setDataProvider;
  void setDataProvider(QSharedPointer<NbpIProviderR> provider) override;
  qint64 getNSamples() const override;
  void updateBoundingBox(NbgBox &box) const override;
  NgdBufferManagerGrid *createBufferManager() const override;
  bool isGrid() const override { return true; }
  void saveFromBufferInParent(const NbdAData &buffer) const override;
  QString debug(int level) const override;

  const NbgGeomGrid &getGeometry() const { return _geometry; }

  using NgdADataSet::loadInBuffer;

  /// Loads a block of nodes, all of them, with the selection as the buffer's selection.
  void loadInBuffer(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                    const NbiIntervalIntSmall &k, NbdDataGrid &buffer) const;
  void loadWholeGrid(NbdDataGrid &buffer) const;

  using NgdADataSet::saveFromBuffer;

  /// Writes a block; nodes that are not selected keep their values.
  void saveFromBuffer(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                      const NbiIntervalIntSmall &k, const NbdDataGrid &buffer) const;

private:
  const NbpIProviderGridR &_getGridProvider() const;
  void _loadSelection(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                      const NbiIntervalIntSmall &k, NbdDataGrid &buffer) const;

  NbgGeomGrid _geometry;
};
