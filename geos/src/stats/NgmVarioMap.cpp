#include "geos/stats/NgmVarioMap.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/error/NbeAssertion.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double NOTHING = 1e-30;
constexpr double RADIAN = M_PI / 180.;

std::vector<double> centreCosines(int n)
{
  std::vector<double> cosines(n);
  for (int k = 0; k < n; ++k)
    cosines[k] = std::cos(k * M_PI / n);
  return cosines;
}

std::vector<double> boundCosines(int n)
{
  std::vector<double> bounds{1.};
  for (int k = 0; k < n; ++k)
    bounds.push_back(std::cos((k + 0.5) * M_PI / n));
  bounds.push_back(-1.);
  return bounds;
}

// Cosines from -1 to 1 in equal parts, each with a class from which the search starts: the first
// one that it may have for cosines above 0, the last one for others.
constexpr int N_PARTS = 256;

int partOf(double cosine)
{
  return std::clamp(int((cosine + 1.) * (N_PARTS / 2)), 0, N_PARTS - 1);
}

std::vector<int> searchStarts(int n, const std::vector<double> &bounds)
{
  constexpr double slack = 1e-9;  // more than the rounding of a cosine
  std::vector<int> starts;
  for (int part = 0; part < N_PARTS; ++part) {
    const double least = double(part) / (N_PARTS / 2) - 1. - slack;
    const double most = double(part + 1) / (N_PARTS / 2) - 1. + slack;
    int u = most > slack ? 0 : n - 1;
    while (most > slack && most < bounds[u + 1])
      ++u;
    while (most <= slack && u > 0 && bounds[u] < least)
      --u;
    starts.push_back(u);
  }
  return starts;
}

/// The class of the direction (a, b), which is that of (-a, -b); -1 when it is null.
int classOf(double a, double b, int n, const std::vector<double> &bounds,
            const std::vector<int> &starts)
{
  if (b < 0.) {
    a = -a;
    b = -b;
  }
  const double r = std::sqrt(a * a + b * b);
  if (r < NOTHING)
    return -1;
  const double c = a / r;
  if (c > 0.) {
    int u = starts[partOf(c)];
    while (c < bounds[u + 1])
      ++u;
    return u == n ? 0 : u;
  }
  if (c <= bounds[n])
    return 0;
  int u = starts[std::min(partOf(c), N_PARTS / 2 - 1)];
  while (bounds[u] < c)
    --u;
  return u;
}

/// Classes centred on multiples of the step, modulo half a turn.
int wrapped(int k, int n)
{
  k %= n;
  return k < 0 ? k + n : k;
}

int radialClass(double d, double step)
{
  return int(std::floor((step * 0.5 + d) / step - 1e-10));
}

NbgVector3D fromPolar(double rho, double theta, double phi)
{
  const double horizontal = rho * std::cos(phi * RADIAN);
  return {horizontal * std::cos(theta * RADIAN), horizontal * std::sin(theta * RADIAN),
          rho * std::sin(phi * RADIAN)};
}

}  // namespace

NgmVarioMap::NgmVarioMap(int nrho, int ntheta, int nphi, const NbgVector3D &maxAxes,
                         const NbgRotation &rotation, int nvar)
    : _nvar(nvar),
      _nrho(nrho),
      _ntheta(ntheta),
      _nphi(nphi),
      _dTheta(180. / ntheta),
      _dPhi(180. / nphi),
      _maxAxes(maxAxes),
      _rotation(rotation),
      _hasRotation(!rotation.isEqual(NbgRotation())),
      _cosHalfClass(std::cos(M_PI / 2. / ntheta)),
      _sinHalfClass(std::sin(M_PI / 2. / ntheta))
{
  const double nCells = double(nrho) * ntheta * nphi;
  if (nrho < 1 || ntheta < 1 || nphi < 1 || nvar < 1 || nCells > std::numeric_limits<int>::max() ||
      !(maxAxes.x() > 0. && maxAxes.y() > 0. && maxAxes.z() > 0.))
    NBE_FAIL(QStringLiteral("NgmVarioMap: invalid arguments"));
  _cosTheta = centreCosines(ntheta);
  _cosPhi = centreCosines(nphi);
  _boundsTheta = boundCosines(ntheta);
  _boundsPhi = boundCosines(nphi);
  _startsTheta = searchStarts(ntheta, _boundsTheta);
  _startsPhi = searchStarts(nphi, _boundsPhi);
  for (int j = 0; j < ntheta; ++j) {
    for (int k = 0; k < nphi; ++k)
      _reaches.push_back(_getRhoMaxFromJK(j, k));
  }
  NbgGeomGrid geometry;
  geometry.setNodesNumber(nrho, ntheta, nphi);
  _grid.setGeometry(geometry);
  _createVariables();
}

