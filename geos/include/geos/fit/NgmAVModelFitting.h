#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "geos/base/NgcACalculator.h"
#include "geos/fit/NgmICovaTransformation.h"
#include "geos/fit/NgmVModelToBeOptimized.h"
#include "geos/stats/NgmVariogramExpData.h"

#include <memory>

class NgmAOptimizer;
class NgmVModelOptimizable;

/// Fits a variogram model to experimental curves: base of the fits that a program runs.
///
/// Requires: experimental curves, initial model, variance-covariance matrix of the variables
/// Default:  at most 1000 iterations; weights sqrt(pairs / distance)
/// Results:  programming errors before a completed run; after a failed one there is no model
class NgmAVModelFitting : public NgcACalculator, public NbbIDebuggable
{
public:
  ~NgmAVModelFitting() override;

  void setVariogramExp(const NgmVariogramExpData &data, const NbbAEnum &curve);
  void setInitialModel(const NgmVModelToBeOptimized &model);
  void setVarianceCovarianceMatrix(const NgmMatrix &matrix) { _variances = matrix; }
  void setCovarianceTransformation(const NgmICovaTransformation &transformation);
  void setNbMaxIteration(int n) { _nbMaxIteration = n; }
  void setVerbose(bool verbose) { _verbose = verbose; }
  void setSuperVerbose(bool verbose) { _superVerbose = verbose; }

  /// Weighting by numbers of pairs, see NgmVModelGof.
  void setNPairsExponent(double exponent) { _nPairsExponent = exponent; }
  void setNPairsMinimum(int minimum) { _nPairsMinimum = minimum; }
  void setUseDeprecatedWeightingFunction(bool use) { _deprecatedWeighting = use; }

  const NgmVariogramExpData &getVariogramExp() const { return _data; }
  const NbbAEnum &getFittedCurve() const { return *_curve; }
  const NgmVModelToBeOptimized &getInitialModel() const;
  const NgmMatrix &getVarianceCovarianceMatrix() const { return _variances; }
  bool hasCovarianceTransformation() const { return _transformation != nullptr; }
  int getNbMaxIteration() const { return _nbMaxIteration; }
  bool getVerbose() const { return _verbose; }
  bool getSuperVerbose() const { return _superVerbose; }
  double getNPairsExponent() const { return _nPairsExponent; }
  int getNPairsMinimum() const { return _nPairsMinimum; }
  bool useDeprecatedWeightingFunction() const { return _deprecatedWeighting; }

  /// Runs to the end, or starts a run and returns at once (wait() joins). A programming error while
  /// a run is under way. Errors of the run are found as in NbcAProgress.
  void fit(bool blocking);

  const NgmVModel &getFittedModel() const;
  bool hasConverged() const { return _converged; }

  QString debug(int level) const override;

protected:
  NgmAVModelFitting();

  void _doRun() override;
  void _cleanup() override;
  void _errorOccurred(const NbeError &error) override;

  /// The optimizer to use; owned by the run.
  virtual std::unique_ptr<NgmAOptimizer> _initialize() = 0;

  /// Takes results from the optimizer.
  virtual void _postProcessing() = 0;

  /// Settings for a copy of this fit.
  void _copySettings(const NgmAVModelFitting &other);

  const NgmAOptimizer *_getOptimizer() const { return _optimizer.get(); }
  bool _hasInitialModel() const { return _initialModel != nullptr; }

private:
  std::unique_ptr<NgmVModelOptimizable> _newOptimizable() const;

  NgmVariogramExpData _data;
  const NbbAEnum *_curve;  // a registered instance
  std::unique_ptr<NgmVModelToBeOptimized> _initialModel;
  NgmMatrix _variances;
  std::unique_ptr<NgmICovaTransformation> _transformation;
  double _nPairsExponent = 0.5;
  int _nPairsMinimum = 0;
  bool _deprecatedWeighting = true;
  int _nbMaxIteration = 1000;
  bool _verbose = false;
  bool _superVerbose = false;
  std::unique_ptr<NgmVModelOptimizable> _optimizable;
  std::unique_ptr<NgmAOptimizer> _optimizer;
  std::unique_ptr<NgmVModel> _fittedModel;
  bool _converged = false;
};
