#include "geos/stats/NgmVariogramExpData.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/error/NbeAssertion.h"
#include "geos/stats/NgmPairsVariogramCloud.h"

#include <QDataStream>
#include <QObject>

#include <algorithm>
#include <cmath>

namespace {

constexpr unsigned int CURRENT_VERSION = 220309;
constexpr unsigned int FIRST_READABLE_VERSION = 160324;
constexpr int MAXIMUM_VARIABLES = 999;
constexpr qint64 MAXIMUM_COUNT = 1000000;
constexpr double NULL_SILL = 1e-30;

const QString &distanceRole()
{
  return Nbd::Role::DISTANCE;
}

bool isCovariance(const NbbAEnum &curve)
{
  return dynamic_cast<const NgmECovaExp *>(&curve) != nullptr;
}

NbdVariableDetails named(const char *name)
{
  return NbdVariableDetails(QString::fromLatin1(name));
}

void setToZero(NbdAVariableNumeric &variable)
{
  variable.setAllValues(0.);
}

QString labelOfKey(const QString &key)
{
  return NgmEVarioExp::existsKey(key) ? NgmEVarioExp::fromKey(key).getLabel()
                                      : NgmECovaExp::fromKey(key).getLabel();
}

template <class T>
QVector<T> toVector(const std::vector<T> &values)
{
  return QVector<T>(values.cbegin(), values.cend());
}

double sillOf(const QVector<QMap<QString, double>> &sills, const NbbAEnum &curve, int pairRank)
{
  if (pairRank < 0 || pairRank >= sills.size())
    return NbbGlobal::D_FFFF;
  return sills[pairRank].value(NgmVariogramExpData::getColumnKey(curve), NbbGlobal::D_FFFF);
}

}  // namespace

NgmVariogramExpData::NgmVariogramExpData() = default;
NgmVariogramExpData::~NgmVariogramExpData() = default;

bool NgmVariogramExpData::requiresPseudoSill(const NbbAEnum &curve)
{
  static const QStringList closedForms{
      QStringLiteral("VARIOGRAM"),   QStringLiteral("VARIOGRAM_CROSS_OVER_SIMPLE"),
      QStringLiteral("COVARIANCE"),  QStringLiteral("NON_ERGODIC_COVARIANCE"),
      QStringLiteral("CORRELOGRAM"), QStringLiteral("NON_ERGODIC_CORRELOGRAM")};
  return !closedForms.contains(getColumnKey(curve));
}

bool NgmVariogramExpData::isColumnFittingEnabled(const NbbAEnum &curve)
{
  // Quotients of curves, and covariances whose value at distance 0 is not the variance.
  static const QStringList others{QStringLiteral("VARIOGRAM_CROSS_OVER_SIMPLE"),
                                  QStringLiteral("VARIOGRAM_CROSS_OVER_SQRT_SIMPLE"),
                                  QStringLiteral("VARIOGRAM_OVER_MADOGRAM"),
                                  QStringLiteral("SQRT_VARIOGRAM_OVER_MADOGRAM"),
                                  QStringLiteral("NON_CENTERED_COVARIANCE"),
                                  QStringLiteral("ODD_PART_COVARIANCE"),
                                  QStringLiteral("TRANSITIVE_COVARIOGRAM")};
  return !others.contains(getColumnKey(curve));
}

void NgmVariogramExpData::clear()
{
  *this = NgmVariogramExpData();
}

void NgmVariogramExpData::clearResults()
{
  _varios.clear();
  _covas.clear();
  _varioClouds.clear();
  _covaClouds.clear();
  _varioSills.clear();
  _covaSills.clear();
  _c00 = NgmMatrix();
  _hasC00 = false;
}

void NgmVariogramExpData::setNVariables(int n)
{
  if (n < 1 || n > MAXIMUM_VARIABLES)
    NBE_FAIL(QStringLiteral("Invalid number of variables"));
  _nVariables = n;
  clearResults();
}

// Directions.

int NgmVariogramExpData::addDirection(const NbgRotation &rotation, int size, const QString &name)
{
  Direction direction;
  direction._name = name;
  direction._rotation = rotation;
  direction._size = size;
  _directions << direction;
  return _directions.size() - 1;
}

int NgmVariogramExpData::addDirectionVector(const NbgVector3D &vector, int size,
                                            const QString &name)
{
  return addDirection(NbgRotation::fromDirection(vector), size, name);
}

void NgmVariogramExpData::addDirectionGroupName(int dir, const QString &group,
                                                const NbgRotation &refPlane)
{
  int rank = 0;
  for (const Direction &direction : qAsConst(_directions)) {
    const int position = direction._groupNames.indexOf(group);
    if (position >= 0)
      return addDirectionGroupNameWithRank(dir, group, direction._groupRanks[position], refPlane);
    for (const int used : direction._groupRanks)
      rank = std::max(rank, used + 1);
  }
  addDirectionGroupNameWithRank(dir, group, rank, refPlane);
}

