#pragma once

#include "geos/base/NgcAInterpol.h"
#include "geos/interpol/NgcIKriging.h"
#include "geos/vmodel/NgmVModel.h"

#include <memory>

class NgmKrigingSystemDual;

/// Base of the kriging calculators: an interpolation from a variogram model.
///
/// Ordinary kriging of one variable; the estimate at a target x0 is
///
/// Formula:  Z*(x0) = sum_i w_i Z(x_i),  sum_i w_i = 1, of least error variance
/// Units:    estimate in units of the variable, variance in squared units
/// Outputs:  role V the estimate, VARIANCE the kriging variance, STDEV its square root
/// Fails:    no sample around a target -> it stays undefined; a singular system -> it stays
///           undefined and is counted, see NgcAInterpol::getNumberOfInterpolErrors()
/// Source:   Matheron (1965); Journel and Huijbregts (1978), Mining Geostatistics, ch. V
class NgcAKriging : public NgcAInterpol, public NgcIKriging
{
public:
  class Worker;

  ~NgcAKriging() override;

  void setVarioModel(const NgmVModel &model) override;
  const NgmVModel &getVarioModel() const override { return _model; }

  /// The system of a unique neighborhood, built once per run; null with a moving one and when there
  /// is no sample.
  const NgmKrigingSystemDual *getKrigingSystemDual() const { return _systemDual.get(); }

protected:
  explicit NgcAKriging(const QString &key);

  void _addRuntimeConstraints() override;
  void _preProcessing() override;
  void _preLaunchThreads() override;

private:
  void _setModelContext();

  /// Extension of the field, which fixes the constant of generalized covariances.
  double _calcFieldSize() const;
  void _buildUniqueKrigingSystem();

  NgmVModel _model;
  std::unique_ptr<NgmKrigingSystemDual> _systemDual;
};
