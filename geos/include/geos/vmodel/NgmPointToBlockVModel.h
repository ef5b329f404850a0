#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgRotation.h"
#include "geos/base/NgcACalculator.h"
#include "geos/matrix/NgmMatrix.h"

#include <QStringList>
#include <QVector>

#include <memory>

class NgmABlock;
class NgmVariogramExpData;
class NgmVModel;
class NgmVModelToBeOptimized;

/// Regularizes the variogram model of point variables over a block: the covariance inside the block
/// and the variogram of block values, as an experimental variogram and as a model fitted to it.
///
/// Formula:  C_v(h) = mean over points p, q of the block of C(p - q - h), gamma_v(h) = C_v(0) -
///           C_v(h), without nugget; p from the discretization, q one random point per cell, the
///           same for all h, averaged over the tries of NgmCvvBuilder. So gamma_v comes down to 0
///           whatever the discretization.
/// Shape:    a direction per dimension of the model's context, along the axes of the rotation;
///           distance k * lag in row k - 1, each as if from one pair; cross variograms included
/// Requires: model and block
/// Default:  directions along the axes of the model's major rotation; lags of
///           calcDiscretizationLags()
/// Results:  programming errors before a completed run
/// Cost:     tries * lags * (number of points)^2 covariances per structure
/// Source:   [Journel and Huijbregts, 1978, ch. II.D]
class NgmPointToBlockVModel : public NgcACalculator, public NbbIDebuggable
{
public:
  NgmPointToBlockVModel();
  ~NgmPointToBlockVModel() override;

  /// The model and the block are copied.
  void setPointVarioModel(const NgmVModel &model);

  /// Covariances of the point variables (N x N, positive variances), when they are known otherwise
  /// than from the model: nugget and sills are rescaled to these variances, the correlations of the
  /// model staying. Empty (the default) for those of the model.
  void setPointCovariance(const NgmMatrix &covariance);
  void setBlock(const NgmABlock &block);

  /// Distance between lags and number of lags, per dimension of the model's context; empty for the
  /// default ones.
  void setDiscretizationLags(const QVector<double> &lags, const QVector<int> &counts);

  /// 20 lags in each direction, out to the size of the block plus 1.25 times the largest practical
  /// range of a structure along the direction. Fails unless the context has 1 to 3 dimensions.
  static void calcDiscretizationLags(const NgmVModel &model, const NgmABlock &block,
                                     QVector<double> &lags, QVector<int> &counts);

  /// The axes along which the variogram is computed; not `isSet` takes those of the model.
  void setRotation(bool isSet, const NbgRotation &rotation);

  /// Settings of the fit. The fitted model has no nugget; its axes are those of the variogram.

  /// `pointModel`: the variables are taken with variance 1 each (the given covariances of the
  /// points then do not count). `blockModel`: the total sills of the fitted model become the
  /// covariances of C_v(0) on the diagonal. Neither by default.
  void setNormalization(bool pointModel, bool blockModel);

  /// Labels of the structures to fit; empty (the default) for those of the point model.
  void setStructList(const QStringList &labels) { _labels = labels; }
  void addStructList(const QString &label) { _labels << label; }
  const QStringList &getStructList() const { return _labels; }

  /// Number of structures to keep at most; -1 (the default) for all.
  void setNMaxStr(int n) { _nMaxStructures = n; }

  /// Whether structures with negligible sills are discarded; by default they are.
  void setAutomaticFixVModel(bool fix) { _discards = fix; }

  /// 0: number of iterations at most (1000); 1: first trust region of the fit (1); 2: sill below
  /// which a structure is negligible, in percent (5).
  void setAdvancedParameter(int index, double value);

  /// As it was set; fails before that.
  const NgmVModel &getPointVarioModel() const;

  /// C_v(0), N x N.
  const NgmMatrix &getBlockCovariance() const;
  const NgmVariogramExpData &getBlockVarioExp() const;

  /// Without structures when the blocks do not vary within the lags.
  const NgmVModel &getBlockVarioModel() const;

  QString debug(int level) const override;

protected:
  void _doFinalChecks() override;
  void _doRun() override;

private:
  void _checkPointCovariance() const;
  void _rescaleModel();
  void _calcBlockCovariance();
  void _pointToBlock();
  void _fitVarioExp();
  bool _hasVariogram() const;
  NgmVModelToBeOptimized _requestedModel() const;

  void _calcDirection(int axis, double lag, int count, NgmVariogramExpData &varioExp) const;

  /// C_v(h).
  void _calcCovariance(const NbgVector3D &h, NgmMatrix &covariance) const;
  const NbgRotation &_getRotation() const;

  std::unique_ptr<NgmVModel> _model;
  NgmMatrix _pointCovariance;
  std::unique_ptr<NgmVModel> _rescaled;  // the model with the variances of the points
  std::unique_ptr<NgmABlock> _block;
  QVector<double> _lags;
  QVector<int> _counts;
  bool _isRotationSet = false;
  NbgRotation _rotation;
  QVector<NbgVector3D> _points;
  QVector<QVector<NbgVector3D>> _jittered;  // per try
  std::unique_ptr<NgmMatrix> _covariance;
  std::unique_ptr<NgmVariogramExpData> _varioExp;
  std::unique_ptr<NgmVModel> _blockModel;
  bool _normalizesPoints = false;
  bool _normalizesBlocks = false;
  QStringList _labels;
  int _nMaxStructures = -1;
  bool _discards = true;
  double _nIterations = 1000.;
  double _initialDelta = 1.;
  double _tolerance = 5.;
};