void NgmVariogramExpData::addDirectionGroupNameWithRank(int dir, const QString &group, int rank,
                                                        const NbgRotation &refPlane)
{
  getDirection(dir);
  Direction &direction = _directions[dir];
  const int position = direction._groupNames.indexOf(group);
  if (position < 0) {
    direction._groupNames << group;
    direction._groupRanks << rank;
  } else {
    direction._groupRanks[position] = rank;
  }
  direction._referencePlanes[group] = refPlane;
}

void NgmVariogramExpData::setGroupDescription(const QString &group, const QString &text)
{
  _descriptions[group] = text;
}

int NgmVariogramExpData::getNDirections2D() const
{
  return int(std::count_if(_directions.cbegin(), _directions.cend(),
                           [](const Direction &d) { return std::fabs(d.getVector().z()) < 1e-9; }));
}

const NgmVariogramExpData::Direction &NgmVariogramExpData::getDirection(int dir) const
{
  if (dir < 0 || dir >= _directions.size())
    NBE_FAIL(QStringLiteral("invalid direction rank"));
  return _directions[dir];
}

QStringList NgmVariogramExpData::getAllDirectionNames() const
{
  QStringList names;
  for (const Direction &direction : _directions)
    names << direction._name;
  return names;
}

NbgRotation NgmVariogramExpData::getReferencePlaneOrientation(int dir, const QString &group) const
{
  return getDirection(dir)._referencePlanes.value(group);
}

QStringList NgmVariogramExpData::getAllDirectionGroupNames() const
{
  QMap<QPair<int, QString>, bool> groups;
  for (const Direction &direction : _directions) {
    for (int g = 0; g < direction._groupNames.size(); ++g)
      groups[{direction._groupRanks[g], direction._groupNames[g]}] = true;
  }
  QStringList names;
  for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
    if (!names.contains(group.key().second))
      names << group.key().second;
  }
  return names;
}

QMap<QString, QList<int>> NgmVariogramExpData::getAllDirectionRanksByGroup() const
{
  QMap<QString, QList<int>> ranks;
  for (int dir = 0; dir < _directions.size(); ++dir) {
    for (const QString &group : _directions[dir]._groupNames)
      ranks[group] << dir;
  }
  return ranks;
}

QMap<QString, QStringList> NgmVariogramExpData::getAllDirectionByGroup() const
{
  QMap<QString, QStringList> names;
  for (const Direction &direction : _directions) {
    for (const QString &group : direction._groupNames)
      names[group] << direction._name;
  }
  return names;
}

// Tables.

int NgmVariogramExpData::_getColumnSize(int dir, bool isCova) const
{
  const int size = getDirection(dir)._size;
  return isCova ? 2 * size + 1 : size;
}

int NgmVariogramExpData::_tableSize() const
{
  return _containsCross ? _nVariables * (_nVariables + 1) / 2 : _nVariables;
}

int NgmVariogramExpData::_pairRank(int i, int j) const
{
  if (i < 0 || j < 0 || i >= _nVariables || j >= _nVariables)
    NBE_FAIL(QStringLiteral("invalid variable rank"));
  if (i == j && !_containsCross)
    return i;
  if (!_containsCross)
    NBE_FAIL(QStringLiteral("Cross variograms are not computed."));
  const int first = std::min(i, j);
  // Rows of n, n - 1, ... elements stand before row `first`.
  return first * _nVariables - first * (first - 1) / 2 + std::abs(i - j);
}

int NgmVariogramExpData::_tableRank(int dir, int i, int j) const
{
  return dir * _tableSize() + _pairRank(i, j);
}

const NbdDataTable &NgmVariogramExpData::_getTable(int dir, bool isCova, int i, int j) const
{
  const QList<NbdDataTable> &tables = isCova ? _covas : _varios;
  const int rank = _tableRank(dir, i, j);
  if (dir < 0 || dir >= _directions.size() || rank >= tables.size())
    NBE_FAIL(QStringLiteral(
        "NgmVariogramExpData::_getTable: invalid direction rank or tables not created"));
  return tables[rank];
}

// Copies share tables: one that is to be changed is taken from them first.
NbdDataTable &NgmVariogramExpData::_getOwnTable(int dir, bool isCova, int i, int j)
{
  _getTable(dir, isCova, i, j);
  return (isCova ? _covas : _varios)[_tableRank(dir, i, j)];
}

template <class Curve>
QList<NbdDataTable> NgmVariogramExpData::_newTables(const QList<Curve> &curves, bool isCova) const
{
  QList<NbdDataTable> tables;
  for (int dir = 0; !curves.isEmpty() && dir < _directions.size(); ++dir) {
    NbdDataTable table;
    table.createVariableNumeric(distanceRole(), named("Distance"));
    table.createVariableNumeric(Nbd::Role::NPAIRS, named("Number of pairs"), Nbd::TYPE_INT64);
    for (const Curve &curve : curves)
      table.createVariableNumeric(getColumnKey(curve), NbdVariableDetails(getColumnName(curve)));
    table.setNSamples(_getColumnSize(dir, isCova));
    for (NbdAVariable *variable : table.getAllVars())
      setToZero(static_cast<NbdAVariableNumeric &>(*variable));
    for (int pair = 0; pair < _tableSize(); ++pair)
      tables << table;
  }
  return tables;
}

