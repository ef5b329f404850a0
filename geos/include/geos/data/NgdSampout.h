#pragma once

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdDataPoints.h"
#include "basic/geom/NbgRotation.h"
#include "basic/geom/NbgVector3D.h"

#include <QList>
#include <QMap>
#include <QMutex>
#include <QString>
#include <QStringList>

class NbdAVariableNumeric;
class NbdVariableAlpha;
class NgdDataSetPoints;
class NgdVariableRules;
class NgmNeighborhoodMoving;

/// The sample output of an interpolation: a points data set that receives one row for every target
/// and every neighbor used to estimate it, so that an estimation can be audited.
///
/// Each worker collects the rows of one target in a context of its own and appends them when the
/// target is done: the rows of a target are contiguous, targets come in the order in which workers
/// finish them. Rows are appended behind what the data set holds.
///
/// Auxiliary variables are filled by name: `I_GRADE` receives the neighbor's value of the input
/// variable GRADE, `O_GRADE` the target's value of the output variable GRADE.
class NgdSampout
{
public:
  /// Rows of one worker.
  class ThreadContext;

  /// One row beside what the context knows of its target.
  struct Neighbor
  {
    NbgVector3D location;
    QString variableName;
    double value = NbbGlobal::D_FFFF;
    double weight = NbbGlobal::D_FFFF;
    double rhs = NbbGlobal::D_FFFF;
    int code = NbbGlobal::I32_FFFF;
    int codeCount = NbbGlobal::I32_FFFF;
  };

  /// Values that auxiliary variables take, by the name of the variable they come from.
  struct Auxiliary
  {
    QMap<QString, double> values;
    QMap<QString, QString> texts;
  };

  NgdSampout() = default;
  NgdSampout(const NgdSampout &) = delete;
  NgdSampout &operator=(const NgdSampout &) = delete;

  /// Under which the data set is registered in the rules of a calculator.
  static QString getDatasetId();

  static QString getRoleBlockCenter();
  static QString getRoleNeighborCoor();
  static QString getRoleGradeValue();
  static QString getRoleWeight();
  static QString getRoleDistanceEuclid();
  static QString getRoleDistanceAniso();
  static QString getRoleGradeName();
  static QString getRoleCode();
  static QString getRoleCodeCount();
  static QString getRoleAuxiliary();
  static QString getRoleAuxiliaryString();
  static QString getRoleRhs();

  /// Not owned; open for writing while rows are written.
  void setDataSet(NgdDataSetPoints *dataSet) { _dataSet = dataSet; }
  const NgdDataSetPoints *getDataSet() const { return _dataSet; }

  /// Names of the estimated variables, in their order.
  void setVariableNames(const QStringList &names) { _variableNames = names; }
  const QStringList &getVariableNames() const { return _variableNames; }

  /// Right-hand sides are written.
  void setHasRhs(bool hasRhs) { _hasRhs = hasRhs; }
  bool hasRhs() const { return _hasRhs; }

  /// Block model whose cell around a target gives the centre in its rows; `origin` is the centre of
  /// its first cell. Without one (null cells) that is the target itself.
  void setBlockModelGridGeom(const NbgVector3D &origin, const NbgVector3D &cellSize,
                             const NbgRotation &rotation);

  /// Declare the roles of the data set; the second that of the right-hand side.
  void registerInterpolConstraints(NgdVariableRules &rules) const;
  void registerKrigingConstraints(NgdVariableRules &rules) const;

  /// A new context; the caller owns it. `rectangular`: anisotropic distances are the largest
  /// component of the scaled vector instead of its norm.
  ThreadContext *initWorker(bool rectangular) const;

  /// Adds a row for the context's target.
  void addNeighbor(ThreadContext &context, const Neighbor &neighbor, const Auxiliary &input,
                   const Auxiliary &output) const;

  /// Appends the rows of the context's target to the data set.
  void sampoutEndTarget(ThreadContext &context);

  /// Values at position `sample`, by name of variable.
  static QMap<QString, double> prepareAuxiliaryData(const QList<NbdAVariableNumeric *> &variables,
                                                    int sample);
  static QMap<QString, QString> prepareAuxiliaryStringData(
      const QList<NbdVariableAlpha *> &variables, int sample);

private:
  NbgVector3D _findBlockCenter(const NbgVector3D &target) const;

  NgdDataSetPoints *_dataSet = nullptr;
  QStringList _variableNames;
  bool _hasRhs = false;
  NbgRotation _inverseRotation;
  NbgVector3D _origin;
  NbgVector3D _cellSize;
  QMutex _mutex;  // serialises appending
};

class NgdSampout::ThreadContext
{
public:
  ThreadContext(const NgdSampout &sampout, bool rectangular);
  ThreadContext(const ThreadContext &) = delete;
  ThreadContext &operator=(const ThreadContext &) = delete;

  /// The target of the next rows.
  void setTarget(const NbgVector3D &location) { _target = location; }

  /// Distances are relative to this search ellipsoid: 1 on its surface.
  void setSearchEllipsoid(const NgmNeighborhoodMoving &parameters);

  bool hasAuxiliary() const { return !_auxiliary.isEmpty() || !_auxiliaryStrings.isEmpty(); }
  int getNRows() const { return _nRows; }

private:
  friend class NgdSampout;

  void _appendRow();
  void _writeDistances(int row, const NbgVector3D &difference);
  void _writeAuxiliary(int row, const Auxiliary &input, const Auxiliary &output);
  void _clear();

  NbdDataPoints _buffer;
  int _nRows = 0;
  NbdAVariableNumeric *_blockCenter[3] = {};
  NbdAVariableNumeric *_neighborCoor[3] = {};
  NbdAVariableNumeric *_value = nullptr;
  NbdAVariableNumeric *_weight = nullptr;
  NbdAVariableNumeric *_distanceEuclid = nullptr;
  NbdAVariableNumeric *_distanceAniso = nullptr;
  NbdVariableAlpha *_name = nullptr;
  NbdAVariableNumeric *_code = nullptr;
  NbdAVariableNumeric *_codeCount = nullptr;
  NbdAVariableNumeric *_rhs = nullptr;
  QList<NbdAVariableNumeric *> _auxiliary;
  QList<NbdVariableAlpha *> _auxiliaryStrings;

  NbgVector3D _target;
  NbgRotation _rotation;  ///< turns world vectors into the frame of the search ellipsoid
  NbgVector3D _scale = NbgVector3D(1., 1., 1.);
  bool _rectangular;
};
