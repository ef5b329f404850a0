#pragma once

#include "geos/base/Ngc.h"

#include <QMap>
#include <QString>

class NgcEKrigingMode;
class NgmDriftModel;
class NgmExtDriftModel;
class NgmIMultivariateTransform;
class NgmITransformation;
class NgmVModel;

/// What can be set on every kriging calculator besides the settings of an interpolation. Models and
/// transformations are copied. Variables are counted from 0 in the order of the input variables.
class NgcIKriging
{
public:
  virtual ~NgcIKriging() = default;

  virtual void setVarioModel(const NgmVModel &model) = 0;
  virtual const NgmVModel &getVarioModel() const = 0;

  virtual void setKrigingMode(const NgcEKrigingMode &mode) = 0;

  // Known means, of simple kriging and rescaled cokriging.

  virtual void setSimpleKrigingOption(Ngc::SimpleKrigingOption option) = 0;
  virtual void setSimpleKrigingMean(int variable, double mean) = 0;

  /// Local means are known at the targets only; samples take that of their target.
  virtual void setSimpleKrigingVariableOnlyOnTarget(bool only) = 0;

  /// Name of the input variable that holds the standard deviations of a variable's measurement
  /// errors.
  virtual void setStDevMeasError(int variable, const QString &name) = 0;

  /// Name of the variable of the output data set that gives a variable's values at the targets.
  virtual void setCollocated(int variable, const QString &name) = 0;
  virtual const QMap<int, QString> &getAllCollocated() const = 0;

  /// Collocated values are raw: they go through the variable's transformation first.
  virtual void setCollocatedTransformation(bool transform) = 0;

  /// Angles of a locally varying model, see NgmLgsVModel.
  virtual void setLGSModelRotationConvention(bool use, int conventionId) = 0;
  virtual void setLGSModelRotationForce2D(bool force) = 0;

  /// The samples hold transformed values; estimates are transformed back once this is enabled.
  virtual void setMonovariateTransformation(int variable,
                                            const NgmITransformation &transformation) = 0;
  virtual void setEnableMonovariateTransformation(bool enable) = 0;

  /// Applied to every buffer of results.
  virtual void setMultivariateTransformation(const NgmIMultivariateTransform &transformation) = 0;

  virtual void setDriftModel(const NgmDriftModel &model) = 0;
  virtual void setExtDriftModel(const NgmExtDriftModel &model) = 0;
};
