#pragma once

#include "basic/geom/NbgVector3D.h"
#include "geos/fit/NgmAOptimizable_impl.h"
#include "geos/fit/NgmICovaTransformation.h"
#include "geos/stats/NgmVariogramExpData.h"

#include <QVector>

#include <memory>
#include <vector>

/// Fits the parameters of a variogram model to experimental variograms or covariances.
///
/// Experience: every defined lag of every direction and pair of variables, in units of the
///             variances (sills) and of the largest lag distance (ranges); a covariance counts as
///             C(0) - C(h)
/// Function:   C_ij(0) - C_ij(h) of the model
/// Weights:    per curve, as NgmVModelGof gives them
/// Parameters: those of the initial model that its options leave free; sills in units of the
///             variances, ranges of the largest lag distance, angles in radians
/// Requires:   experimental curves, initial model, variance-covariance matrix of the variables
///
/// For the fit of sills the same data are available as matrices: a row per pair of variables
/// (combineVariables()), a column per direction and lag. What is fitted then are the ranks 0 to
/// getNStructuresToFit() - 1: the nugget, when there is one, and the structures in their order.
class NgmVModelOptimizable : public NgmAOptimizable_impl<NgmVModel>
{
public:
  /// The power of the weights in the matrix of weights: they enter the sum of squares of the sill
  /// fit once, or as in the criterion of the other optimizers.
  enum class SillWeights { Linear, Squared };

  NgmVModelOptimizable();
  ~NgmVModelOptimizable() override;

  /// Fails when the data lack the curve.
  void setVariogramExp(const NgmVariogramExpData &data, const NbbAEnum &curve);
  const NbbAEnum &getFittedCurve() const { return *_curve; }

  void setInitialModel(const NgmVModelToBeOptimized &model);
  const NgmVModelToBeOptimized &getInitialModel() const;

  void setVarianceCovarianceMatrix(const NgmMatrix &matrix);
  const NgmMatrix &getVarianceCovarianceMatrix() const { return _variances; }

  /// Copied; with a transformation sills cannot be fitted linearly.
  void setCovarianceTransformation(const NgmICovaTransformation &transformation);
  bool hasCovarianceTransformation() const { return _transformation != nullptr; }
  const NgmICovaTransformation &getCovarianceTransformation() const;

  /// Weighting by numbers of pairs, see NgmVModelGof. The exponent is within [0.1, 2].
  void setNPairsExponent(double exponent);
  double getNPairsExponent() const { return _nPairsExponent; }
  void setNPairsMinimum(int minimum);
  int getNPairsMinimum() const { return _nPairsMinimum; }
  void setUseDeprecatedWeightingFunction(bool use) { _deprecatedWeighting = use; }
  bool useDeprecatedWeightingFunction() const { return _deprecatedWeighting; }

  const NgmVariogramExpData &getNormedVariogramExp() const { return _normedData; }

  int getNVariables() const { return _variances.getNRows(); }
  bool fitSillsOnly() const;
  bool fitNugget() const;
  bool isIntrinsicConstraint() const;

  /// Total sill required per variable, in units of its variance; undefined for a free variable.
  /// False when all are free.
  bool getSillCumulativeConstraint(QVector<double> &sills) const;

  /// Number of matrices that the fit of sills works on, the nugget included.
  int getNStructuresToFit() const;

  /// The structure of a rank of the fit of sills; -1 for the nugget.
  int getStructureOfRank(int rank) const;

  /// The sills of that rank are known, and only subtracted.
  bool areSillsLocked(int rank) const;

  /// Current sills of a rank, and new ones for all ranks; locked ones stay. The current parameters
  /// follow.
  NgmMatrix getSills(int rank) const;
  void setSills(const QVector<NgmMatrix> &sills);

  /// Row of a pair of variables in the matrices below.
  static int combineVariables(int i, int j);

  void setSillWeights(SillWeights weights) { _sillWeights = weights; }

  using NgmAOptimizable::getExperience;
  using NgmAOptimizable::getWeights;

