#include "interpol/private/NgwCrossValidation.h"

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdDataPoints.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeAssertion.h"
#include "geos/data/NgdNeighborhoodContext.h"
#include "geos/interpol/NgmCrossValidationTestResult.h"

#include <cmath>

namespace {

constexpr double smallestStandardDeviation = 1e-30;
constexpr double largestSquaredDistance = 1e-06;

void write(double *column, int position, double value)
{
  if (column)
    column[position] = value;
}

}  // namespace

NgwCrossValidation::NgwCrossValidation(NgwThreadPool *pool, NgcAKriging &calculator)
    : NgcAKriging::Worker(pool, calculator), _outputs(std::size_t(calculator.getNVariables()))
{
  _requireVariances();
}

NgwCrossValidation::~NgwCrossValidation() = default;

XValRes NgwCrossValidation::calcErrors(double realValue, double estimate, double variance)
{
  XValRes result;
  result.realValue = realValue;
  result.estimation = estimate;
  if (!NbbGlobal::isDefined(variance))
    return result;
  if (variance < 0.)
    NBE_FAIL(QStringLiteral("Negative variance."));
  result.standardDeviation = std::sqrt(variance);
  if (!NbbGlobal::isDefined(realValue) || !NbbGlobal::isDefined(estimate))
    return result;

  result.error = estimate - realValue;
  result.squaredError = result.error * result.error;
  result.rootSquaredError = std::fabs(result.error);
  if (result.standardDeviation < smallestStandardDeviation)
    return result;
  result.standardizedError = result.error / result.standardDeviation;
  result.squaredStandardizedError = result.standardizedError * result.standardizedError;
  result.rootSquaredStandardizedError = std::fabs(result.standardizedError);
  return result;
}

void NgwCrossValidation::_bufferStarted(NbdAData &buffer)
{
  for (int variable = 0; variable < int(_outputs.size()); ++variable) {
    _Outputs &outputs = _outputs[std::size_t(variable)];
    outputs.error = _findColumn(buffer, Nbd::Role::XVAL_ERR, variable);
    outputs.squaredError = _findColumn(buffer, Nbd::Role::XVAL_SQ_ERR, variable);
    outputs.standardizedError = _findColumn(buffer, Nbd::Role::XVAL_ST_ERR, variable);
    outputs.squaredStandardizedError = _findColumn(buffer, Nbd::Role::XVAL_SQ_ST_ERR, variable);
    for (double *column : {outputs.error, outputs.squaredError, outputs.standardizedError,
                           outputs.squaredStandardizedError}) {
      for (const int position : buffer.getSelectedPositions())
        write(column, position, NbbGlobal::D_FFFF);
    }
  }
}

/// Roles hold one variable per interpolated variable, or only those that are not excluded.
double *NgwCrossValidation::_findColumn(const NbdAData &buffer, const QString &role,
                                        int variable) const
{
  const NgcAKriging &kriging = _getKriging();
  if (kriging.isExcluded(variable))
    return nullptr;
  const NbdDataTable &table = buffer.getDataTableConst();
  int index = variable;
  if (table.getRoleCount(role) < kriging.getNVariables()) {
    for (const int excluded : kriging.getExcludedOutputVar())
      index -= excluded >= 0 && excluded < variable;
  }
  NbdVariableDouble *column = table.getVarDouble(role, index);
  return column ? column->getArray() : nullptr;
}

void NgwCrossValidation::_targetKriged(NbdAData &buffer, int position)
{
  for (int variable = 0; variable < int(_outputs.size()); ++variable) {
    const XValRes errors =
        calcErrors(_getRealValue(variable), _getEstimate(variable), _getVariance(variable));
    const _Outputs &outputs = _outputs[std::size_t(variable)];
    write(outputs.error, position, errors.error);
    write(outputs.squaredError, position, errors.squaredError);
    write(outputs.standardizedError, position, errors.standardizedError);
    write(outputs.squaredStandardizedError, position, errors.squaredStandardizedError);
  }
  if (_getTestResult())
    _fillTestResult(buffer, position);
}

double NgwCrossValidation::_getRealValue(int variable) const
{
  const NgdNeighborhoodContext &neighborhood = _getNeighborhood();
  if (variable == neighborhood.getRejectionMainVarIndex())
    return neighborhood.getRejectionTargetValue();
  const int rank = neighborhood.getRejectionTargetRank();
  if (rank < 0 || _getKriging().getConstNeighborhood().getRejectionAuxVarOption() !=
                      NgcERejectionAuxVarOption::AUX_VAR_KEEP_NOTHING)
    return NbbGlobal::D_FFFF;
  return _getKriging().getAllInputData().getVariableNumeric(Nbd::Role::V, variable)->getValue(rank);
}

void NgwCrossValidation::_fillTestResult(const NbdAData &buffer, int position)
{
  const NgdNeighborhoodContext &neighborhood = _getNeighborhood();
  const int rank = neighborhood.getRejectionTargetRank();
  const NbgVector3D target = buffer.getLocation(position);
  if (rank < 0 || (_getKriging().getAllInputData().getLocation(rank) - target).squaredNorm() >
                      largestSquaredDistance)
    NBE_FAIL(QStringLiteral("NgwCrossValidation::_targetKriged: Wrong target for test !"));

  const int variable = _getKriging().getMainVariableIndex();
  if (variable < 0 || variable >= int(_outputs.size()))
    NBE_FAIL(QStringLiteral("Wrong variable index."));
  if (auto *result = dynamic_cast<NgmCrossValidationTestResult *>(_getTestResult()))
    result->setXVal(
        calcErrors(_getRealValue(variable), _getEstimate(variable), _getVariance(variable)));
}
