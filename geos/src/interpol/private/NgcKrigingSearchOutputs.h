#pragma once

class NgcKrigingOutputs;
class NgdNeighborhoodContext;

/// What a kriging tells of the neighbors of its targets.
namespace NgcKrigingSearchOutputs {

/// Writes number, mean distance, codes and search level of the neighbors of a target. `level`: the
/// search level, -1 for none; a unique neighborhood counts as the standard one. Without neighbors
/// the mean distance stays undefined.
void write(const NgdNeighborhoodContext &context, bool isMoving, int level,
           const NgcKrigingOutputs &outputs, int position);

/// Mean distance of the neighbors to the target, the sample that stands for the target left out;
/// undefined without neighbors.
double calcMeanDistance(const NgdNeighborhoodContext &context, bool isMoving);

}  // namespace NgcKrigingSearchOutputs