  /// Experimental values, undefined where there is none, and their weights (0 there).
  void getExperience(NgmMatrix &values) const;
  void getWeights(NgmMatrix &weights) const;

  /// Variogram of unit sill of a rank, for its current ranges (0 where there is no value).
  void getCova(int rank, NgmMatrix &values) const;

  /// The model for the current parameters, in the units of the data.
  NgmVModel getOptimizedModel() const;

  /// Makes the normed data and the normed model; part of the initialization.
  void initVModelOptimizable();

  /// Discards the structures (and the nugget) with negligible sills, as far as the options of the
  /// initial model allow. True when the model changed; the parameters are made anew then.
  bool reduceModel(bool verbose);

  /// What a parameter controls: structure, kind and indices.
  void decodeParam(const NgmOptParam &param, int &structure, int &type, int &index1,
                   int &index2) const;

  void checkConsistency() const override;
  QVector<double> evaluateFunction(const NgmOptParamList &params, bool verbose) override;
  QString endMessage(bool verbose) const override;

protected:
  void _initPreProcess() override;
  void _initExperience() override;
  void _initParams() override;
  void _updateOptimizable(const NgmOptParamList &params) override;
  NgmVModel _applyParams(const NgmOptParamList &params) const override;

private:
  struct _Geometry;  // ranges, angles and auxiliary parameters of a structure
  struct _State;     // a model as plain numbers
  class _Curves;     // variograms of unit sill at all lags

  void _addParam(int structure, NgmVModelToBeOptimized::ParamType type, int index1, int index2,
                 const QString &label);
  void _addStructureParams(int structure);
  double _startingValue(int structure, NgmVModelToBeOptimized::ParamType type, int index1,
                        int index2) const;
  double _unitOf(NgmVModelToBeOptimized::ParamType type) const;
  NbiIntervalData _automaticBounds(int structure, NgmVModelToBeOptimized::ParamType type,
                                   int index1, int index2) const;
  static double _fitToBounds(double value, const NbiIntervalData &bounds);
  void _initCurve(int dir, int i, int j);
  void _decode(const NgmOptParamList &params, _State &state) const;
  NgmVModel _modelOf(const _State &state) const;
  void _makeMatrix(const double *values, double missing, NgmMatrix &matrix) const;
  int _findRotationOwner() const;
  void _tieGeometry(int structure, _State &state) const;
  void _transform(double *values) const;
  double _penalty(const NgmVModel &model, int structure) const;
  bool _reduceModel(QStringList &texts);
  bool _findDiscarded(const NgmVModel &model, QList<int> &discarded, QStringList &texts) const;
  bool _hasNuggetRank() const;
  void _checkReady() const;

  NgmVariogramExpData _data;
  NgmVariogramExpData _normedData;
  bool _hasData = false;
  const NbbAEnum *_curve;  // a registered instance
  bool _isCova = false;
  std::unique_ptr<NgmVModelToBeOptimized> _initialModel;
  std::unique_ptr<NgmVModelToBeOptimized> _workModel;  // as reduced so far
  std::unique_ptr<NgmVModel> _normedModel;
  NgmMatrix _variances;
  bool _hasVariances = false;
  double _maximumDistance = 1.;
  std::unique_ptr<NgmICovaTransformation> _transformation;
  double _nPairsExponent = 0.5;
  int _nPairsMinimum = 0;
  bool _deprecatedWeighting = true;
  SillWeights _sillWeights = SillWeights::Linear;

  QVector<double> _values;  // being collected
  QVector<double> _valueWeights;
  std::vector<NbgVector3D> _lags;  // per experience value
  std::vector<int> _variables1;    // i >= j
  std::vector<int> _variables2;
  std::vector<int> _pairs;
  std::vector<int> _columns;  // of the matrices
  double _smallestDistance = 1.;
  int _nColumns = 0;
  int _rotationOwner = -1;  // the structure whose angles all follow
  std::unique_ptr<_Curves> _curves;
  std::unique_ptr<_State> _current;
  std::unique_ptr<_State> _trial;
};