void NgmVariogramExpData::createTables(const QList<NgmEVarioExp> &varios,
                                       const QList<NgmECovaExp> &covas, bool cross)
{
  _containsCross = cross;
  _varios = _newTables(varios, false);
  _covas = _newTables(covas, true);
}

void NgmVariogramExpData::createStandardTables()
{
  createTables({NgmEVarioExp::VARIOGRAM}, {}, true);
}

void NgmVariogramExpData::_checkColumn(int dir, bool isCova, int n) const
{
  if (n != _getColumnSize(dir, isCova))
    NBE_FAIL(QStringLiteral("invalid number of lags"));
}

void NgmVariogramExpData::setDistances(int dir, bool isCova, int i, int j, int n,
                                       const double *values)
{
  NbdDataTable &table = _getOwnTable(dir, isCova, i, j);
  _checkColumn(dir, isCova, n);
  std::copy_n(values, n, table.getVarDoubleRef(distanceRole()).getArray());
}

void NgmVariogramExpData::setNumberOfPairs(int dir, bool isCova, int i, int j, int n,
                                           const long long *values)
{
  NbdDataTable &table = _getOwnTable(dir, isCova, i, j);
  _checkColumn(dir, isCova, n);
  std::copy_n(values, n, table.getVarInt64Ref(Nbd::Role::NPAIRS).getArray());
}

void NgmVariogramExpData::_setColumn(int dir, bool isCova, const NbbAEnum &curve, int i, int j,
                                     int n, const double *values)
{
  NbdDataTable &table = _getOwnTable(dir, isCova, i, j);
  _checkColumn(dir, isCova, n);
  std::copy_n(values, n, table.getVarDoubleRef(getColumnKey(curve)).getArray());
}

void NgmVariogramExpData::setVarioValues(int dir, NgmEVarioExp::EValue curve, int i, int j, int n,
                                         const double *values)
{
  _setColumn(dir, false, NgmEVarioExp::fromValue(int(curve)), i, j, n, values);
}

void NgmVariogramExpData::setCovaValues(int dir, NgmECovaExp::EValue curve, int i, int j, int n,
                                        const double *values)
{
  _setColumn(dir, true, NgmECovaExp::fromValue(int(curve)), i, j, n, values);
}

const NbdDataTable &NgmVariogramExpData::getVariogramData(int dir, int i, int j) const
{
  return _getTable(dir, false, i, j);
}

const NbdDataTable &NgmVariogramExpData::getCovarianceData(int dir, int i, int j) const
{
  return _getTable(dir, true, i, j);
}

QVector<double> NgmVariogramExpData::_getColumn(int dir, bool isCova, const QString &role, int i,
                                                int j) const
{
  return toVector(_getTable(dir, isCova, i, j).getVarDoubleRef(role).getVector());
}

QVector<double> NgmVariogramExpData::getDistances(int dir, bool isCova, int i, int j) const
{
  return _getColumn(dir, isCova, distanceRole(), i, j);
}

QVector<qint64> NgmVariogramExpData::getNumberOfPairs(int dir, bool isCova, int i, int j) const
{
  return toVector(_getTable(dir, isCova, i, j).getVarInt64Ref(Nbd::Role::NPAIRS).getVector());
}

QVector<bool> NgmVariogramExpData::getMasked(int dir, bool isCova, int i, int j) const
{
  const QVector<qint64> nPairs = getNumberOfPairs(dir, isCova, i, j);
  QVector<bool> masked;
  for (const qint64 n : nPairs)
    masked << (n <= 0);
  if (isCova)
    masked[getNLags(dir)] = false;
  return masked;
}

QVector<double> NgmVariogramExpData::getVarioColumn(int dir, NgmEVarioExp::EValue curve, int i,
                                                    int j) const
{
  return _getColumn(dir, false, getColumnKey(NgmEVarioExp::fromValue(int(curve))), i, j);
}

QVector<double> NgmVariogramExpData::getCovaColumn(int dir, NgmECovaExp::EValue curve, int i,
                                                   int j) const
{
  return _getColumn(dir, true, getColumnKey(NgmECovaExp::fromValue(int(curve))), i, j);
}

QVector<double> NgmVariogramExpData::_unmasked(int dir, bool isCova, int i, int j,
                                               const QVector<double> &all) const
{
  const QVector<bool> masked = getMasked(dir, isCova, i, j);
  QVector<double> kept;
  for (int k = 0; k < all.size(); ++k) {
    if (!masked[k])
      kept << all[k];
  }
  return kept;
}

QVector<double> NgmVariogramExpData::extractDistances(int dir, const NbbAEnum &curve, int i,
                                                      int j) const
{
  const bool isCova = isCovariance(curve);
  return _unmasked(dir, isCova, i, j, getDistances(dir, isCova, i, j));
}

QVector<double> NgmVariogramExpData::extractVarioValues(int dir, const NbbAEnum &curve, int i,
                                                        int j) const
{
  const bool isCova = isCovariance(curve);
  return _unmasked(dir, isCova, i, j, _getColumn(dir, isCova, getColumnKey(curve), i, j));
}

