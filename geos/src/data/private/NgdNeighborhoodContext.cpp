#include "geos/data/NgdNeighborhoodContext.h"

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"
#include "geos/NgcEnumGlobal.h"
#include "geos/data/NgdNeighborhoodMoving.h"
#include "geos/data/NgdNeighborhoodUnique.h"

#include <QObject>

#include <algorithm>
#include <numeric>

NgdNeighborhoodContext::NgdNeighborhoodContext() : _selected(&_neighbors) {}

NgdNeighborhoodContext::~NgdNeighborhoodContext() = default;

void NgdNeighborhoodContext::initialize(const NgdANeighborhood &neighborhood,
                                        const QList<NbdAVariableNumeric *> &mainVariables)
{
  if (_moving || _unique)
    NBE_FAIL(QStringLiteral("Should be called only once"));
  if (mainVariables.isEmpty())
    NBE_FAIL(QStringLiteral("Wrong number of main variables"));

  if (!neighborhood.isMoving()) {
    _unique = static_cast<const NgdNeighborhoodUnique *>(&neighborhood);
    _selected = &_unique->getAllData();
    _count = _selected->getNSamples();
    _ranks.resize(_count);
    std::iota(_ranks.begin(), _ranks.end(), 0);
    for (const NbdAVariableNumeric *variable : mainVariables)
      _mainColumns.push_back(dynamic_cast<const NbdVariableDouble *>(variable));
    return;
  }

  const auto *moving = static_cast<const NgdNeighborhoodMoving *>(&neighborhood);
  if (!moving->isDataLoaded())
    NBE_FAIL(QStringLiteral("Moving neighborhood not initialized"));
  _moving = moving;
  _checkParameters();

  const NgmNeighborhoodMoving &parameters = _moving->getParameters();
  _takesNearest = parameters.getSplittedSectorsNumber() <= 1 &&
                  (parameters.isRuleAnisotropicDistances() || _moving->isScalingUniform());
  _sectorCounts.resize(std::max(1, parameters.getSplittedSectorsNumber()));
  _prepareColumns(mainVariables);
  _findUsableSamples(mainVariables);
}

const NgcENeighborhoodErrorCode &NgdNeighborhoodContext::setTargetLocation(
    const NbgVector3D &location, int *nestedIndex)
{
  *nestedIndex = -1;
  _target.setCenter(location);
  if (_unique)
    return NgcENeighborhoodErrorCode::NEIGH_SUCCESS;

  _ranks.clear();
  _squaredDistances.clear();
  const NgcENeighborhoodErrorCode &outcome = _selectLevel();
  if (outcome == NgcENeighborhoodErrorCode::NEIGH_SUCCESS) {
    *nestedIndex = 0;
  } else {
    _ranks.clear();
    _squaredDistances.clear();
  }
  _copySelected();
  return outcome;
}

int NgdNeighborhoodContext::getMaximumCount() const
{
  return _unique ? _count : _moving->getMaximumNeighborsCount();
}

const double *NgdNeighborhoodContext::getMainValues(int index) const
{
  return _mainColumns[index]->getArrayConst();
}

QList<NbdAVariableNumeric *> NgdNeighborhoodContext::getNumericVariables(const QString &role) const
{
  return _selected->getDataTableConst().getVarsNumeric(role);
}

void NgdNeighborhoodContext::_checkParameters() const
{
  QStringList errors;
  QStringList warnings;
  const int dimension = _moving->getAllData().getNDimensions();
  if (!_moving->getParameters().checkParameters(dimension, errors, warnings))
    throw NbeUserError(
        QObject::tr("Wrong neighborhood parameters:\n%1").arg(errors.join(QString())));
}

void NgdNeighborhoodContext::_prepareColumns(const QList<NbdAVariableNumeric *> &mainVariables)
{
  const NbdDataPoints &data = _moving->getAllData();
  _neighbors.setNDimensions(data.getNDimensions());
  _neighbors.getDataTable() = data.getDataTableConst();
  _neighbors.setResizedTo(0);

  const QList<NbdAVariable *> from = data.getDataTableConst().getAllVars();
  const QList<NbdAVariable *> to = _neighbors.getDataTable().getAllVars();
  for (int i = 0; i < from.size(); ++i) {
    auto *toDouble = dynamic_cast<NbdVariableDouble *>(to[i]);
    const auto *fromDouble = dynamic_cast<const NbdVariableDouble *>(from[i]);
    _columns.push_back(
        {from[i], to[i], toDouble, toDouble ? fromDouble->getArrayConst() : nullptr});
  }
  for (const NbdAVariableNumeric *variable : mainVariables) {
    const int column = from.indexOf(const_cast<NbdAVariableNumeric *>(variable));
    if (column < 0 || !_columns[column].toDouble)
      NBE_FAIL(QStringLiteral("Wrong number of main variables"));
    _mainColumns.push_back(_columns[column].toDouble);
  }
  _x = data.getCoordinates(0)->getArrayConst();
  _y = data.getCoordinates(1)->getArrayConst();
  _z = data.getCoordinates(2)->getArrayConst();
}

void NgdNeighborhoodContext::_findUsableSamples(const QList<NbdAVariableNumeric *> &mainVariables)
{
  const int n = _moving->getAllData().getNSamples();
  _usable.assign(n, 0);
  for (const NbdAVariableNumeric *variable : mainVariables) {
    for (int rank = 0; rank < n; ++rank)
      _usable[rank] |= !variable->isUndefined(rank);
  }
}

