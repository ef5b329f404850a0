#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/base/NbbIDebuggable.h"
#include "basic/data/NbdDataTable.h"
#include "basic/geom/NbgRotation.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/stats/NgmVariogramCloudDensity.h"

#include <QList>
#include <QMap>
#include <QStringList>
#include <QVector>

#include <vector>

class NgmPairsVariogramCloud;

/// Experimental variograms and covariances: one table per direction and pair of variables, with a
/// row per lag and a column per curve, and what goes with them (pseudo-sills, C00).
///
/// Shape:   a variogram table has as many rows as its direction has lags (N), a covariance table
///          2N + 1: row N is distance 0, row N + 1 + k lag k along the direction, row N - 1 - k lag
///          k against it, at a negative distance
/// Pairs:   without cross variograms a direction has the tables (i, i), with them the upper
///          triangle in row order; (i, j) and (j, i) name the same table
/// Missing: a lag without pairs holds zeros and is masked
///
/// A value: copies are independent.
class NgmVariogramExpData : public NbbASerializable, public NbbIDebuggable
{
public:
  /// A direction as results know it. It belongs to one or several groups, each with the rank that
  /// it has among all groups and the orientation of its reference plane.
  class Direction
  {
  public:
    const QString &getName() const { return _name; }
    const NbgRotation &getRotation() const { return _rotation; }
    NbgVector3D getVector() const { return _rotation.getAxisX(); }
    /// Number of lags.
    int getSize() const { return _size; }
    const QList<int> &getGroupRanks() const { return _groupRanks; }
    const QStringList &getGroupNames() const { return _groupNames; }

  private:
    friend class NgmVariogramExpData;

    QString _name;
    NbgRotation _rotation;
    QList<int> _groupRanks;
    QStringList _groupNames;
    QMap<QString, NbgRotation> _referencePlanes;
    int _size = 0;
  };

  NgmVariogramExpData();
  ~NgmVariogramExpData() override;
  NgmVariogramExpData(const NgmVariogramExpData &) = default;
  NgmVariogramExpData &operator=(const NgmVariogramExpData &) = default;

  /// Whether a curve is compared to a sill that has no closed form and is estimated from pairs.
  static bool requiresPseudoSill(const NbbAEnum &curve);
  /// Whether a variogram model can be fitted to a curve: those that have a sill of their own.
  static bool isColumnFittingEnabled(const NbbAEnum &curve);
  static QString getColumnName(const NbbAEnum &curve) { return curve.getLabel(); }
  static QString getColumnKey(const NbbAEnum &curve) { return curve.getKeyString(); }

  /// Forgets everything, or the tables, pseudo-sills and C00 only.
  void clear();
  void clearResults();

  /// Clears the results.
  void setNVariables(int n);
  int getNVariables() const { return _nVariables; }
  int getNVariablePairs() const { return _tableSize(); }

  bool containsCross() const { return _containsCross; }
  void setContainsCross(bool cross) { _containsCross = cross; }

  double getMinimumLag() const { return _minimumLag; }
  void setMinimumLag(double lag) { _minimumLag = lag; }

  // Directions. They are added before the tables are created.

  /// Returns the rank of the new direction.
  int addDirection(const NbgRotation &rotation, int size, const QString &name);
  int addDirectionVector(const NbgVector3D &vector, int size, const QString &name);

  /// Puts a direction into a group, whose rank is that of its first use among all groups.
  void addDirectionGroupName(int dir, const QString &group, const NbgRotation &refPlane);
  void addDirectionGroupNameWithRank(int dir, const QString &group, int rank,
                                     const NbgRotation &refPlane);
  void setGroupDescription(const QString &group, const QString &text);
  QString getGroupDescription(const QString &group) const { return _descriptions.value(group); }