NgmVarioMap::~NgmVarioMap() = default;

void NgmVarioMap::_createVariables()
{
  _vertical.setNSamples(_nrho);
  for (NbdDataTable *table : {&_grid.getDataTable(), &_vertical}) {
    for (int pair = 0; pair < _nvar * (_nvar + 1) / 2; ++pair) {
      table->createVariableNumeric(getRoleNPairs(), NbdVariableDetails(getRoleNPairs()),
                                   Nbd::TYPE_INT64);
      table->createVariableNumeric(getRoleVarioSum(), NbdVariableDetails(getRoleVarioSum()));
    }
  }
  _grid.setResizedTo(_nrho * _ntheta * _nphi);
  _vertical.setNSamples(_nrho);
  for (const NbdDataTable *table : {&_grid.getDataTableConst(), &std::as_const(_vertical)}) {
    for (NbdAVariable *variable : table->getAllVars())
      static_cast<NbdAVariableNumeric *>(variable)->setAllValues(0.);
  }
}

int NgmVarioMap::getPairRank(int i, int j)
{
  return j < i ? j + i * (i + 1) / 2 : i + j * (j + 1) / 2;
}

void NgmVarioMap::_checkPair(int i, int j) const
{
  if (i < 0 || j < 0 || i >= _nvar || j >= _nvar)
    NBE_FAIL(QStringLiteral("NgmVarioMap: invalid variable rank"));
}

const NbdVariableInt64 &NgmVarioMap::getNPairs(int i, int j) const
{
  _checkPair(i, j);
  return _grid.getDataTableConst().getVarInt64Ref(getRoleNPairs(), getPairRank(i, j));
}

const NbdVariableDouble &NgmVarioMap::getVarioSum(int i, int j) const
{
  _checkPair(i, j);
  return _grid.getDataTableConst().getVarDoubleRef(getRoleVarioSum(), getPairRank(i, j));
}

const NbdVariableDouble &NgmVarioMap::getWeight(int i, int j) const
{
  _checkPair(i, j);
  return _grid.getDataTableConst().getVarDoubleRef(getRoleWeight(), getPairRank(i, j));
}

const NbdVariableInt64 &NgmVarioMap::getNPairsVertical(int i, int j) const
{
  _checkPair(i, j);
  return _vertical.getVarInt64Ref(getRoleNPairs(), getPairRank(i, j));
}

const NbdVariableDouble &NgmVarioMap::getVarioSumVertical(int i, int j) const
{
  _checkPair(i, j);
  return _vertical.getVarDoubleRef(getRoleVarioSum(), getPairRank(i, j));
}

// Pairs.

int NgmVarioMap::_getThetaClass(double a, double b) const
{
  return classOf(a, b, _ntheta, _boundsTheta, _startsTheta);
}

int NgmVarioMap::_getPhiClass(const NbgVector3D &local) const
{
  if (_nphi == 1)
    return 0;
  const double horizontal = std::sqrt(local.x() * local.x() + local.y() * local.y());
  return classOf(horizontal, local.z(), _nphi, _boundsPhi, _startsPhi);
}

