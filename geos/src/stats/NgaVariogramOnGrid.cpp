#include "geos/stats/NgaVariogramOnGrid.h"

#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeAssertion.h"

#include <algorithm>

namespace {

QString pairsName(int i, int j)
{
  return QStringLiteral("NP_%1_%2").arg(i).arg(j);
}

QString sumName(int i, int j)
{
  return QStringLiteral("VARIO_%1_%2").arg(i).arg(j);
}

}  // namespace

NgaVariogramOnGrid::NgaVariogramOnGrid(const NbgGeomGrid &geometry, int nVariables, bool cross,
                                       int macroRank)
    : _geometry(geometry), _nVariables(nVariables), _cross(cross), _macroRank(macroRank)
{
  for (int i = 0; i < nVariables; ++i) {
    for (int j = i; j < (cross ? nVariables : i + 1); ++j) {
      for (const QString &name : {pairsName(i, j), sumName(i, j)})
        _table.createVariableNumeric(name, NbdVariableDetails(name));
    }
  }
  _table.setNSamples(int(geometry.getGridSize()));
  for (NbdVariableDouble *column : _getColumns())
    column->setAllValues(0.);
}

NbdVariableDouble &NgaVariogramOnGrid::getNPairs(int i, int j) const
{
  return _table.getVarDoubleRef(pairsName(i, j));
}

NbdVariableDouble &NgaVariogramOnGrid::getVarioSum(int i, int j) const
{
  return _table.getVarDoubleRef(sumName(i, j));
}

void NgaVariogramOnGrid::doSum(const NgaIAdditive &other)
{
  const auto *map = dynamic_cast<const NgaVariogramOnGrid *>(&other);
  if (!map || map->_geometry != _geometry || map->_nVariables != _nVariables ||
      map->_cross != _cross)
    NBE_FAIL(QStringLiteral("Maps of another size"));
  const QList<NbdVariableDouble *> columns = _getColumns();
  const QList<NbdVariableDouble *> added = map->_getColumns();
  for (int c = 0; c < columns.size(); ++c) {
    double *values = columns[c]->getArray();
    const double *terms = added[c]->getArrayConst();
    for (int cell = 0; cell < _table.getNSamples(); ++cell)
      values[cell] += terms[cell];
  }
}

NgaIAdditive *NgaVariogramOnGrid::clone() const
{
  return new NgaVariogramOnGrid(*this);
}

QList<NbdVariableDouble *> NgaVariogramOnGrid::_getColumns() const
{
  QList<NbdVariableDouble *> columns;
  for (NbdAVariable *column : _table.getAllVars())
    columns << static_cast<NbdVariableDouble *>(column);
  return columns;
}