const NgcENeighborhoodErrorCode &NgdNeighborhoodContext::_selectLevel()
{
  const NgmNeighborhoodMoving &parameters = _moving->getParameters();
  const NgdSortedDataKdTree &tree = _moving->getSortedData();
  const double squaredRadius = _moving->getRadius() * _moving->getRadius();
  const int wanted = parameters.getMaximumNumberPerSector();

  if (_takesNearest) {
    // One more than is kept tells whether the ellipsoid holds more than that.
    tree.proposeNearest(_target.getCenter(), wanted + 1, squaredRadius, _usable.data(), _proposals);
  } else {
    tree.proposeWithin(_target.getCenter(), squaredRadius, _proposals);
  }
  _measure(_proposals.count);
  if (_candidates.empty())
    return NgcENeighborhoodErrorCode::NEIGH_NO_SAMPLE;

  const bool allFit =
      parameters.getSplittedSectorsNumber() < 2 && qint64(_candidates.size()) <= qint64(wanted);
  if (allFit) {
    std::sort(_candidates.begin(), _candidates.end(),
              [](const _Candidate &a, const _Candidate &b) { return a.rank < b.rank; });
    for (const _Candidate &candidate : _candidates)
      _take(candidate);
  } else {
    _sortCandidates();
    _takeCandidates();
  }
  return int(_ranks.size()) < parameters.getMinimumNumber()
             ? NgcENeighborhoodErrorCode::NEIGH_NOT_ENOUGH
             : NgcENeighborhoodErrorCode::NEIGH_SUCCESS;
}

/// Keeps the proposals that lie strictly inside the ellipsoid, measured from raw coordinates.
void NgdNeighborhoodContext::_measure(int nProposals)
{
  const NgmNeighborhoodMoving &parameters = _moving->getParameters();
  const NbgRotation &rotation = parameters.getEllipseRotation();
  const NbgVector3D scaling = _moving->getScaling();
  const NbgVector3D center = _target.getCenter();
  const double squaredRadius = _moving->getRadius() * _moving->getRadius();
  const bool anisotropic = parameters.isRuleAnisotropicDistances();

  _candidates.clear();
  for (int i = 0; i < nProposals; ++i) {
    const int rank = _proposals.ranks[i];
    if (!_usable[rank])
      continue;
    const NbgVector3D d(_x[rank] - center.x(), _y[rank] - center.y(), _z[rank] - center.z());
    const NbgVector3D local = rotation.worldToLocal(d);
    const NbgVector3D scaled = local.componentsProduct(scaling);
    const double a = scaled.x() * scaled.x() + scaled.y() * scaled.y() + scaled.z() * scaled.z();
    if (!(a < squaredRadius))
      continue;
    const double e = d.x() * d.x() + d.y() * d.y() + d.z() * d.z();
    _candidates.push_back({anisotropic ? a : e, e, rank, _sectorOf(local)});
  }
}

void NgdNeighborhoodContext::_sortCandidates()
{
  const auto before = [](const _Candidate &a, const _Candidate &b) {
    return a.key < b.key || (a.key == b.key && a.rank < b.rank);
  };
  if (!_takesNearest) {
    std::sort(_candidates.begin(), _candidates.end(), before);
    return;
  }
  // The index proposes in nearly the right order: insertion is linear then.
  for (std::size_t i = 1; i < _candidates.size(); ++i) {
    const _Candidate candidate = _candidates[i];
    std::size_t j = i;
    for (; j > 0 && before(candidate, _candidates[j - 1]); --j)
      _candidates[j] = _candidates[j - 1];
    _candidates[j] = candidate;
  }
}

/// Takes sorted candidates until every sector is full or the maximum number is reached.
void NgdNeighborhoodContext::_takeCandidates()
{
  const NgmNeighborhoodMoving &parameters = _moving->getParameters();
  const int perSector = parameters.getMaximumNumberPerSector();
  std::fill(_sectorCounts.begin(), _sectorCounts.end(), 0);
  int full = 0;
  for (const _Candidate &candidate : _candidates) {
    if (full == int(_sectorCounts.size()) ||
        (parameters.isRuleMaximumNumber() && int(_ranks.size()) >= parameters.getMaximumNumber()))
      return;
    int &count = _sectorCounts[candidate.sector];
    if (count >= perSector)
      continue;
    _take(candidate);
    full += ++count == perSector;
  }
}

void NgdNeighborhoodContext::_take(const _Candidate &candidate)
{
  _ranks.push_back(candidate.rank);
  _squaredDistances.push_back(candidate.squaredDistance);
}

void NgdNeighborhoodContext::_copySelected()
{
  _count = int(_ranks.size());
  if (_neighbors.getNSamples() != _count)
    _neighbors.setResizedTo(_count);
  for (const _Column &column : _columns) {
    if (column.toDouble) {
      double *to = column.toDouble->getArray();
      for (int i = 0; i < _count; ++i)
        to[i] = column.values[_ranks[i]];
    } else {
      for (int i = 0; i < _count; ++i)
        column.to->copyValuesFrom(*column.from, _ranks[i], i, 1);
    }
  }
}

int NgdNeighborhoodContext::_sectorOf(const NbgVector3D &local) const
{
  const NgmNeighborhoodMoving &parameters = _moving->getParameters();
  const int n = parameters.getSectorsNumber();
  int sector = 0;
  if (n > 1) {
    sector = int(local.dirHorizontal() * n / 6.283185307179586);
    if (sector >= n)
      sector = 0;
  }
  return parameters.isSplitSectors() && !(local.z() >= 0.) ? sector + n : sector;
}