// Radius of the ellipsoid in the direction of a cell.
double NgmVarioMap::_getRhoMaxFromJK(int j, int k) const
{
  const double cosTheta = _cosTheta[j];
  const double cosPhi = _cosPhi[k];
  double horizontal = _maxAxes.y();
  if (std::fabs(cosTheta) > 1e-10) {
    const double q = _maxAxes.y() / _maxAxes.x();
    horizontal = _maxAxes.y() / std::sqrt(1. - (1. - q * q) * cosTheta * cosTheta);
  }
  if (std::fabs(cosPhi) <= 1e-10)
    return _maxAxes.z();
  const double p = _maxAxes.z() / horizontal;
  return _maxAxes.z() / std::sqrt(1. - (1. - p * p) * cosPhi * cosPhi);
}

qint64 NgmVarioMap::locate(const NbgVector3D &local) const
{
  const double d = local.norm();
  const int j = _getThetaClass(local.x(), local.y());
  if (j < 0) {
    if (std::fabs(local.z()) < NOTHING || !(d < _maxAxes.z()))
      return NO_CELL;
    const int row = radialClass(d, _maxAxes.z() / (_nrho - 0.5));
    return row < _nrho ? -2 - qint64(row) : NO_CELL;
  }
  const int k = _getPhiClass(local);
  const double reach = _reaches[std::size_t(j) * _nphi + k];
  if (!(d < reach))
    return NO_CELL;
  const int i = radialClass(d, reach / (_nrho - 0.5));
  return i < _nrho ? getIndex(i, j, k) : NO_CELL;
}

void NgmVarioMap::addPair(int i, int j, const NbgVector3D &h, double value)
{
  _checkPair(i, j);
  const qint64 cell = locate(toFrame(h));
  if (cell == NO_CELL)
    return;
  const NbdDataTable &table = cell < 0 ? _vertical : _grid.getDataTableConst();
  const qint64 row = cell < 0 ? -2 - cell : cell;
  const int pair = getPairRank(i, j);
  ++table.getVarInt64Ref(getRoleNPairs(), pair).getArray()[row];
  table.getVarDoubleRef(getRoleVarioSum(), pair).getArray()[row] += value;
}

void NgmVarioMap::addCells(int pairRank, const std::vector<qint64> &nPairs,
                           const std::vector<double> &sums)
{
  const qint64 nNodes = _grid.getNSamples();
  const auto add = [&](const NbdDataTable &table, qint64 first, qint64 n) {
    qint64 *counts = table.getVarInt64Ref(getRoleNPairs(), pairRank).getArray();
    double *values = table.getVarDoubleRef(getRoleVarioSum(), pairRank).getArray();
    for (qint64 cell = 0; cell < n; ++cell) {
      counts[cell] += nPairs[first + cell];
      values[cell] += sums[first + cell];
    }
  };
  add(_grid.getDataTableConst(), 0, nNodes);
  add(_vertical, nNodes, _nrho);
}

bool NgmVarioMap::_isCompatible(const NgmVarioMap &other) const
{
  return _nvar == other._nvar && _nrho == other._nrho && _ntheta == other._ntheta &&
         _nphi == other._nphi && _isNormalized == other._isNormalized && !_isNormalized;
}

void NgmVarioMap::doSum(const NgaIAdditive &other)
{
  const auto *map = dynamic_cast<const NgmVarioMap *>(&other);
  if (!map)
    NBE_FAIL(QStringLiteral("NgmVarioMap::sum : incompatible NgmVarioMap"));
  doSum(*map);
}

void NgmVarioMap::doSum(const NgmVarioMap &other)
{
  if (!_isCompatible(other))
    NBE_FAIL(QStringLiteral("NgmVarioMap::sum : incompatible NgmVarioMap"));
  const auto add = [](const NbdDataTable &from, const NbdDataTable &to, int pair) {
    const qint64 *otherCounts = from.getVarInt64Ref(getRoleNPairs(), pair).getArrayConst();
    const double *otherValues = from.getVarDoubleRef(getRoleVarioSum(), pair).getArrayConst();
    qint64 *counts = to.getVarInt64Ref(getRoleNPairs(), pair).getArray();
    double *values = to.getVarDoubleRef(getRoleVarioSum(), pair).getArray();
    for (int cell = 0; cell < to.getNSamples(); ++cell) {
      counts[cell] += otherCounts[cell];
      values[cell] += otherValues[cell];
    }
  };
  for (int pair = 0; pair < _nvar * (_nvar + 1) / 2; ++pair) {
    add(other._grid.getDataTableConst(), _grid.getDataTableConst(), pair);
    add(other._vertical, _vertical, pair);
  }
}