  int getNDirections() const { return _directions.size(); }
  /// Horizontal directions, and the others.
  int getNDirections2D() const;
  int getNDirections3D() const { return getNDirections() - getNDirections2D(); }
  /// 3 when a direction is not horizontal.
  int getNDimensions() const { return getNDirections3D() > 0 ? 3 : 2; }
  int getNLags(int dir) const { return getDirection(dir).getSize(); }
  const Direction &getDirection(int dir) const;
  QString getDirectionName(int dir) const { return getDirection(dir).getName(); }
  QStringList getAllDirectionNames() const;
  NbgVector3D getDirectionVector(int dir) const { return getDirection(dir).getVector(); }
  NbgRotation getDirectionOrientation(int dir) const { return getDirection(dir).getRotation(); }
  QStringList getDirectionGroupNames(int dir) const { return getDirection(dir).getGroupNames(); }
  QList<int> getDirectionGroupRanks(int dir) const { return getDirection(dir).getGroupRanks(); }
  /// The identity for a group that the direction does not belong to.
  NbgRotation getReferencePlaneOrientation(int dir, const QString &group) const;
  /// Group names by rank, then name.
  QStringList getAllDirectionGroupNames() const;
  /// Names and ranks of the directions of each group, in order of directions.
  QMap<QString, QStringList> getAllDirectionByGroup() const;
  QMap<QString, QList<int>> getAllDirectionRanksByGroup() const;

  // Tables.

  /// Replaces the tables by new ones with zeros; no variogram (covariance) tables without such
  /// curves.
  void createTables(const QList<NgmEVarioExp> &varios, const QList<NgmECovaExp> &covas, bool cross);
  /// Variograms only, with cross variograms.
  void createStandardTables();

  /// Writers of one column of the table (i, j) of a direction. n is its number of rows.
  void setDistances(int dir, bool isCova, int i, int j, int n, const double *values);
  void setNumberOfPairs(int dir, bool isCova, int i, int j, int n, const long long *values);
  void setVarioValues(int dir, NgmEVarioExp::EValue curve, int i, int j, int n,
                      const double *values);
  void setCovaValues(int dir, NgmECovaExp::EValue curve, int i, int j, int n, const double *values);

  /// The tables, with the columns "Distance", "Number of pairs" and one per curve, under the roles
  /// DISTANCE, NPAIRS and the keys of the curves.
  const NbdDataTable &getVariogramData(int dir, int i, int j) const;
  const NbdDataTable &getCovarianceData(int dir, int i, int j) const;

  QVector<double> getDistances(int dir, bool isCova, int i, int j) const;
  QVector<qint64> getNumberOfPairs(int dir, bool isCova, int i, int j) const;
  /// True for the lags without pairs; the origin of covariances is never masked.
  QVector<bool> getMasked(int dir, bool isCova, int i, int j) const;
  /// The column of a curve; a programming error when it was not computed.
  QVector<double> getVarioColumn(int dir, NgmEVarioExp::EValue curve, int i, int j) const;
  QVector<double> getCovaColumn(int dir, NgmECovaExp::EValue curve, int i, int j) const;

  /// Distances and values of a curve at the lags that are not masked.
  QVector<double> extractDistances(int dir, const NbbAEnum &curve, int i, int j) const;
  QVector<double> extractVarioValues(int dir, const NbbAEnum &curve, int i, int j) const;

  bool hasVario(const NgmEVarioExp &curve) const { return _hasColumn(_varios, curve); }
  bool hasCova(const NgmECovaExp &curve) const { return _hasColumn(_covas, curve); }
  /// Labels of the curves, variograms first.
  QStringList getCurveNames() const;

  /// Gives back the memory that tables have in spare.
  void compressAllTables();

  // Clouds: the extreme pairs of samples behind a curve one by one, with the columns "DISTANCE",
  // "VARIOGRAM" or "COVARIANCE" (the roles) and the numbers of both samples (SN1 and SN2), and an
  // image of all pairs. They are not written to streams and keep their units.

  /// Replaces the clouds of variograms, covariances or both by empty ones.
  void createCloudTables(bool vario, bool cova);
  void setVariogramCloudVariables(int dir, bool isCova, int i, int j,
                                  const std::vector<NgmPairsVariogramCloud> &pairs);
  void setCloudDensity(int dir, bool isCova, int i, int j, const NgmVariogramCloudDensity &density);

  bool hasVarioCloud() const { return !_varioClouds.isEmpty(); }
  bool hasCovaCloud() const { return !_covaClouds.isEmpty(); }
  const NbdDataTable &getCloudTable(int dir, bool isCova, int i, int j) const;
  /// The column of one of the roles of a cloud table.
  const NbdAVariableNumeric &getCloudVariable(int dir, bool isCova, int i, int j,
                                              const QString &role) const;
  /// Without cells when no image was wanted.
  const NgmVariogramCloudDensity &getCloudDensity(int dir, bool isCova, int i, int j) const;

