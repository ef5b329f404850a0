#pragma once

#include "basic/interval/NbiIntervalData.h"
#include "geos/vmodel/NgmVModel.h"

#include <QMap>
#include <QVector>

#include <tuple>

class NbgVector3D;
class NgmVariogramExpData;

/// A variogram model to be fitted: its structures, which of their parameters may move and within
/// which bounds, and what the result must respect. Its values are those that the fit starts from.
///
/// A parameter is automatic (free, starting from a value found from the experimental curves),
/// default (free, starting from the value of the model) or locked at the value of the model;
/// bounds may go with the first two. Angles are in degrees; ranges are practical ranges.
///
/// Lists of constraints follow the structures when one is removed. Streams hold the model alone.
class NgmVModelToBeOptimized : public NgmVModel
{
public:
  enum ParamType { SILL = 1, AUX = 2, RANGE = 3, ROT = 4, STRUCT = 5 };

  enum ConstraintType {
    AUTOMATIC,  ///< free, starts from the data
    DEFAULT,    ///< free, starts from the value of the model
    LOCKED,     ///< keeps the value of the model
    BOUNDED     ///< free within bounds
  };

  explicit NgmVModelToBeOptimized(int nVariables);
  NgmVModelToBeOptimized(const NgmVModel &model);
  NgmVModelToBeOptimized(const NgmVModelToBeOptimized &) = default;
  NgmVModelToBeOptimized &operator=(const NgmVModelToBeOptimized &) = default;
  ~NgmVModelToBeOptimized() override;

  // Options. Tolerances are in percent of the total sill.

  bool getFitNugget() const { return _fitNugget; }
  void setFitNugget(bool fit) { _fitNugget = fit; }
  bool getFitSillsOnly() const { return _fitSillsOnly; }
  void setFitSillsOnly(bool only) { _fitSillsOnly = only; }
  bool getAuthAniso() const { return _authAniso; }
  void setAuthAniso(bool authorize) { _authAniso = authorize; }
  bool getAuthRotation() const { return _authRotation; }
  void setAuthRotation(bool authorize) { _authRotation = authorize; }

  /// Whether structures with negligible sills are discarded.
  bool getAuthCompress() const { return _authCompress; }
  void setAuthCompress(bool authorize) { _authCompress = authorize; }

  /// One rotation for all structures.
  bool getLockSameRot() const { return _lockSameRot; }
  void setLockSameRot(bool lock) { _lockSameRot = lock; }

  /// Rotation about Z only.
  bool getLockRot2D() const { return _lockRot2D; }
  void setLockRot2D(bool lock) { _lockRot2D = lock; }

  /// The third range is not fitted.
  bool getLockNo3D() const { return _lockNo3D; }
  void setLockNo3D(bool lock) { _lockNo3D = lock; }

  /// The first two ranges are the same.
  bool getLockIso2D() const { return _lockIso2D; }
  void setLockIso2D(bool lock) { _lockIso2D = lock; }

  /// All matrices of sills are proportional to one.
  bool getWantIntrinsic() const { return _wantIntrinsic; }
  void setWantIntrinsic(bool want) { _wantIntrinsic = want; }
  bool isIntrinsicConstraint() const { return _wantIntrinsic; }

  double getTolNugget() const { return _tolNugget; }
  void setTolNugget(double percent) { _tolNugget = percent; }
  double getTolSigma() const { return _tolSigma; }
  void setTolSigma(double percent) { _tolSigma = percent; }
  int getNbMinStruct() const { return _nbMinStruct; }
  void setNbMinStruct(int n) { _nbMinStruct = n; }

  /// -1 for no maximum.
  int getNbMaxStruct() const { return _nbMaxStruct; }
  void setNbMaxStruct(int n) { _nbMaxStruct = n; }

  // Parameters. Structure -1 is the nugget. A locked structure keeps all its parameters.

  void setConstraint(ConstraintType constraint, int structure, ParamType type, int index1,
                     int index2);

  /// The same for every parameter of the kind, of every structure.
  void setGenericConstraint(ConstraintType constraint, ParamType type);
  void setBounds(const NbiIntervalData &bounds, int structure, ParamType type, int index1,
                 int index2);
  NbiIntervalData getBounds(int structure, ParamType type, int index1, int index2) const;

  /// Whether it is so, and the value of the model.
  bool isLocked(double &value, int structure, ParamType type, int index1, int index2) const;
  bool isDefault(double &value, int structure, ParamType type, int index1, int index2) const;

  /// Neither locked nor default.
  bool isAutomatic(int structure, ParamType type, int index1, int index2) const;

