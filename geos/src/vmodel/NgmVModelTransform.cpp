#include "geos/vmodel/NgmVModel.h"

#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/vmodel/NgmAVStruct.h"

#include <algorithm>
#include <cmath>
#include <functional>

// Models made from models.

namespace {

constexpr double SMALLEST_VARIANCE = 1e-30;
constexpr double SMALLEST_LENGTH = 1e-30;
constexpr double EIGENVALUE_FLOOR = 1e-15;

/// Weight of a variable without variance.
constexpr double LARGEST_WEIGHT = 1e15 - 0.125;

void checkMaximumDistance(double maxDist)
{
  if (!(maxDist >= SMALLEST_LENGTH))
    throw NbeProgrammingError(QStringLiteral("NgmVModel::normalizeModel: Wrong maximum distance"));
}

/// The diagonal of a matrix of the size of the model.
QVector<double> diagonal(const NgmMatrix &matrix, int size)
{
  if (matrix.getNRows() != size || matrix.getNColumns() != size)
    NBE_FAIL_AT(QStringLiteral("vmodel\\NgmVModel"), QStringLiteral("wrong matrix size"));
  QVector<double> values;
  for (int i = 0; i < size; ++i)
    values << matrix(i, i);
  return values;
}

void checkCorrelations(const NgmMatrix &correlations, const QVector<double> &variances)
{
  if (!correlations.isSquared())
    throw NbeProgrammingError(QStringLiteral(
        "NgmVModel::createMultiFromMono: correlation matrix is not a squared matrix"));
  if (!correlations.isSymmetrical(1e-30))
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::createMultiFromMono: correlation matrix is not symmetrical"));
  if (correlations.getNRows() != variances.size())
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::createMultiFromMono: variances array and correlation matrix "
                       "not consistent"));
  if (std::any_of(variances.begin(), variances.end(),
                  [](double variance) { return !(variance >= SMALLEST_VARIANCE); }))
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::createMultiFromMono: all variances must be strictly positive"));
}

}  // namespace

void NgmVModel::normalizeSillsAndRanges(double maxDist, const NgmMatrix &variances)
{
  checkMaximumDistance(maxDist);
  QVector<double> weights = diagonal(variances, _nVariables);
  for (double &weight : weights)
    weight = weight < SMALLEST_VARIANCE ? LARGEST_WEIGHT : 1. / weight;
  _rescale([maxDist](double length) { return length / maxDist; }, weights);
}

void NgmVModel::denormalizeSillsAndRanges(double maxDist, const NgmMatrix &variances)
{
  checkMaximumDistance(maxDist);
  _rescale([maxDist](double length) { return length * maxDist; }, diagonal(variances, _nVariables));
}

void NgmVModel::fitSillsToVariances(const QVector<double> &variances)
{
  if (variances.size() != _nVariables)
    NBE_FAIL_AT(QStringLiteral("vmodel\\NgmVModel"), QStringLiteral("Invalid number of sills"));
  QVector<double> weights(_nVariables);
  for (int i = 0; i < _nVariables; ++i) {
    if (!(getC0IJ(i, i) > 0.))
      NBE_FAIL_AT(QStringLiteral("vmodel\\NgmVModel"), QStringLiteral("Invalid total sills"));
    weights[i] = variances[i] / getC0IJ(i, i);
  }
  _rescale([](double length) { return length; }, weights);
}

NgmVModel NgmVModel::buildFilteredModel(bool removeNugget, const QList<int> &structures) const
{
  if (structures.size() > getNStructures())
    NBE_FAIL_AT(QStringLiteral("vmodel\\NgmVModel"),
                QStringLiteral("too many filtered structures"));
  if (!std::all_of(structures.begin(), structures.end(),
                   [this](int index) { return _isStructure(index); }))
    NBE_FAIL_AT(QStringLiteral("vmodel\\NgmVModel"), QStringLiteral("invalid structure rank"));

  NgmVModel model(*this);
  if (removeNugget)
    model.removeNugget();
  for (int k = getNStructures() - 1; k >= 0; --k)
    if (structures.contains(k))
      model.removeStructure(k);
  model._validateModel();
  return model;
}