void NgmVarioMap::normalize()
{
  if (_isNormalized)
    return;
  for (const NbdDataTable *table : {&_grid.getDataTableConst(), &std::as_const(_vertical)}) {
    for (int pair = 0; pair < _nvar * (_nvar + 1) / 2; ++pair) {
      const qint64 *counts = table->getVarInt64Ref(getRoleNPairs(), pair).getArrayConst();
      double *values = table->getVarDoubleRef(getRoleVarioSum(), pair).getArray();
      for (int cell = 0; cell < table->getNSamples(); ++cell) {
        if (!NbbGlobal::isDefined(values[cell]))
          NBE_FAIL(QStringLiteral("NgmVarioMap::normalize: invalid variogram value"));
        values[cell] =
            counts[cell] < 1 ? NbbGlobal::D_FFFF : values[cell] / (2. * double(counts[cell]));
      }
    }
  }
  _isNormalized = true;
  _buildWeightVariable();
}

void NgmVarioMap::_buildWeightVariable()
{
  for (int pair = 0; pair < _nvar * (_nvar + 1) / 2; ++pair) {
    NbdDataTable &table = _grid.getDataTable();
    const qint64 *counts = table.getVarInt64Ref(getRoleNPairs(), pair).getArrayConst();
    table.createVariableNumeric(getRoleWeight(), NbdVariableDetails(getRoleWeight()));
    double *weights = table.getVarDoubleRef(getRoleWeight(), pair).getArray();
    double total = 0.;
    for (int node = 0; node < table.getNSamples(); ++node)
      total += double(counts[node]);
    for (int node = 0; node < table.getNSamples(); ++node)
      weights[node] = total > 0. ? double(counts[node]) / total : 0.;
  }
}

// Cells.

NbgVector3D NgmVarioMap::getCenter(const NbgIntVector3D &cell) const
{
  const double step = _getRhoMaxFromJK(cell.y(), cell.z()) / (_nrho - 0.5);
  return {cell.x() == 0 ? step / 4. : cell.x() * step, cell.y() * _dTheta, cell.z() * _dPhi};
}

NbgIntVector3D NgmVarioMap::getIndexFromRTP(const NbgVector3D &rtp) const
{
  const int j = wrapped(int(std::floor((rtp.y() + _dTheta / 2.) / _dTheta)), _ntheta);
  const int k = wrapped(int(std::floor((rtp.z() + _dPhi / 2.) / _dPhi)), _nphi);
  const double step = _getRhoMaxFromJK(j, k) / (_nrho - 0.5);
  return {int(std::floor((rtp.x() + step / 2.) / step - 1e-30)), j, k};
}

NbgVector3D NgmVarioMap::getDirectionVectorFromRTP(const NbgRotation &frame, const NbgVector3D &rtp)
{
  return frame.localToWorld(fromPolar(rtp.x(), rtp.y(), rtp.z()));
}

NbgVector3D NgmVarioMap::getRTPAfterRot(const NbgRotation &frame, const NbgVector3D &rtp) const
{
  NbgVector3D local = toFrame(getDirectionVectorFromRTP(frame, rtp));
  if (local.y() < 0. || (local.y() == 0. && local.x() < 0.))
    local = NbgVector3D(-local.x(), -local.y(), -local.z());
  const double horizontal = std::sqrt(local.x() * local.x() + local.y() * local.y());
  const auto halfTurn = [](double degrees) { return degrees < 0. ? degrees + 180. : degrees; };
  return {local.norm(), halfTurn(std::atan2(local.y(), local.x()) / RADIAN),
          halfTurn(std::atan2(local.z(), horizontal) / RADIAN)};
}

void NgmVarioMap::getIThetaIPhi(const NbgRotation &frame, double theta, double phi, int &iTheta,
                                int &iPhi) const
{
  const NbgVector3D local =
      oriented(toFrame(getDirectionVectorFromRTP(frame, NbgVector3D(1., theta, phi))));
  iTheta = std::max(0, _getThetaClass(local.x(), local.y()));
  iPhi = _getPhiClass(local);
}

