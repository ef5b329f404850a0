#pragma once

#include "geos/interpol/NgcAKriging.h"
#include "geos/interpol/XValRes.h"

/// Cross-validation: kriges every sample from the others and compares the estimate with its value.
///
/// The targets are the samples themselves: the output data set is on the same data file as the
/// input, in the same order. What is left out around each sample is chosen by the rejection: the
/// sample alone with those at its place (default), its line (role OBJECT_ID of the input), or a
/// partition around it.
///
///     NgcCrossValidation validation(QStringLiteral("XVAL"));
///     validation.setInputDataSet(samples);     // variable under Nbd::Role::V
///     validation.setOutputDataSet(results);    // same file: V, STDEV, XVAL_ERR, ...
///     validation.setVarioModel(model);
///     validation.setUsingMovingNeighborhood(neighborhood);
///
/// Formula:  error e = z* - z, standardized error s = e / sigma, with z the value of the sample, z*
///           its estimate and sigma its kriging standard deviation
/// Outputs:  those of a kriging; XVAL_ERR e, XVAL_SQ_ERR e^2, XVAL_ST_ERR s, XVAL_SQ_ST_ERR s^2,
///           one variable each per estimated variable
/// Shape:    errors are given for the rejected variable, and for all variables when nothing is kept
///           of the rejected samples (NgcERejectionAuxVarOption::AUX_VAR_KEEP_NOTHING, default)
/// Requires: point support, a moving neighborhood
/// Fails:    s and s^2 stay undefined where sigma is below 1e-30; all of a sample's outputs where
///           it could not be kriged, its errors also where its value is undefined
class NgcCrossValidation : public NgcAKriging
{
public:
  explicit NgcCrossValidation(const QString &key);
  ~NgcCrossValidation() override;

  /// The means of the last run, for the main variable, over the samples where each is defined. They
  /// are those of the output variables: without its output, a mean is undefined. The real value is
  /// the mean estimate less the mean error, the roots are those of the mean squares.
  const XValRes &getResults() const { return _results; }

protected:
  void _addRuntimeConstraints() override;
  void _preProcessing() override;
  void _preLaunchThreads() override;
  void _postProcessing() override;
  QStringList _getOutputRoles() const override;
  NgwAThread *_createComputingThread(NgwThreadPool *pool) override;

private:
  double _calcMean(const QString &role) const;

  XValRes _results;
};
