#pragma once

#include "basic/data/NbdDataTable.h"
#include "basic/geom/NbgGeomGrid.h"
#include "geos/base/NgaIAdditive.h"

class NbdVariableDouble;

/// A variogram map: numbers of pairs and variogram sums of each pair of variables for each
/// increment between the nodes of a grid.
///
/// The cell of an increment is the one that lies that many cells from the middle one. For the
/// variables (i, j) the table has the columns "NP_i_j" and "VARIO_i_j".
class NgaVariogramOnGrid : public NgaIAdditive
{
public:
  /// `macroRank` tells the realization of which the map is made.
  NgaVariogramOnGrid(const NbgGeomGrid &geometry, int nVariables, bool cross, int macroRank);

  const NbgGeomGrid &getGeometry() const { return _geometry; }
  int getNVariables() const { return _nVariables; }
  bool hasCross() const { return _cross; }
  int getMacroRank() const { return _macroRank; }

  /// Number of pairs, and sum of half the products of increments; i <= j, and i = j without cross
  /// variograms. One value per cell.
  NbdVariableDouble &getNPairs(int i, int j) const;
  NbdVariableDouble &getVarioSum(int i, int j) const;

  void doSum(const NgaIAdditive &other) override;
  NgaIAdditive *clone() const override;

private:
  QList<NbdVariableDouble *> _getColumns() const;

  NbgGeomGrid _geometry;
  int _nVariables;
  bool _cross;
  int _macroRank;
  NbdDataTable _table;
};
