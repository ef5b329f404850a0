#pragma once

#include "geos/fit/NgmAVModelFitting.h"

/// Automatic fit of a variogram model.
///
/// Method:  NgmVModelOptimizerFoxleg; NgmOptimizerFoxleg alone on request (one variable only); the
///          fit of sills alone when the initial model asks for it
/// Start:   automatic parameters start from what the experimental curves suggest
/// Default: hybrid, initial delta 1
class NgmVModelAutoFitting : public NgmAVModelFitting
{
public:
  NgmVModelAutoFitting();

  /// Another fit with the same settings.
  NgmVModelAutoFitting(const NgmVModelAutoFitting &other);
  NgmVModelAutoFitting &operator=(const NgmVModelAutoFitting &other) = delete;
  ~NgmVModelAutoFitting() override;

  void setInitialDelta(double delta) { _initialDelta = delta; }
  void setUseHybrid(bool use) { _useHybrid = use; }
  void setShowGoulard(bool show) { _showGoulard = show; }
  double getInitialDelta() const { return _initialDelta; }
  bool useHybrid() const { return _useHybrid; }
  bool getShowGoulard() const { return _showGoulard; }

  /// Of the last completed run; AIC and BIC are undefined after a fit of sills alone.
  double getGOF() const { return _gof; }
  double getAIC() const { return _aic; }
  double getBIC() const { return _bic; }

  /// Settings and, after a run, criteria, one per line.
  QString toString() const;

protected:
  std::unique_ptr<NgmAOptimizer> _initialize() override;
  void _postProcessing() override;

private:
  double _initialDelta = 1.;
  bool _useHybrid = true;
  bool _showGoulard = false;
  double _gof = 0.;
  double _aic = 0.;
  double _bic = 0.;
};
