#pragma once

#include "basic/base/NbbCloneable.h"
#include "basic/geom/NbgGeomGrid.h"
#include "geos/data/NgdADataSet.h"
#include "geos/data/NgdBufferManagerGrid.h"

class NbdAData;
class NbdDataGrid;
class NbdDataGridExtended;
class NbdDataGridSampled;
class NbdVariableSelection;
class NbiIntervalIntSmall;
class NbpIProviderGridR;

/// A data set on a regular grid.
class NgdDataSetGrid : public NbbCloneable<NgdDataSetGrid, NgdADataSet>
{
public:
  /// What nodes outside the grid receive: undefined values (and they are not selected), those of
  /// the nearest node, or those of the node mirrored at the border node.
  enum BorderOption { BORDER_UNDEFINED = 0, BORDER_NEAREST = 1, BORDER_MIRRORED = 2 };

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

  /// Loads a block with `border` more nodes on each side; those outside the grid are undefined and
  /// not selected. Numeric plain variables only.
  void loadExtendedInBuffer(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                            const NbiIntervalIntSmall &k, const NbgIntVector3D &border,
                            NbdDataGridExtended &buffer) const;

  /// Loads the nodes that the buffer was set to. Numeric plain variables only.
  void loadSampledInBuffer(NbdDataGridSampled &buffer, BorderOption option) const;
  void loadSampledInBuffer(NbdDataGridSampled &buffer) const;

  /// The option of loadSampledInBuffer() when none is given.
  BorderOption getBorderOption() const { return _borderOption; }
  void setBorderOption(BorderOption option) { _borderOption = option; }

  using NgdADataSet::saveFromBuffer;

  /// Writes a block; nodes that are not selected keep their values.
  void saveFromBuffer(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                      const NbiIntervalIntSmall &k, const NbdDataGrid &buffer) const;

  /// Writes the buffer's block, without its border.
  void saveExtendedFromBuffer(const NbdDataGridExtended &buffer) const;

  /// Takes the undefined cells of a sparse grid out of the buffer's selection.
  void deselectUndefinedCells(NbdDataGrid &buffer) const;

protected:
  /// Leaves out the undefined cells of a sparse grid.
  NbiIntervalIntLargeDisjoint _tuneLoadInBufferInterval(
      const NbiIntervalIntLargeDisjoint &ranks) const override;

private:
  const NbpIProviderGridR &_getGridProvider() const;
  void _loadSelection(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                      const NbiIntervalIntSmall &k, NbdDataGrid &buffer) const;
  /// A selection that the provider holds in memory is also bound as a variable.
  void _fillMemorySelection(const NbdVariableSelection &selection, NbdAData &buffer) const;
  void _loadWithBorder(NbdDataGridExtended &buffer, BorderOption option) const;
  void _loadSelectionWithBorder(NbdDataGridExtended &buffer, BorderOption option) const;

  NbgGeomGrid _geometry;
  BorderOption _borderOption = BORDER_UNDEFINED;
};