  /// Put a value into the model and lock it.
  void setKnownRange(int structure, int axis, double range);
  void setKnownRanges(int structure, const NbgVector3D &ranges);
  void setKnownSill(int structure, const NgmMatrix &sills);
  void setKnownRotation(int structure, const NbgRotation &rotation);

  /// The nugget; the forms with a number are for one variable. Minimum and maximum are kept by
  /// NgmVModelAutoFittingConstrained.
  void setKnownNugget(double nugget);
  void setKnownNuggetMatrix(const NgmMatrix &nugget);
  void setMinNugget(double nugget);
  void setMinNuggetMatrix(const NgmMatrix &nugget);
  void setMaxNugget(double nugget);
  void setMaxNuggetMatrix(const NgmMatrix &nugget);
  void removeMinNugget() { _minNugget = NgmMatrix(0, 0, false); }
  void removeMaxNugget() { _maxNugget = NgmMatrix(0, 0, false); }
  bool hasKnownNugget(NgmMatrix &nugget) const;
  bool hasMinNugget(NgmMatrix &nugget) const;
  bool hasMaxNugget(NgmMatrix &nugget) const;
  bool hasMinNugget() const { return _minNugget.getNElements() > 0; }
  bool hasMaxNugget() const { return _maxNugget.getNElements() > 0; }

  /// Total sill of a variable, nugget included; undefined for none.
  void setSillCumulativeConstraint(int variable, double sill);

  /// Undefined for a free variable. False when all are free.
  bool getSillCumulativeConstraint(QVector<double> &sills) const;

  // Preparation of a fit.

  /// Takes over the dimension of the variogram, with a warning when it was another one.
  void fixModel(const NgmVariogramExpData &data);

  /// Rescales the sills to start from to the total sills required.
  void fixSillConstraints();

  /// Gives automatic parameters the values that the experimental curves suggest, and gives up the
  /// anisotropy or rotation that their directions cannot show.
  void alterModel(const NgmVariogramExpData &data);

  /// Fails when the constraints cannot hold together.
  void checkConsistency() const;

  using NgmVModel::addStructure;

  /// Appends a structure of the type with that label, with unit sills.
  int addStructure(const QString &label);

  static QString getParamLabel(ParamType type);

  /// Value of a parameter in the model.
  double getParamValue(int structure, ParamType type, int index1, int index2) const;

  /// One key per option.
  QString toString() const;

  void setNVariables(int nVariables) override;
  bool isValid() const override;
  void removeNugget() override;
  void removeStructure(int index) override;
  void normalizeSillsAndRanges(double maxDist, const NgmMatrix &variances) override;
  void denormalizeSillsAndRanges(double maxDist, const NgmMatrix &variances) override;
  QStringList summary(bool withDimensions, bool withSills, int digits) const override;

private:
  struct _Key
  {
    int structure;
    ParamType type;
    int index1;
    int index2;
    bool operator<(const _Key &other) const
    {
      return std::tie(structure, type, index1, index2) <
             std::tie(other.structure, other.type, other.index1, other.index2);
    }
  };

  _Key _key(int structure, ParamType type, int index1, int index2) const;
  void _checkParam(int structure, ParamType type, int index1, int index2) const;
  QList<_Key> _keysOf(int structure, ParamType type) const;
  bool _isOf(ConstraintType constraint, const _Key &key) const;
  bool _hasSillConstraint() const;
  bool _hasKnownSills() const;
  void _checkConstraintList() const;
  void _checkConstraint(const _Key &key) const;
  void _rescaleBounds(double factor);
  NgmMatrix _checkedNugget(const NgmMatrix &nugget, const char *message) const;
  QStringList _globalSummary(int digits) const;
  QStringList _constraintSummary(int digits) const;

  bool _fitNugget = true;
  bool _fitSillsOnly = false;
  bool _authAniso = true;
  bool _authRotation = true;
  bool _authCompress = true;
  bool _lockSameRot = false;
  bool _lockRot2D = false;
  bool _lockNo3D = false;
  bool _lockIso2D = false;
  bool _wantIntrinsic = false;
  double _tolNugget = 5.;
  double _tolSigma = 5.;
  int _nbMinStruct = 1;
  int _nbMaxStruct = -1;
  QMap<_Key, ConstraintType> _constraints;
  QMap<_Key, NbiIntervalData> _bounds;
  bool _hasKnownNugget = false;
  NgmMatrix _minNugget = NgmMatrix(0, 0, false);
  NgmMatrix _maxNugget = NgmMatrix(0, 0, false);
  QVector<double> _cumulativeSills;
};
