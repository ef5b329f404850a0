#pragma once

#include "basic/geom/NbgGeomGrid.h"

#include <QList>
#include <QString>

#include <vector>

namespace orvenal {

/// Columns of numbers on a grid, as they are written to files. The values are those of others and
/// have to outlive it: in rank order (third axis fastest), undefined where there is none.
struct GridTable
{
  struct Column
  {
    QString name;   ///< in files
    QString label;  ///< for readers: what it is, with its unit
    QString unit;   ///< empty when it has none, or it is not known
    const std::vector<double> *values;
  };

  NbgGeomGrid geometry;                                  ///< turned about the vertical axis at most
  const std::vector<unsigned char> *selected = nullptr;  ///< 0 where masked; all nodes without it
  QList<Column> columns;
  QString title;
  QString crs;         ///< as a user names it, or WKT; may be empty
  QString lengthUnit;  ///< of coordinates; empty when it is not known

  bool isSelected(qint64 rank) const { return !selected || (*selected)[std::size_t(rank)]; }

  /// The axes of the grid are not those of the coordinates.
  bool isTurned() const { return !geometry.getRotation().isIdentity(0.); }

  /// The smallest of all values; 0 when none is defined.
  double getMinimum() const;

  /// Values of a column along the first axis, in file order; undefined where masked. `row` has as
  /// many elements as the grid has nodes along it.
  void copyRow(const Column &column, int j, int k, std::vector<double> &row) const;
};

}  // namespace orvenal
