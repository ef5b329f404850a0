#pragma once

#include "geos/vmodel/NgmVModel.h"

/// Covariances of whole sample sets: which pairs, in which blocks, and where the results go. The
/// arithmetic is in the structures (NgmVStructKernels).
///
/// Pairs are worked off in blocks that fit the first-level cache, with one call per structure and
/// block. Each pair takes the same operations wherever it stands, so its bits depend on the pair
/// and the model only.
namespace NgmBulkCovas {

/// The reduced vector of h for structure `index` of the model.
NbgVector3D reducedVector(const NgmVModel &model, int index, const NbgVector3D &h);

/// Sample coordinates in three columns.
struct Points
{
  const double *x;
  const double *y;
  const double *z;
};

/// See NgmVModel::calcAllCovas(); the shape of the matrix has been checked.
void allCovas(const NgmVModel &model, int n, const Points &samples, NgmMatrix &covas,
              NgmVModelCovaCache &cache, NgmVModel::MatrixPart part);

/// See NgmVModel::calcCovasPointSet(); the shape of the matrix has been checked.
void pointSet(const NgmVModel &model, const NbgVector3D &target, int n, const Points &samples,
              NgmMatrix &covas, NgmVModelCovaCache &cache);

/// See NgmVModel::calcCovasBlockSet(); the shape of the matrix has been checked.
void blockSet(const NgmVModel &model, int nPoints, const NbgVector3D *points, int n,
              const Points &samples, NgmMatrix &covas, NgmVModelCovaCache &cache);

/// Sum of NgmVModel::calcCova(a_i - b_j) over all pairs of two sets of points, for all pairs of
/// variables; `sum` is N x N. A pair whose points are the same counts with the covariance at the
/// origin.
void sumOfPairs(const NgmVModel &model, const QVector<NbgVector3D> &a,
                const QVector<NbgVector3D> &b, NgmMatrix &sum);

}  // namespace NgmBulkCovas
