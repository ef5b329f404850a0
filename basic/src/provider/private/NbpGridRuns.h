#pragma once

#include "basic/geom/NbgGeomGrid.h"
#include "provider/private/NbpMemoryStorage.h"

/// Appends the nodes of a block of a grid, at positions 0, 1, ...; leaves out those that are not
/// selected when `selectedOnly` is set. Returns the number of nodes of the block.
int appendBlockRuns(const NbpMemoryStorage &storage, const NbgGeomGrid &geometry,
                    const NbiIntervalsIJK &block, bool selectedOnly, NbpRuns &runs);