// Coarser maps.

double NgmVarioMap::_sumOf(double value, qint64 n) const
{
  if (n < 1)
    return 0.;
  return _isNormalized ? 2. * double(n) * value : value;
}

NbgVector3D NgmVarioMap::_fromCell(const NbgIntVector3D &cell) const
{
  return getDirectionVectorFromRTP(_rotation, getCenter(cell));
}

NgmVarioMap NgmVarioMap::_coarse(const NgmVarioMap &empty, int firstVar) const
{
  NgmVarioMap coarse(empty);
  const qint64 nNodes = coarse._grid.getNSamples();
  for (int i = 0; i < coarse._nvar; ++i) {
    for (int j = i; j < coarse._nvar; ++j) {
      std::vector<qint64> nPairs(coarse.getNCells(), 0);
      std::vector<double> sums(coarse.getNCells(), 0.);
      const auto add = [&](const NbgVector3D &world, qint64 n, double value) {
        const qint64 cell = coarse.locate(coarse.oriented(coarse.toFrame(world)));
        if (n < 1 || cell == NO_CELL)
          return;
        const qint64 position = cell < 0 ? nNodes - 2 - cell : cell;
        nPairs[position] += n;
        sums[position] += _sumOf(value, n);
      };
      const NbdVariableInt64 &counts = getNPairs(firstVar + i, firstVar + j);
      const NbdVariableDouble &values = getVarioSum(firstVar + i, firstVar + j);
      for (int node = 0; node < _grid.getNSamples(); ++node)
        add(_fromCell(_grid.getGeometry().getCellIJKFromRank(node)), counts.getValueAsType(node),
            values.getValueAsType(node));
      const double step = _maxAxes.z() / (_nrho - 0.5);
      for (int row = 0; row < _nrho; ++row)
        add(_rotation.localToWorld(NbgVector3D(0., 0., row == 0 ? step / 4. : row * step)),
            getNPairsVertical(firstVar + i, firstVar + j).getValueAsType(row),
            getVarioSumVertical(firstVar + i, firstVar + j).getValueAsType(row));
      coarse.addCells(getPairRank(i, j), nPairs, sums);
    }
  }
  return coarse;
}

NgmVarioMap NgmVarioMap::buildCoarseVMap(double ax, double ay, double az, int nrho, int ntheta,
                                         int nphi, int firstVar, int lastVar, double angle1,
                                         double angle2, double angle3) const
{
  return _buildCoarse(NbgVector3D(ax, ay, az), NbgIntVector3D(nrho, ntheta, nphi), firstVar,
                      lastVar, NbgRotation(angle1, angle2, angle3), false);
}

NgmVarioMap NgmVarioMap::buildCoarseVMap_V3(double ax, double ay, double az, int nrho, int ntheta,
                                            int nphi, int firstVar, int lastVar, double angle1,
                                            double angle2, double angle3) const
{
  return _buildCoarse(NbgVector3D(ax, ay, az), NbgIntVector3D(nrho, ntheta, nphi), firstVar,
                      lastVar, NbgRotation(angle1, angle2, angle3), true);
}

NgmVarioMap NgmVarioMap::_buildCoarse(const NbgVector3D &axes, const NbgIntVector3D &nCells,
                                      int firstVar, int lastVar, const NbgRotation &rotation,
                                      bool fill) const
{
  _checkPair(firstVar, lastVar);
  NgmVarioMap coarse = _coarse(
      NgmVarioMap(nCells.x(), nCells.y(), nCells.z(), axes, rotation, lastVar - firstVar + 1),
      firstVar);
  if (fill)
    _fillHoles(coarse, firstVar);
  if (_isNormalized)
    coarse.normalize();
  return coarse;
}

