#pragma once

#include "geos/fit/NgmAOptimizer.h"
#include "geos/matrix/NgmMatrix.h"

#include <memory>
#include <vector>

/// Bounded non-linear least squares by a trust-region Gauss-Newton method.
///
/// Criterion: score = 0.5 sum_k ((f_k - e_k) w_k)^2
/// Step:      exact minimum of the quadratic model of the score in a box: the trust region (delta
///            to each side of every parameter) cut by the bounds
/// Stops:     score, its relative change, delta or the predicted change become negligible, or the
///            number of iterations is reached
/// Default:   delta 1 to begin with; it must exceed 0.001
/// Source:    [Desassis and Renard, 2013]
class NgmOptimizerFoxleg : public NgmAOptimizer
{
public:
  explicit NgmOptimizerFoxleg(const QString &name = QStringLiteral("Foxleg"));
  NgmOptimizerFoxleg(const NgmOptimizerFoxleg &other) = default;
  NgmOptimizerFoxleg &operator=(const NgmOptimizerFoxleg &other) = default;
  ~NgmOptimizerFoxleg() override;

  /// Trust region of the first step, in units of the parameters.
  void setInitialDelta(double delta) { _initialDelta = delta; }

  /// Twice the final score, and the information criteria of the fit (undefined with fewer
  /// experience values than they take).
  double getGOF() const { return _gof; }
  double getAIC() const { return _aic; }
  double getBIC() const { return _bic; }

protected:
  bool _doOptimization(int nbMaxIteration) override;

  /// May change parameters that were moved, before they are scored. Nothing by default.
  virtual void _patchParams(NgmOptParamList &params);

  /// The score of these parameters; the residuals are kept.
  double _calculateResiduals(NgmOptParamList &params);

  /// Goodness of fit, AIC and BIC from the score.
  void _calculateCriteria();

  double _initialDelta = 1.;

private:
  /// Lower and upper end of the move that a parameter may make.
  struct _Extension
  {
    double down = 0.;
    double up = 0.;
  };

  struct _Move
  {
    double largest = 0.;
    double mean = 0.;
  };

  void _calculateGradients(const NgmOptParamList &params);
  void _calculateGaussNewtonStep();
  void _defineExtensions(const NgmOptParamList &params);
  bool _hasRoomToMove() const;
  void _minimizeUnderConstraints();
  double _getQuadraticMinimizationScore() const;
  _Move _shiftParameters(NgmOptParamList &params, const std::vector<double> &move) const;
  double _gradientSearch(const NgmOptParamList &params, NgmOptParamList &trial, _Move &move);
  bool _gradientMove(double alpha, std::vector<double> &move) const;
  void _accept(const NgmOptParamList &params);
  void _iterate(int nbMaxIteration);
  bool _step();
  void _updateDelta(bool isAccepted, double q, double ratio, double largestMove);
  void _logIteration();
  void _logEnd(int nbMaxIteration);

  double _gof = 0.;
  double _aic = 0.;
  double _bic = 0.;
  double _delta = 1.;
  double _scoreStop = 1.;
  double _moveStop = 0.;
  double _predicted = 0.;
  double _newScore = 0.;
  int _iteration = 0;
  bool _isStepAccepted = true;
  NgmMatrix _residuals;
  NgmMatrix _jacobian;
  NgmMatrix _gradient;
  NgmMatrix _hessian;
  std::vector<double> _move;
  std::vector<_Extension> _extensions;
};
