#pragma once

#include <QVector>

class NgmMatrix;
class NgmVModel;

namespace orvenal {

/// Matrices of sills, judged whatever the units of their variables are: eigenvalues of a matrix say
/// nothing of a variable whose values are much smaller than those of another.
namespace Coregionalization {

/// The smallest eigenvalue of the matrix of correlations that belongs to a matrix of sills; its
/// variables without a sill are left out. -1 when such a variable has a cross sill, or another one
/// a negative sill.
double smallestEigenvalue(const NgmMatrix &sills);

/// Makes all correlations of a matrix smaller by a fraction, which raises its eigenvalues.
void shrink(NgmMatrix &sills, double fraction);

/// Powers of two near the standard deviations of the total sills of a model: units in which its
/// variables have similar sizes. Changing them rounds nothing.
QVector<double> exactUnits(const NgmVModel &model);

/// The model of variables that are multiplied by factors.
void rescale(NgmVModel &model, const QVector<double> &factors);

/// Keeps a model whose matrices are positive semi-definite but for roundings so when it is written
/// and read.
void stabilize(NgmVModel &model);

}  // namespace Coregionalization

}  // namespace orvenal