bool NgmVariogramExpData::_hasColumn(const QList<NbdDataTable> &tables, const NbbAEnum &curve) const
{
  return !tables.isEmpty() && tables.first().hasRole(getColumnKey(curve));
}

bool NgmVariogramExpData::_hasCurve(const NbbAEnum &curve) const
{
  return _hasColumn(isCovariance(curve) ? _covas : _varios, curve);
}

QStringList NgmVariogramExpData::_curveKeys(const QList<NbdDataTable> &tables) const
{
  // Behind distances and numbers of pairs.
  return tables.isEmpty() ? QStringList() : tables.first().getAllRoles().mid(2);
}

QStringList NgmVariogramExpData::getCurveNames() const
{
  QStringList names;
  for (const QString &key : _curveKeys(_varios) + _curveKeys(_covas))
    names << labelOfKey(key);
  return names;
}

void NgmVariogramExpData::compressAllTables()
{
  QList<const NbdDataTable *> tables;
  for (const QList<NbdDataTable> *all : {&_varios, &_covas}) {
    for (const NbdDataTable &table : *all)
      tables << &table;
  }
  for (const QList<_Cloud> *all : {&_varioClouds, &_covaClouds}) {
    for (const _Cloud &cloud : *all)
      tables << &cloud.table;
  }
  for (const NbdDataTable *table : qAsConst(tables)) {
    for (NbdAVariable *variable : table->getAllVars())
      variable->squeeze();
  }
}

// Clouds.

QString NgmVariogramExpData::getCloudValueRole(bool isCova)
{
  return isCova ? getColumnKey(NgmECovaExp::COVARIANCE) : getColumnKey(NgmEVarioExp::VARIOGRAM);
}

QList<NgmVariogramExpData::_Cloud> NgmVariogramExpData::_newClouds(bool isCova) const
{
  _Cloud cloud;
  cloud.table.createVariableNumeric(distanceRole(), named("DISTANCE"));
  cloud.table.createVariableNumeric(getCloudValueRole(isCova),
                                    NbdVariableDetails(getCloudValueRole(isCova)));
  cloud.table.createVariableNumeric(Nbd::Role::SN1, named("Sample number of point 1"),
                                    Nbd::TYPE_INT64);
  cloud.table.createVariableNumeric(Nbd::Role::SN2, named("Sample number of point 2"),
                                    Nbd::TYPE_INT64);
  QList<_Cloud> clouds;
  for (int rank = 0; rank < _directions.size() * _tableSize(); ++rank)
    clouds << cloud;
  return clouds;
}

void NgmVariogramExpData::createCloudTables(bool vario, bool cova)
{
  _varioClouds = vario ? _newClouds(false) : QList<_Cloud>();
  _covaClouds = cova ? _newClouds(true) : QList<_Cloud>();
}

int NgmVariogramExpData::_cloudRank(int dir, bool isCova, int i, int j) const
{
  const int rank = _tableRank(dir, i, j);
  if (dir < 0 || rank >= (isCova ? _covaClouds : _varioClouds).size())
    NBE_FAIL(QStringLiteral("invalid direction rank or clouds not created"));
  return rank;
}

void NgmVariogramExpData::setVariogramCloudVariables(
    int dir, bool isCova, int i, int j, const std::vector<NgmPairsVariogramCloud> &pairs)
{
  const int rank = _cloudRank(dir, isCova, i, j);
  NbdDataTable &table = (isCova ? _covaClouds : _varioClouds)[rank].table;
  table.setNSamples(int(pairs.size()));
  double *distances = table.getVarDoubleRef(distanceRole()).getArray();
  double *values = table.getVarDoubleRef(getCloudValueRole(isCova)).getArray();
  qint64 *first = table.getVarInt64Ref(Nbd::Role::SN1).getArray();
  qint64 *second = table.getVarInt64Ref(Nbd::Role::SN2).getArray();
  for (std::size_t k = 0; k < pairs.size(); ++k) {
    distances[k] = pairs[k].getDistance();
    values[k] = pairs[k].getValue();
    first[k] = pairs[k].getSampleNumber1();
    second[k] = pairs[k].getSampleNumber2();
  }
}

void NgmVariogramExpData::setCloudDensity(int dir, bool isCova, int i, int j,
                                          const NgmVariogramCloudDensity &density)
{
  const int rank = _cloudRank(dir, isCova, i, j);
  (isCova ? _covaClouds : _varioClouds)[rank].density = density;
}

const NbdDataTable &NgmVariogramExpData::getCloudTable(int dir, bool isCova, int i, int j) const
{
  const int rank = _cloudRank(dir, isCova, i, j);
  return (isCova ? _covaClouds : _varioClouds).at(rank).table;
}

const NbdAVariableNumeric &NgmVariogramExpData::getCloudVariable(int dir, bool isCova, int i, int j,
                                                                 const QString &role) const
{
  return getCloudTable(dir, isCova, i, j).getVarNumericRef(role);
}

const NgmVariogramCloudDensity &NgmVariogramExpData::getCloudDensity(int dir, bool isCova, int i,
                                                                     int j) const
{
  const int rank = _cloudRank(dir, isCova, i, j);
  return (isCova ? _covaClouds : _varioClouds).at(rank).density;
}

