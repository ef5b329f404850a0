#pragma once

#include <QString>

namespace orvenal {

struct GridTable;

/// Writes a grid as GSLIB and its kin read it, in the layout of GEO-EAS: a title; the number of
/// columns, with nodes, first node and cell size of the grid behind it (`n nx ny nz x y z dx dy
/// dz`); the names of the columns, one per line; a line for every node, the first axis fastest,
/// then the second one.
///
/// What is undefined or masked has the mark that the title names, -999 unless a value is as low; no
/// value equals it. A grid that is turned has the coordinates of the nodes as its first columns,
/// and no geometry behind their number. `shownName` stands for the file in messages.
void writeGeoEasGrid(const QString &path, const QString &shownName, const GridTable &grid);

}  // namespace orvenal
