#pragma once

#include "basic/data/NbdVariableDetails.h"
#include "geos/fit/NgmICovaTransformation.h"
#include "geos/stats/NgmVariogramExpData.h"

#include <QList>
#include <QVector>

#include <memory>

class NgmVModel;
struct NgmFitWeights;

/// How well a variogram model fits experimental curves: the sum of the squared weighted errors over
/// directions, pairs of variables and lags.
///
/// Weights:  of a lag at distance d with n pairs sqrt(n / d), or n^exponent / d without the
///           deprecated weighting; 0 when d is undefined or not positive, or n below the minimum;
///           divided by their sum along the curve (1 everywhere when that is 0)
/// Errors:   (experimental - model) / sqrt(v_i v_j), v the variances of the variables: the
///           experimental C00 when it is known, else the total sills of the model; lags without
///           pairs, undefined values and scales below 1e-30 are left out
/// Units:    none; lower is better, 0 is exact
/// Requires: model, curve, and details of as many variables as the model has
class NgmVModelGof
{
public:
  NgmVModelGof();
  ~NgmVModelGof();
  NgmVModelGof(const NgmVModelGof &) = delete;
  NgmVModelGof &operator=(const NgmVModelGof &) = delete;

  void setVarioModel(const NgmVModel &model);
  void setVarioExp(const NgmVariogramExpData &data, const NbbAEnum &curve);
  void setFittedCurve(const NbbAEnum &curve);
  void setVariableDetails(const QList<NbdVariableDetails> &details) { _details = details; }
  void setCovarianceTransformation(const NgmICovaTransformation &transformation);

  /// Within [0.1, 2]; used without the deprecated weighting.
  void setNPairsExponent(double exponent);
  void setNPairsMinimum(int minimum);
  void setUseDeprecatedWeightingFunction(bool use);

  double getNPairsExponent() const;
  int getNPairsMinimum() const;
  bool useDeprecatedWeightingFunction() const;

  double evaluateGof() const;

  /// Weights of the lags of the curve of a direction and pair of variables.
  QVector<double> getWeights(int direction, int i, int j) const;

  /// Weights of lags at these distances with these numbers of pairs.
  QVector<double> getWeights(const QVector<double> &distances, const QVector<double> &nPairs) const;

private:
  void _checkReady() const;
  void _checkCurve() const;
  QVector<double> _values(int direction, int i, int j) const;
  double _evalModel(int i, int j, const NbgVector3D &h) const;
  double _evalModelError(double value, int i, int j, const NbgVector3D &h) const;
  double _evaluateCurve(int direction, int i, int j) const;
  double _variance(int i) const;

  std::unique_ptr<NgmVModel> _model;
  NgmVariogramExpData _data;
  const NbbAEnum *_curve;  // a registered instance
  bool _hasCurve = false;
  bool _isCova = false;
  std::unique_ptr<NgmFitWeights> _weighting;
  QList<NbdVariableDetails> _details;
  std::unique_ptr<NgmICovaTransformation> _transformation;
};