double NgmVariogramExpData::_maximumOf(const QList<NbdDataTable> &tables, int dir) const
{
  double largest = 0.;
  for (int rank = dir * _tableSize(); rank < std::min((dir + 1) * _tableSize(), tables.size());
       ++rank) {
    const double *distances = tables[rank].getVarDoubleRef(distanceRole()).getArrayConst();
    const qint64 *nPairs = tables[rank].getVarInt64Ref(Nbd::Role::NPAIRS).getArrayConst();
    for (int k = 0; k < tables[rank].getNSamples(); ++k) {
      if (nPairs[k] > 0 && NbbGlobal::isDefined(distances[k]))
        largest = std::max(largest, std::fabs(distances[k]));
    }
  }
  return largest;
}

double NgmVariogramExpData::getMaximumDistance(int dir) const
{
  if (dir < 0 || dir >= _directions.size())
    NBE_FAIL(QStringLiteral("NgmVariogramExpData::%1: invalid direction rank.")
                 .arg(QStringLiteral("getMaximumDistance")));
  return std::max(_maximumOf(_varios, dir), _maximumOf(_covas, dir));
}

double NgmVariogramExpData::getMaximumDistanceExperimental() const
{
  double largest = 0.;
  for (int dir = 0; dir < _directions.size(); ++dir)
    largest = std::max(largest, getMaximumDistance(dir));
  return largest;
}

// Sills.

void NgmVariogramExpData::setVarioPseudoSill(const NgmEVarioExp &curve, int pairRank, double value)
{
  _varioSills.resize(std::max(_varioSills.size(), _tableSize()));
  _varioSills[pairRank][getColumnKey(curve)] = value;
}

void NgmVariogramExpData::setCovaPseudoSill(const NgmECovaExp &curve, int pairRank, double value)
{
  _covaSills.resize(std::max(_covaSills.size(), _tableSize()));
  _covaSills[pairRank][getColumnKey(curve)] = value;
}

double NgmVariogramExpData::getVarioPseudoSill(const NgmEVarioExp &curve, int pairRank) const
{
  return sillOf(_varioSills, curve, pairRank);
}

double NgmVariogramExpData::getCovaPseudoSill(const NgmECovaExp &curve, int pairRank) const
{
  return sillOf(_covaSills, curve, pairRank);
}

double NgmVariogramExpData::getPseudoSill(const NbbAEnum &curve, int pairRank) const
{
  return sillOf(isCovariance(curve) ? _covaSills : _varioSills, curve, pairRank);
}

bool NgmVariogramExpData::hasPseudoSill(const NbbAEnum &curve) const
{
  return getPseudoSill(curve, 0) != NbbGlobal::D_FFFF;
}

NgmMatrix NgmVariogramExpData::getPseudoSillMatrix(const NbbAEnum &curve) const
{
  if (!hasPseudoSill(curve))
    NBE_FAIL(QStringLiteral("Invalid variogram/covariance curve"));
  NgmMatrix matrix(_nVariables, _nVariables, true);
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = i; j < _nVariables; ++j) {
      if (i != j && !_containsCross)
        continue;
      const double sill = getPseudoSill(curve, _pairRank(i, j));
      matrix.setElement(i, j, NbbGlobal::isDefined(sill) ? sill : 0.);
    }
  }
  return matrix;
}

NgmMatrix NgmVariogramExpData::getPseudoSillRatioMatrix(const NbbAEnum &curve) const
{
  const NgmMatrix sills = getPseudoSillMatrix(curve);
  NgmMatrix ratios(_nVariables, _nVariables, true);
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = i; j < _nVariables; ++j) {
      const double product = sills(i, i) * sills(j, j);
      ratios.setElement(i, j, product > 0. ? sills(i, j) / std::sqrt(product) : 0.);
    }
  }
  return ratios;
}

void NgmVariogramExpData::setC00(const NgmMatrix &c00)
{
  if (c00.getNRows() != _nVariables || c00.getNColumns() != _nVariables)
    NBE_FAIL(QStringLiteral("Invalid C00 matrix provided"));
  for (int i = 0; i < _nVariables; ++i) {
    if (!(c00(i, i) > NULL_SILL))
      NBE_FAIL(QStringLiteral("C00 matrix has null variances"));
  }
  _c00 = c00;
  _hasC00 = true;
}

NgmMatrix NgmVariogramExpData::getC00FromCovariance(const NgmMatrix &covariances) const
{
  if (covariances.getNRows() != _nVariables || covariances.getNColumns() != _nVariables)
    NBE_FAIL(QStringLiteral("Invalid input covariances matrix."));
  if (!hasCova(NgmECovaExp::COVARIANCE))
    NBE_FAIL(QStringLiteral("No existing experimental covariance to compute C00"));
  NgmMatrix c00(covariances);
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = i; j < _nVariables; ++j) {
      if (i != j && !_containsCross)
        continue;
      const double atOrigin = getCovaColumn(0, NgmECovaExp::EValue::COVARIANCE, i, j)[getNLags(0)];
      // Left 0 when the statistics that it needs are undefined.
      if (atOrigin == 0.)
        continue;
      c00.setElement(i, j, atOrigin);
      c00.setElement(j, i, atOrigin);
    }
  }
  return c00;
}