template <class Change>
NgmVModel NgmVModel::_withMatrices(int nVariables, Change change) const
{
  NgmVModel model(nVariables);
  model._context = _context;
  model.setNuggetMatrix(change(_nugget));
  for (int k = 0; k < getNStructures(); ++k)
    model._appendStructure(getStructure(k), change(getCoregionalisationMatrix(k)));
  model._validateModel();
  return model;
}

NgmVModel NgmVModel::createMonoFromMulti(const NgmVModel &model, int variable)
{
  if (!model._isVariable(variable))
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::createMonoFromMulti: Invalid variable index !"));
  return extractFromVariables(model, {variable});
}

NgmVModel NgmVModel::createMultiFromMono(const NgmVModel &model, int reference,
                                         const NgmMatrix &correlations,
                                         const QVector<double> &variances)
{
  if (model.getNVariables() != 1)
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::createMultiFromMono: input model is not univariate !"));
  checkCorrelations(correlations, variances);
  const int n = variances.size();
  if (reference < 0 || reference >= n)
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::createMultiFromMono: invalid reference variable"));
  return model._withMatrices(n, [&](const NgmMatrix &sill) {
    NgmMatrix sills(n, n, true);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j <= i; ++j)
        sills.setElement(i, j,
                         std::sqrt(variances[i]) * correlations(i, j) * std::sqrt(variances[j]) *
                             sill(0, 0) / variances[reference]);
    sills.makePositiveDefinite(false, false, EIGENVALUE_FLOOR);
    return sills;
  });
}

NgmVModel NgmVModel::createMultiFromList(const QList<NgmVModel> &models)
{
  if (!std::all_of(models.begin(), models.end(),
                   [](const NgmVModel &model) { return model.getNVariables() == 1; }))
    NBE_FAIL_AT(QStringLiteral("vmodel\\NgmVModel"),
                QStringLiteral("Input models must be univariate !"));
  const int n = models.size();
  NgmVModel result(n);
  if (n > 0)
    result._context = models.first()._context;
  NgmMatrix nugget(n, n, true);
  for (int i = 0; i < n; ++i) {
    nugget.setElement(i, i, models[i].getNugget(0, 0));
    for (int k = 0; k < models[i].getNStructures(); ++k) {
      NgmMatrix sills(n, n, true);
      sills.setElement(i, i, models[i].getCoregionalisationMatrix(k)(0, 0));
      result._appendStructure(models[i].getStructure(k), sills);
    }
  }
  result.setNuggetMatrix(nugget);
  result._validateModel();
  return result;
}

NgmVModel NgmVModel::extractFromVariables(const NgmVModel &model, const QList<int> &variables)
{
  if (!std::all_of(variables.begin(), variables.end(),
                   [&](int variable) { return model._isVariable(variable); }))
    throw NbeProgrammingError(
        QStringLiteral("NgmVModel::extractFromVariables: Invalid variable index !"));
  const int n = variables.size();
  return model._withMatrices(n, [&](const NgmMatrix &matrix) {
    NgmMatrix part(n, n, true);
    matrix.extractSubMatrix(part, variables);
    return part;
  });
}

NgmMatrix NgmVModel::coregMatrixToEigen(const NgmMatrix &sills)
{
  const int n = sills.getNRows();
  NgmMatrix values(false), vectors(false);
  sills.eigenValues(values, vectors, false, true, 1);
  double *column = vectors.elements();
  for (int k = 0; k < n; ++k, column += n)
    NgmMatrix::blasDscal(n, std::sqrt(std::max(0., values(k, 0))), column, 1);
  return vectors;
}

void NgmVModel::getNormalizedEigenVectors(int index, NgmMatrix &out) const
{
  out = coregMatrixToEigen(getCoregionalisationMatrix(index));
}

void NgmVModel::_rescale(const std::function<double(double)> &rescaled,
                         const QVector<double> &weights)
{
  _invalidateC00();
  _nugget.normalizeDiagonal(weights);
  for (NgmMatrix &sills : _sills)
    sills.normalizeDiagonal(weights);
  for (const auto &structure : _structures)
    structure->_scale = rescaled(structure->_scale);
  setContextFieldSize(rescaled(_context.getFieldSize()));
}