  /// The role of the values of a cloud table.
  static QString getCloudValueRole(bool isCova);

  /// The largest mean distance of a lag with pairs in the tables of a direction, or of all; 0
  /// without any.
  double getMaximumDistance(int dir) const;
  double getMaximumDistanceExperimental() const;

  // Sills.

  void setVarioPseudoSill(const NgmEVarioExp &curve, int pairRank, double value);
  void setCovaPseudoSill(const NgmECovaExp &curve, int pairRank, double value);
  bool hasPseudoSill(const NbbAEnum &curve) const;
  /// Undefined when there is none.
  double getPseudoSill(const NbbAEnum &curve, int pairRank) const;
  double getVarioPseudoSill(const NgmEVarioExp &curve, int pairRank) const;
  double getCovaPseudoSill(const NgmECovaExp &curve, int pairRank) const;
  /// One row and column per variable, 0 where there is none; and the same divided by the root of
  /// the product of both diagonal elements (0 where that is not positive).
  NgmMatrix getPseudoSillMatrix(const NbbAEnum &curve) const;
  NgmMatrix getPseudoSillRatioMatrix(const NbbAEnum &curve) const;

  bool hasC00() const { return _hasC00; }
  const NgmMatrix &getC00() const { return _c00; }
  void setC00(const NgmMatrix &c00);
  /// The covariances at distance 0: those of the experimental covariances, and the elements of
  /// `covariances` where there are none.
  NgmMatrix getC00FromCovariance(const NgmMatrix &covariances) const;

  /// Makes the results dimensionless: distances in units of the largest one, values of the pair (i,
  /// j) in units of sqrt(sills(i, i) sills(j, j)). A null sill does not scale.
  void normalizeVariogram(const NgmMatrix &sills);

  /// Keeps the listed variables, in their order in the results.
  void extractFromVariables(const QList<int> &variables);

  QString summary() const;
  /// The values of a curve, one line per direction, pair of variables and lag.
  QString toString(const NbbAEnum &curve) const;
  QString debug(int level) const override;

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override { return true; }
  QString _displayName() const override;

private:
  struct _Cloud
  {
    NbdDataTable table;
    NgmVariogramCloudDensity density;
  };
  using _Sills = QVector<QMap<QString, double>>;

  int _getColumnSize(int dir, bool isCova) const;
  int _tableSize() const;
  int _pairRank(int i, int j) const;
  int _tableRank(int dir, int i, int j) const;
  const NbdDataTable &_getTable(int dir, bool isCova, int i, int j) const;
  NbdDataTable &_getOwnTable(int dir, bool isCova, int i, int j);
  int _cloudRank(int dir, bool isCova, int i, int j) const;
  QList<_Cloud> _newClouds(bool isCova) const;
  void _checkColumn(int dir, bool isCova, int n) const;
  void _setColumn(int dir, bool isCova, const NbbAEnum &curve, int i, int j, int n,
                  const double *values);
  QVector<double> _getColumn(int dir, bool isCova, const QString &role, int i, int j) const;
  bool _hasColumn(const QList<NbdDataTable> &tables, const NbbAEnum &curve) const;
  bool _hasCurve(const NbbAEnum &curve) const;
  QStringList _curveKeys(const QList<NbdDataTable> &tables) const;
  QVector<double> _unmasked(int dir, bool isCova, int i, int j, const QVector<double> &all) const;
  void _normalizeTables(QList<NbdDataTable> &tables, double distance,
                        const QVector<double> &deviations) const;
  double _maximumOf(const QList<NbdDataTable> &tables, int dir) const;
  template <class Curve>
  QList<NbdDataTable> _newTables(const QList<Curve> &curves, bool isCova) const;
  Direction _readDirection(QDataStream &stream) const;
  QList<NbdDataTable> _readTables(QDataStream &stream, bool isCova);
  _Sills _readSills(QDataStream &stream) const;

  int _nVariables = 1;
  bool _containsCross = true;
  QList<Direction> _directions;
  QMap<QString, QString> _descriptions;
  QList<NbdDataTable> _varios;
  QList<NbdDataTable> _covas;
  NgmMatrix _c00;
  bool _hasC00 = false;
  QList<_Cloud> _varioClouds;
  QList<_Cloud> _covaClouds;
  _Sills _varioSills;
  _Sills _covaSills;
  double _minimumLag = 0.;
};