void NgmVariogramExpData::_normalizeTables(QList<NbdDataTable> &tables, double distance,
                                           const QVector<double> &deviations) const
{
  const QStringList keys = _curveKeys(tables);
  for (int i = 0; i < _nVariables; ++i) {
    for (int j = i; j < (_containsCross ? _nVariables : i + 1); ++j) {
      const double scale = deviations[i] * deviations[j];
      for (int rank = _pairRank(i, j); rank < tables.size(); rank += _tableSize()) {
        const NbdDataTable &table = tables[rank];
        const int n = table.getNSamples();
        const auto divide = [&table, n](const QString &role, double divisor) {
          double *values = table.getVarDoubleRef(role).getArray();
          for (int k = 0; k < n; ++k)
            values[k] = NbbGlobal::isDefined(values[k]) ? values[k] / divisor : values[k];
        };
        divide(distanceRole(), distance);
        for (const QString &key : keys)
          divide(key, scale);
      }
    }
  }
}

void NgmVariogramExpData::normalizeVariogram(const NgmMatrix &sills)
{
  if (!hasVario(NgmEVarioExp::VARIOGRAM) && !hasCova(NgmECovaExp::COVARIANCE))
    NBE_FAIL(
        QStringLiteral("NgmVariogramExpData::normalizeVariogram: no experimental curve computed"));
  if (sills.getNRows() != _nVariables || sills.getNColumns() != _nVariables)
    NBE_FAIL(QStringLiteral("NgmVariogramExpData::normalizeVariogram: invalid matrix of sills"));

  QVector<double> deviations;
  QVector<double> weights;
  for (int i = 0; i < _nVariables; ++i) {
    const bool scales = sills(i, i) >= NULL_SILL;
    deviations << (scales ? std::sqrt(sills(i, i)) : 1.);
    weights << (scales ? 1. / sills(i, i) : 1.);
  }
  const double largest = getMaximumDistanceExperimental();
  const double distance = largest > 0. ? largest : 1.;
  _minimumLag /= distance;
  _normalizeTables(_varios, distance, deviations);
  _normalizeTables(_covas, distance, deviations);
  if (_hasC00)
    _c00.normalizeDiagonal(weights);
}

void NgmVariogramExpData::extractFromVariables(const QList<int> &variables)
{
  QList<int> kept;
  for (int i = 0; i < _nVariables; ++i) {
    if (variables.contains(i))
      kept << i;
  }
  if (kept.isEmpty() || kept.size() != variables.size())
    NBE_FAIL(QStringLiteral("invalid variable rank"));

  NgmVariogramExpData result(*this);
  result.clearResults();
  result._nVariables = kept.size();
  QList<int> pairs;  // ranks of the pairs that stay, in their new order
  for (int i = 0; i < kept.size(); ++i) {
    for (int j = i; j < (_containsCross ? kept.size() : i + 1); ++j)
      pairs << _pairRank(kept[i], kept[j]);
  }
  const auto keepTables = [&](const auto &from, auto &to) {
    for (int first = 0; first < from.size(); first += _tableSize()) {
      for (const int pair : pairs)
        to << from[first + pair];
    }
  };
  const auto keepSills = [&](const _Sills &from, _Sills &to) {
    for (const int pair : pairs) {
      if (pair < from.size())
        to << from[pair];
    }
  };
  keepTables(_varios, result._varios);
  keepTables(_covas, result._covas);
  keepTables(_varioClouds, result._varioClouds);
  keepTables(_covaClouds, result._covaClouds);
  keepSills(_varioSills, result._varioSills);
  keepSills(_covaSills, result._covaSills);
  if (_hasC00) {
    NgmMatrix c00(kept.size(), kept.size(), true);
    for (int i = 0; i < kept.size(); ++i) {
      for (int j = 0; j <= i; ++j)
        c00.setElement(i, j, _c00(kept[i], kept[j]));
    }
    result.setC00(c00);
  }
  *this = result;
}

// Texts.

