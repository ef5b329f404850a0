#include "interpol/private/NgcKrigingStatistics.h"

#include "geos/matrix/NgmAKrigingSystem.h"
#include "interpol/private/NgcKrigingOutputs.h"

namespace {

using Outputs = NgcKrigingOutputs;

void writeColumns(const QVector<double> &values, const Outputs::Columns &columns, int position)
{
  for (std::size_t variable = 0; variable < columns.size(); ++variable) {
    if (columns[variable])
      columns[variable][position] = values[int(variable)];
  }
}

}  // namespace

NgcKrigingStatistics::NgcKrigingStatistics(int nVariables, bool isSimpleKriging)
    : _nVariables(nVariables), _isSimpleKriging(isSimpleKriging), _otherCovariances(nVariables)
{
}

void NgcKrigingStatistics::write(const NgmAKrigingSystem &system, const QVector<double> &c00,
                                 const QVector<double> &variances, const Outputs &outputs,
                                 int position)
{
  _writeEstimateVariances(system, outputs, position);
  _writeCovariances(system, c00, outputs, position);
  if (outputs.has(Outputs::KRIG_EFFIC)) {
    system.computeKrigingEfficiency(c00, variances, _result);
    writeColumns(_result, outputs.get(Outputs::KRIG_EFFIC), position);
  }
  _writeWeights(system, outputs, position);
}

void NgcKrigingStatistics::_writeEstimateVariances(const NgmAKrigingSystem &system,
                                                   const Outputs &outputs, int position)
{
  if (outputs.has(Outputs::VAR_ESTIMATE) || outputs.has(Outputs::CORREL_ZZSTAR) ||
      outputs.has(Outputs::SLOPE_ZZSTAR)) {
    system.computeVarianceOfEstimates(_varianceOfEstimates);
    writeColumns(_varianceOfEstimates, outputs.get(Outputs::VAR_ESTIMATE), position);
  }
  if (!outputs.has(Outputs::COVAR_Z1STARZSTAR) || _nVariables < 2)
    return;
  system.computeCovarianceZ1StarZStar(0, _otherCovariances);
  for (int variable = 1; variable < _nVariables; ++variable) {
    if (double *column = outputs.get(Outputs::COVAR_Z1STARZSTAR)[std::size_t(variable)])
      column[position] = _otherCovariances[variable - 1];
  }
}

void NgcKrigingStatistics::_writeCovariances(const NgmAKrigingSystem &system,
                                             const QVector<double> &c00, const Outputs &outputs,
                                             int position)
{
  if (!outputs.has(Outputs::COVAR_ZZSTAR) && !outputs.has(Outputs::CORREL_ZZSTAR) &&
      !outputs.has(Outputs::SLOPE_ZZSTAR))
    return;
  system.computeCovarianceZZStar(_covariances);
  writeColumns(_covariances, outputs.get(Outputs::COVAR_ZZSTAR), position);
  if (outputs.has(Outputs::CORREL_ZZSTAR)) {
    system.computeCorrelationZZStar(c00, _covariances, _varianceOfEstimates, _result);
    writeColumns(_result, outputs.get(Outputs::CORREL_ZZSTAR), position);
  }
  if (outputs.has(Outputs::SLOPE_ZZSTAR)) {
    system.computeSlopeRegressionZZStar(_covariances, _varianceOfEstimates, _result);
    writeColumns(_result, outputs.get(Outputs::SLOPE_ZZSTAR), position);
  }
}

void NgcKrigingStatistics::_writeWeights(const NgmAKrigingSystem &system, const Outputs &outputs,
                                         int position)
{
  if (outputs.has(Outputs::SUM_W)) {
    system.computeSumOfWeights(_result);
    writeColumns(_result, outputs.get(Outputs::SUM_W), position);
  }
  if (outputs.has(Outputs::SUM_POS_W)) {
    system.computeSumOfPositiveWeights(_result);
    writeColumns(_result, outputs.get(Outputs::SUM_POS_W), position);
  }
  if (_isSimpleKriging && outputs.has(Outputs::WEIGHT_OF_MEAN)) {
    system.computeWeightForMean(_result);
    writeColumns(_result, outputs.get(Outputs::WEIGHT_OF_MEAN), position);
  }
  if (!_isSimpleKriging && outputs.has(Outputs::LAGRANGE)) {
    system.computeLagrange(_result);
    writeColumns(_result, outputs.get(Outputs::LAGRANGE), position);
  }
}
