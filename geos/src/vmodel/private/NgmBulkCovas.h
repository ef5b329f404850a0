#pragma once

#include "geos/vmodel/NgmVModel.h"
#include "vmodel/private/NgmCovaKernels.h"

/// Covariances of whole sample sets: which pairs, in which blocks, and where the results go. The
/// arithmetic is in NgmCovaKernels and in the structures.
///
/// Pairs are worked off in blocks that fit the first-level cache: squared reduced distances of the
/// block (again only for a structure that reduces differently from the one before), one call per
/// structure, then the results. Each pair takes the same operations wherever it stands, so its bits
/// depend on the pair and the model only.
namespace NgmBulkCovas {

/// How structure `index` of the model reduces a separation vector. Pointers into the model.
NgmCovaKernels::Reduction reductionOf(const NgmVModel &model, int index);

/// See NgmVModel::calcAllCovas(); the shape of the matrix has been checked.
void allCovas(const NgmVModel &model, int n, const NgmCovaKernels::Points &samples,
              NgmMatrix &covas, NgmVModelCovaCache &cache, NgmVModel::MatrixPart part);

/// See NgmVModel::calcCovasPointSet(); the shape of the matrix has been checked.
void pointSet(const NgmVModel &model, const NbgVector3D &target, int n,
              const NgmCovaKernels::Points &samples, NgmMatrix &covas, NgmVModelCovaCache &cache);

}  // namespace NgmBulkCovas