QString NgmVariogramExpData::summary() const
{
  const QStringList lines{QObject::tr("- Number of directions = %1").arg(getNDirections()),
                          QObject::tr("- Number of variables  = %1").arg(_nVariables),
                          QObject::tr("- Space dimension      = %1").arg(getNDimensions())};
  return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

QString NgmVariogramExpData::toString(const NbbAEnum &curve) const
{
  if (!_hasCurve(curve))
    NBE_FAIL(QStringLiteral("Invalid variogram/covariance curve"));
  const bool isCova = isCovariance(curve);
  QString text = curve.getLabel() + QLatin1Char('\n');
  for (int dir = 0; dir < getNDirections(); ++dir) {
    for (int i = 0; i < _nVariables; ++i) {
      for (int j = i; j < (_containsCross ? _nVariables : i + 1); ++j) {
        const QVector<double> distances = getDistances(dir, isCova, i, j);
        const QVector<qint64> nPairs = getNumberOfPairs(dir, isCova, i, j);
        const QVector<double> values = _getColumn(dir, isCova, getColumnKey(curve), i, j);
        for (int k = 0; k < values.size(); ++k)
          text += QStringLiteral("%1\t%2\t%3\t%4\t%5\t%6\n")
                      .arg(getDirectionName(dir))
                      .arg(i)
                      .arg(j)
                      .arg(distances[k], 0, 'g', 15)
                      .arg(nPairs[k])
                      .arg(values[k], 0, 'g', 15);
      }
    }
  }
  return text;
}

QString NgmVariogramExpData::debug(int level) const
{
  QString text = QStringLiteral("NDIRS=%1").arg(getNDirections()) + QLatin1Char('\n') +
                 QStringLiteral("NVARS=%1").arg(_nVariables) + QLatin1Char('\n') +
                 QStringLiteral("MINLAG=%1").arg(_minimumLag) + QLatin1Char('\n');
  for (int dir = 0; dir < getNDirections(); ++dir) {
    text += QStringLiteral("Variogram Data Direction\n");
    text += QStringLiteral(" Name: ") + getDirectionName(dir) + QLatin1Char('\n');
    text += QStringLiteral(" Groups: ") + getDirectionGroupNames(dir).join(QLatin1String(", ")) +
            QLatin1Char('\n');
    text += QStringLiteral("NLAGS%1=%2").arg(dir).arg(getNLags(dir)) + QLatin1Char('\n');
    if (!_varios.isEmpty())
      text +=
          QStringLiteral("NREALLAGS%1=%2").arg(dir).arg(getMasked(dir, false, 0, 0).count(false)) +
          QLatin1Char('\n');
    text += QStringLiteral("ROT%1=%2").arg(dir).arg(_directions[dir]._rotation.toString()) +
            QLatin1Char('\n');
  }
  const auto addTables = [&text, level](const QString &title, const QList<NbdDataTable> &tables) {
    if (tables.isEmpty())
      return;
    text += title;
    for (const NbdDataTable &table : tables)
      text += level > 0 ? table.toString() : table.debug(level);
  };
  addTables(QStringLiteral("Variogram data per direction\n"), _varios);
  addTables(QStringLiteral("Covariance data per direction\n"), _covas);
  return text;
}

// Streams.

QList<unsigned int> NgmVariogramExpData::_serializedVersions() const
{
  return {151016, 151118, 160324, 170303, 190326, 210319, 210528, CURRENT_VERSION};
}

unsigned int NgmVariogramExpData::_currentSerializedVersion() const
{
  return CURRENT_VERSION;
}

QString NgmVariogramExpData::_displayName() const
{
  return QObject::tr("Experimental variogram");
}

namespace {

void writeSills(QDataStream &stream, const QVector<QMap<QString, double>> &sills)
{
  stream << qint32(sills.size());
  for (const QMap<QString, double> &ofPair : sills) {
    stream << qint32(ofPair.size());
    for (auto sill = ofPair.cbegin(); sill != ofPair.cend(); ++sill)
      stream << sill.key() << sill.value();
  }
}

void writeTables(QDataStream &stream, const QList<NbdDataTable> &tables)
{
  stream << qint32(tables.size());
  for (const NbdDataTable &table : tables)
    table.serialize(stream);
}

qint32 readCount(QDataStream &stream)
{
  qint32 count = -1;
  stream >> count;
  return count;
}

}  // namespace

void NgmVariogramExpData::_serialize(QDataStream &stream) const
{
  stream << qint32(_nVariables) << _minimumLag << qint32(_directions.size());
  for (const Direction &direction : _directions) {
    direction._rotation.serialize(stream);
    stream << direction._name << quint32(direction._groupNames.size());
    for (const QString &group : direction._groupNames)
      stream << group;
    stream << direction._groupRanks;
    for (const QString &group : direction._groupNames)
      direction._referencePlanes.value(group).serialize(stream);
  }
  stream << qint32(_descriptions.size());
  for (auto text = _descriptions.cbegin(); text != _descriptions.cend(); ++text)
    stream << text.key() << text.value();
  writeTables(stream, _varios);
  writeTables(stream, _covas);
  stream << _hasC00;
  if (_hasC00) {
    stream << quint32(_nVariables * _nVariables);
    for (int j = 0; j < _nVariables; ++j) {
      for (int i = 0; i < _nVariables; ++i)
        stream << _c00(i, j);
    }
  }
  writeSills(stream, _varioSills);
  writeSills(stream, _covaSills);
}

NgmVariogramExpData::Direction NgmVariogramExpData::_readDirection(QDataStream &stream) const
{
  Direction direction;
  direction._rotation.unserialize(stream);
  quint32 nGroups = 0;
  stream >> direction._name >> nGroups;
  _checkCount(stream, nGroups, sizeof(quint32), MAXIMUM_COUNT);
  for (quint32 g = 0; g < nGroups; ++g) {
    QString group;
    stream >> group;
    direction._groupNames << group;
  }
  quint32 nRanks = 0;
  stream >> nRanks;
  _checkCount(stream, nRanks, sizeof(qint32), nGroups);
  for (quint32 g = 0; g < nRanks; ++g)
    direction._groupRanks << readCount(stream);
  if (nRanks != nGroups || direction._groupNames.removeDuplicates() > 0)
    _refuse(QObject::tr("the groups of a direction do not match"));
  for (const QString &group : qAsConst(direction._groupNames))
    direction._referencePlanes[group].unserialize(stream);
  return direction;
}

QList<NbdDataTable> NgmVariogramExpData::_readTables(QDataStream &stream, bool isCova)
{
  const qint32 n = readCount(stream);
  _checkCount(stream, n, 16, MAXIMUM_COUNT);
  const int nDirections = _directions.size();
  const int nPairs = _nVariables * (_nVariables + 1) / 2;
  if (n == 0)
    return {};
  if (n != nDirections * nPairs && n != nDirections * _nVariables)
    _refuse(QObject::tr("bad number of tables"));
  _containsCross = n == nDirections * nPairs;

  QList<NbdDataTable> tables;
  for (int rank = 0; rank < n; ++rank) {
    NbdDataTable table;
    table.unserialize(stream);
    const QStringList roles = table.getAllRoles();
    bool isGood = roles.size() >= 2 &&
                  table.getVarDouble(distanceRole()) == table.getVarByRank(0) &&
                  table.getVarInt64(Nbd::Role::NPAIRS) == table.getVarByRank(1) &&
                  (rank == 0 || roles == tables.first().getAllRoles());
    for (const QString &key : roles.mid(2))
      isGood = isGood && table.getVarDouble(key) != nullptr &&
               (isCova ? NgmECovaExp::existsKey(key) : NgmEVarioExp::existsKey(key));
    const int nRows = table.getNSamples();
    if (!isGood || (isCova && nRows % 2 == 0))
      _refuse(QObject::tr("bad columns of a table"));
    // Directions are written without their number of lags.
    Direction &direction = _directions[rank / (n / nDirections)];
    const int nLags = isCova ? nRows / 2 : nRows;
    if (direction._size >= 0 && direction._size != nLags)
      _refuse(QObject::tr("bad number of lags of a table"));
    direction._size = nLags;
    tables << table;
  }
  return tables;
}

NgmVariogramExpData::_Sills NgmVariogramExpData::_readSills(QDataStream &stream) const
{
  const qint32 nPairs = readCount(stream);
  _checkCount(stream, nPairs, sizeof(qint32), _nVariables * (_nVariables + 1) / 2);
  _Sills sills(nPairs);
  for (QMap<QString, double> &ofPair : sills) {
    const qint32 n = readCount(stream);
    _checkCount(stream, n, sizeof(quint32) + sizeof(double), MAXIMUM_COUNT);
    for (int k = 0; k < n; ++k) {
      QString key;
      double value = 0.;
      stream >> key >> value;
      ofPair[key] = value;
    }
  }
  return sills;
}

void NgmVariogramExpData::_unserialize(QDataStream &stream, unsigned int version)
{
  if (version < FIRST_READABLE_VERSION)
    _refuse(
        QObject::tr("streams older than version %1 cannot be read").arg(FIRST_READABLE_VERSION));
  NgmVariogramExpData read;
  read._nVariables = readCount(stream);
  stream >> read._minimumLag;
  _checkCount(stream, read._nVariables, 0, MAXIMUM_VARIABLES);
  if (read._nVariables < 1)
    _refuse(QObject::tr("bad number of variables"));
  const qint32 nDirections = readCount(stream);
  _checkCount(stream, nDirections, 16, MAXIMUM_COUNT);
  for (int dir = 0; dir < nDirections; ++dir) {
    read._directions << read._readDirection(stream);
    read._directions.last()._size = -1;  // not known yet
  }
  const qint32 nDescriptions = readCount(stream);
  _checkCount(stream, nDescriptions, 2 * sizeof(quint32), MAXIMUM_COUNT);
  for (int k = 0; k < nDescriptions; ++k) {
    QString group, text;
    stream >> group >> text;
    read._descriptions[group] = text;
  }
  read._varios = read._readTables(stream, false);
  read._covas = read._readTables(stream, true);
  if (!read._varios.isEmpty() && !read._covas.isEmpty() &&
      read._varios.size() != read._covas.size())
    _refuse(QObject::tr("bad number of tables"));
  for (Direction &direction : read._directions)
    direction._size = std::max(direction._size, 0);

  stream >> read._hasC00;
  if (read._hasC00) {
    quint32 nElements = 0;
    stream >> nElements;
    const int n = read._nVariables;
    _checkCount(stream, nElements, sizeof(double), qint64(n) * n);
    if (nElements != quint32(n * n))
      _refuse(QObject::tr("bad size of the C00 matrix"));
    read._c00 = NgmMatrix(n, n, false);
    double *elements = read._c00.elements();
    for (int k = 0; k < n * n; ++k)
      stream >> elements[k];
    if (!read._c00.isSymmetrical())
      _refuse(QObject::tr("the C00 matrix is not symmetric"));
    read._c00.setMustBeSymmetrical(true);
  }
  read._varioSills = read._readSills(stream);
  read._covaSills = read._readSills(stream);
  _checkStream(stream);
  *this = read;
}
