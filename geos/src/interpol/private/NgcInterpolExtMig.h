#pragma once

#include "geos/base/NgcACalculatorSequentialBuffer.h"

#include <QStringList>

#include <vector>

class NbdDataGrid;
class NbiIntervalsIJK;
class NgdDataSetGrid;

/// Brings variables of grids to the samples of a data set.
///
/// A sample receives the value interpolated linearly between the node centres around it; undefined
/// outside the grid and where a node with a positive weight is undefined or not selected. Between
/// the outermost centres and the grid's border the nearest centres count.
///
/// Each grid gives the variables of some roles. In the data set, the variables bound to a role
/// receive those of that role in the order of the grids.
class NgcInterpolExtMig : public NgcACalculatorSequentialBuffer
{
public:
  NgcInterpolExtMig();
  ~NgcInterpolExtMig() override;

  /// The data set is copied.
  void addExternalGrid(const QStringList &roles, const NgdDataSetGrid &grid);

protected:
  void _addRuntimeConstraints() override;
  void _initBufferManager(NgdABufferManager *manager) const override;
  void _processing(NbdAData &buffer) override;

private:
  /// A variable of a grid and the variable of the buffer that it is brought to.
  struct _Transfer
  {
    QString role;
    int from;
    int to;
  };

  struct _Grid
  {
    QString id;
    QStringList roles;
    std::vector<_Transfer> transfers;
  };

  void _migrate(const _Grid &grid, NbdAData &buffer) const;

  /// Loads the cells [firstI, lastI] of a block, and their neighbours, and interpolates the samples
  /// that lie in them.
  void _migrateSlab(const _Grid &grid, const NbiIntervalsIJK &block, int firstI, int lastI,
                    NbdAData &buffer) const;
  int _countPlanesPerSlab(const NgdDataSetGrid &dataSet, const NbiIntervalsIJK &block) const;

  std::vector<_Grid> _grids;
};