void NgmVarioMap::_fillHoles(NgmVarioMap &coarse, int firstVar) const
{
  for (int i = 0; i < coarse._nvar; ++i) {
    for (int j = i; j < coarse._nvar; ++j) {
      const NbdVariableInt64 &counts = getNPairs(firstVar + i, firstVar + j);
      const NbdVariableDouble &values = getVarioSum(firstVar + i, firstVar + j);
      std::vector<qint64> nPairs(coarse.getNCells(), 0);
      std::vector<double> sums(coarse.getNCells(), 0.);
      for (int node = 0; node < coarse._grid.getNSamples(); ++node) {
        if (coarse.getNPairs(i, j).getValueAsType(node) > 0)
          continue;
        const NbgVector3D centre =
            coarse._fromCell(coarse._grid.getGeometry().getCellIJKFromRank(node));
        const qint64 cell = locate(oriented(toFrame(centre)));
        if (cell < 0)
          continue;
        nPairs[node] = counts.getValueAsType(int(cell));
        sums[node] = _sumOf(values.getValueAsType(int(cell)), nPairs[node]);
      }
      coarse.addCells(getPairRank(i, j), nPairs, sums);
    }
  }
}

// Curves.

void NgmVarioMap::_getClasses(double theta, double phi, int &iTheta, int &iPhi) const
{
  iTheta = wrapped(int(std::floor(_ntheta * theta / 180. + 0.5)), _ntheta);
  iPhi = wrapped(int(std::floor(_nphi * phi / 180. + 0.5)), _nphi);
}

double NgmVarioMap::_valueAt(int i, int j, qint64 node) const
{
  const qint64 n = getNPairs(i, j).getValueAsType(int(node));
  const double value = getVarioSum(i, j).getValueAsType(int(node));
  return n < 1 ? 0. : _isNormalized ? value : value / (2. * double(n));
}

NbdVariableDouble NgmVarioMap::getVarioCurve(int i, int j, double theta, double phi) const
{
  int iTheta = 0;
  int iPhi = 0;
  _getClasses(theta, phi, iTheta, iPhi);
  NbdVariableDouble curve(QStringLiteral("VarioCurve"));
  curve.resizeAndFill(_nrho);
  for (int r = 0; r < _nrho; ++r) {
    const double value = _valueAt(i, j, getIndex(r, iTheta, iPhi));
    if (!NbbGlobal::isDefined(value))
      NBE_FAIL(QStringLiteral("Invalid variogram value."));
    curve.setValue(r, value);
  }
  return curve;
}

NbdDataTable NgmVarioMap::getVariogramData(int i, int j, double theta, double phi) const
{
  int iTheta = 0;
  int iPhi = 0;
  _getClasses(theta, phi, iTheta, iPhi);
  NbdDataTable table;
  table.createVariableNumeric(Nbd::Role::DISTANCE, NbdVariableDetails(QStringLiteral("Dist")));
  table.createVariableNumeric(
      Nbd::Role::NPAIRS, NbdVariableDetails(QStringLiteral("Number of pairs")), Nbd::TYPE_INT64);
  table.createVariableNumeric(Nbd::Role::VARIO,
                              NbdVariableDetails(QStringLiteral("Variogram Map")));
  table.setNSamples(_nrho);
  for (int r = 0; r < _nrho; ++r) {
    const qint64 node = getIndex(r, iTheta, iPhi);
    const double value = _valueAt(i, j, node);
    if (!NbbGlobal::isDefined(value))
      NBE_FAIL(QStringLiteral("NgmVarioMap::getVariogramData: invalid variogram value"));
    table.getVarDouble(Nbd::Role::DISTANCE)
        ->setValue(r, getCenter(NbgIntVector3D(r, iTheta, iPhi)).x());
    table.getVarInt64(Nbd::Role::NPAIRS)
        ->setValueAsType(r, getNPairs(i, j).getValueAsType(int(node)));
    table.getVarDouble(Nbd::Role::VARIO)->setValue(r, value);
  }
  return table;
}

QString NgmVarioMap::debug(int) const
{
  return QStringLiteral("NgmVarioMap:\n") + QStringLiteral("Nrho =") + QString::number(_nrho) +
         QStringLiteral(",Ntheta =") + QString::number(_ntheta) + QStringLiteral(",Nphi =") +
         QString::number(_nphi) + QLatin1Char('\n');
}
