#pragma once

#include "basic/provider/NbpIProviderR.h"

class NbgGeomGrid;
class NbiIntervalIntLargeDisjoint;
class NbiIntervalIntSmall;

/// Reading side of a regular grid: blocks of nodes, whole, in the order k fastest, i slowest.
class NbpIProviderGridR : public virtual NbpIProviderR
{
public:
  ~NbpIProviderGridR() override;

  virtual const NbgGeomGrid &getGridGeometry() const = 0;

  /// A sparse grid stores only the cells that are defined.
  virtual bool isSparse() const { return false; }

  /// The defined cells among `ranks`: all of them unless the grid is sparse.
  virtual NbiIntervalIntLargeDisjoint getDefinedRanks(const NbiIntervalIntLarge &ranks) const;

  /// All values of a block, selected or not; `values` has the block's size.
  virtual bool readGrid(const QString &id, const NbiIntervalIntSmall &i,
                        const NbiIntervalIntSmall &j, const NbiIntervalIntSmall &k,
                        NbdAVariable &values) const = 0;

  virtual bool readGridCoordinates(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                                   const NbiIntervalIntSmall &k, NbdVariableDouble *x,
                                   NbdVariableDouble *y, NbdVariableDouble *z) const = 0;

  /// The selection of a block; resizes `selection`. All true without one.
  virtual bool readGridSelection(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                                 const NbiIntervalIntSmall &k,
                                 NbdVariableSelection &selection) const = 0;
};
