#include "data/private/NgdNeighborhoodSearch.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAData.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "geos/interpol/NgmBlock.h"

#include <algorithm>
#include <limits>

namespace {

/// Samples at that squared distance from the target stand at it.
constexpr double collocated = 1e-6;

/// Beyond these numbers sorting all candidates is cheaper than keeping the best in order.
constexpr int mostNearest = 512;
constexpr int mostBestPerSector = 64;
constexpr int mostPlaces = 65536;

/// A filtered search for the nearest ends in a listing when it has to look at so many.
constexpr int mostProposals = 4096;

/// Nearest samples that fill the sectors of most targets, per place in a sector.
constexpr int nearestPerPlace = 3;

/// With sectors, listing is cheaper when the ellipsoid holds fewer than so many times the nearest
/// asked for (measured).
constexpr double cheapListing = 4.;

bool isWithin(const NbgVector3D &offset, const NbgVector3D &halfExtents)
{
  return std::abs(offset.x()) <= halfExtents.x() && std::abs(offset.y()) <= halfExtents.y() &&
         std::abs(offset.z()) <= halfExtents.z();
}

}  // namespace

const NgcENeighborhoodErrorCode &NgdNeighborhoodSearch::run(const NgmNeighborhoodMoving &parameters,
                                                            const NgdSearchVolume &volume,
                                                            const NgmTarget &target)
{
  _parameters = &parameters;
  _volume = &volume;
  _target = &target;
  _center = target.getCenter();
  _prepare();
  ++_nSearches;
  return _check(_parse());
}

void NgdNeighborhoodSearch::_prepare()
{
  const NgmNeighborhoodMoving &p = *_parameters;
  _block = _target->isBlock() ? &_target->getBlock() : nullptr;
  _nSectors = std::max(1, p.getSplittedSectorsNumber());
  _perSector = std::max(0, p.getMaximumNumberPerSector());
  _keysAreAnisotropic = p.isRuleAnisotropicDistances();
  _testsRejection = rejection.active && rejection.targetRank >= 0;
  _testsFaults = faults.active;
  _testsCodes = p.isRulePerCode() && samples.hasCodes;
  _removesByCaps = (p.isRuleCutLarge() && p.getCutLargeMode() == NgcECutoffMode::CUTOFF_REMOVE) ||
                   (p.isRuleCutSmall() && p.getCutSmallMode() == NgcECutoffMode::CUTOFF_REMOVE);
  _prepareRoad();

  _selected.clear();
  _sectorCounts.assign(_nSectors, 0);
  _codeCounts.clear();
  for (const int rank : _rejectedRanks)
    _rejectedFlags[rank] = 0;
  _rejectedRanks.clear();
  if (_testsRejection && _rejectedFlags.empty() &&
      rejection.option != NgcERejectionAuxVarOption::AUX_VAR_KEEP_NOTHING)
    _rejectedFlags.assign(samples.n, 0);
}

/// Which candidates the rules need to see, and in which order.
void NgdNeighborhoodSearch::_prepareRoad()
{
  const NgmNeighborhoodMoving &p = *_parameters;
  const bool comparesCandidates =
      p.isRuleHeterotopicSearch() || p.isRuleMinimumGap() || p.isRulePerCode();
  _looksAroundTarget = p.isRuleProximity() || p.isRuleBlockKeepAll();
  _hasPlainRules = !_looksAroundTarget && !_testsRejection && !_testsFaults && !_removesByCaps &&
                   !p.isRectangular();
  _keysFollowFrame = _keysAreAnisotropic || _volume->isUniform;
  const bool canTakeNearest =
      !comparesCandidates && !_looksAroundTarget && !p.isRectangular() && _volume->isSphereInFrame;
  const qint64 capacity = qint64(_nSectors) * _perSector;
  _keepsBestPerSector = _nSectors >= 2 && !comparesCandidates && !additional.data &&
                        _perSector > 0 && _perSector <= mostBestPerSector && capacity <= mostPlaces;
  _takesNearest =
      canTakeNearest && capacity <= mostNearest && (_nSectors < 2 || _keepsBestPerSector);
  const int nOwn = _testsRejection ? 1 : 0;  // a rejected target is among the nearest
  _fewestNearest = int(_nSectors < 2 ? capacity + 1 : nearestPerPlace * capacity) + nOwn;
  _mostNearest = mostProposals;
  if (_takesNearest && _nSectors > 1) {
    // A sector that those do not fill is nearly empty as far as the ellipsoid reaches: asking for
    // more seldom helps (measured).
    const double estimate = _tree->estimateWithin(_volume->squaredReach);
    _mostNearest = estimate >= cheapListing * _fewestNearest ? _fewestNearest : 0;
  }
  _keepsAllThatFit = _nSectors < 2 && !comparesCandidates &&
                     !p.isRuleMaximumDistanceWithoutAnySample() && !p.isRuleMaximumEmptySectors() &&
                     !p.isRuleCutLarge() && !p.isRuleCutSmall();
}

const NgcENeighborhoodErrorCode &NgdNeighborhoodSearch::_parse()
{
  if (!_collect())
    return NgcENeighborhoodErrorCode::NEIGH_PROXIMITY;
  if (_parameters->isRuleMaximumPerBlock() &&
      int(_selected.size()) >= _parameters->getMaximumPerBlock())
    return NgcENeighborhoodErrorCode::NEIGH_MAX_IN_BLOCK;
  if (_nCandidates == 0)
    return _selected.empty() ? NgcENeighborhoodErrorCode::NEIGH_NO_SAMPLE
                             : NgcENeighborhoodErrorCode::NEIGH_BLOCK_ONLY;

  _keepsAllThatFit =
      _keepsAllThatFit && qint64(_selected.size()) + _nCandidates <= qint64(_perSector);
  if (_keepsAllThatFit) {
    std::sort(_candidates.begin(), _candidates.end(),
              [](const _Candidate &a, const _Candidate &b) { return a.sample < b.sample; });
  } else {
    _sort();
  }
  return NgcENeighborhoodErrorCode::NEIGH_SUCCESS;
}

/// False when a sample was selected alone.
bool NgdNeighborhoodSearch::_collect()
{
  _hasNearest = _takesNearest && _collectNearest();
  if (!_hasNearest) {
    _forgetCandidates();
    if (!_collectAll())
      return false;
  }
  if (additional.data && !_collectAdditional())
    return false;
  if (_keepsBestPerSector)
    _mergeSectors();
  return true;
}

void NgdNeighborhoodSearch::_forgetCandidates()
{
  _nCandidates = 0;
  if (_keepsBestPerSector) {
    _candidates.resize(std::size_t(_nSectors) * _perSector);
    _bestCounts.assign(_nSectors, 0);
    _nFullBest = 0;
    _worstBest = std::numeric_limits<double>::infinity();
  } else {
    _candidates.clear();
  }
}

/// The samples that filters leave of the nearest ones are the nearest of those that they leave of
/// all: one more than is kept tells that the ellipsoid holds more than that, and full sectors hold
/// their nearest. False when all candidates have to be seen.
bool NgdNeighborhoodSearch::_collectNearest()
{
  for (int wanted = _fewestNearest; wanted <= _mostNearest; wanted *= 4) {
    if (_measureNearest(wanted)) {
      ++_nNearest;
      return true;
    }
  }
  return false;
}

/// Measures that many of the nearest samples; true when no other one can count.
bool NgdNeighborhoodSearch::_measureNearest(int wanted)
{
  if (_keysFollowFrame)
    _tree->proposeNearest(_center, wanted, _volume->squaredReach, samples.usable.data(),
                          _proposals);
  else
    _tree->proposeNearestUnscaled(_center, wanted, _volume->squaredReach, samples.usable.data(),
                                  _proposals);
  for (int i = 0; i < _proposals.count; ++i) {
    const int rank = _proposals.ranks[i];
    __builtin_prefetch(samples.x + rank);
    __builtin_prefetch(samples.y + rank);
    __builtin_prefetch(samples.z + rank);
  }
  bool isComplete = _proposals.count < wanted;
  _forgetCandidates();
  for (int i = 0; i < _proposals.count; ++i) {
    // Behind those wanted stand the ones that may tie with the last of them.
    if (i == wanted)
      isComplete |= _hasEnough();
    const int rank = _proposals.ranks[i];
    const NbgVector3D location(samples.x[rank], samples.y[rank], samples.z[rank]);
    const _Verdict verdict =
        _hasPlainRules ? _measurePlain(rank, location) : _measureWithRules(rank, location);
    isComplete |= verdict == OUTSIDE && _keysFollowFrame;
  }
  return isComplete || (_proposals.count == wanted && _hasEnough());
}

bool NgdNeighborhoodSearch::_hasEnough() const
{
  return _nSectors > 1 ? _nFullBest == _nSectors : _nCandidates > _perSector;
}

bool NgdNeighborhoodSearch::_collectAll()
{
  _tree->proposeWithin(_center, _volume->squaredReach, _proposals);
  if (_looksAroundTarget)
    std::sort(_proposals.ranks.begin(), _proposals.ranks.begin() + _proposals.count);
  for (int i = 0; i < _proposals.count; ++i) {
    const int rank = _proposals.ranks[i];
    if (!samples.usable[rank])
      continue;
    const NbgVector3D location(samples.x[rank], samples.y[rank], samples.z[rank]);
    if (_hasPlainRules)
      _measurePlain(rank, location);
    else if (_measureWithRules(rank, location) == ALONE)
      return false;
  }
  return true;
}

bool NgdNeighborhoodSearch::_collectAdditional()
{
  additional.index.selectDataFromBox(_center, _volume->halfExtents, _volume->boxRotation,
                                     _additionalPositions);
  const std::size_t first = _candidates.size();
  for (const int position : _additionalPositions) {
    const int sample = samples.n + position;
    if (_isUsable(sample) && _measureWithRules(sample, additional.locations[position]) == ALONE)
      return false;
  }
  if (additional.maximum >= 0)
    _keepNearestAdditional(first);
  return true;
}

/// Of the additional candidates, which stand behind the others, only the nearest stay.
void NgdNeighborhoodSearch::_keepNearestAdditional(std::size_t first)
{
  if (_candidates.size() - first <= std::size_t(additional.maximum))
    return;
  const auto last = _candidates.begin() + first + additional.maximum;
  std::nth_element(_candidates.begin() + first, last, _candidates.end(), _isBefore);
  _candidates.erase(last, _candidates.end());
  _nCandidates = int(_candidates.size());
}

NgdNeighborhoodSearch::_Verdict NgdNeighborhoodSearch::_measurePlain(int sample,
                                                                     const NbgVector3D &location)
{
  const NbgVector3D d = location - _center;
  const NbgVector3D local = _parameters->getEllipseRotation().worldToLocal(d);
  const NbgVector3D scaled = local.componentsProduct(_volume->scaling);
  const double a = scaled.squaredNorm();
  if (!(a < _volume->squaredRadius))
    return OUTSIDE;
  const double e = d.squaredNorm();
  _offer(local, a, e, sample);
  return KEPT;
}

NgdNeighborhoodSearch::_Verdict NgdNeighborhoodSearch::_measureWithRules(
    int sample, const NbgVector3D &location)
{
  const NbgVector3D d = location - _center;
  const NbgVector3D local = _parameters->getEllipseRotation().worldToLocal(d);
  const NbgVector3D scaled = local.componentsProduct(_volume->scaling);
  const double a =
      _parameters->isRectangular() ? scaled.squaredChebychevDist() : scaled.squaredNorm();
  const bool isInside = a < _volume->squaredRadius;
  const bool isInBox = _looksAroundTarget && _volume->isInBox(d);
  if (!isInside && !isInBox)
    return OUTSIDE;

  const double e = d.squaredNorm();
  if (_testsRejection && !_surviveRejection(sample, location, e))
    return DROPPED;
  if (_testsFaults && !_isKeptByFaults(location))
    return DROPPED;
  if (_removesByCaps && _isRemovedByCaps(sample, local))
    return DROPPED;
  if (isInBox) {
    const _Verdict verdict = _tryAroundTarget(sample, d, local);
    if (verdict != KEPT)
      return verdict;
  }
  if (!isInside)
    return OUTSIDE;
  _offer(local, a, e, sample);
  return KEPT;
}

/// Proximity and the target's block; KEPT when neither takes the sample.
NgdNeighborhoodSearch::_Verdict NgdNeighborhoodSearch::_tryAroundTarget(int sample,
                                                                        const NbgVector3D &offset,
                                                                        const NbgVector3D &local)
{
  const NbgVector3D inBlock = _block ? _block->getRotation().worldToLocal(offset) : offset;
  const NbgVector3D &proximity = _parameters->getProximitySize();
  if (_parameters->isRuleProximity() && isWithin(inBlock, proximity.maximum(-1. * proximity))) {
    _selected.clear();
    _sectorCounts.assign(_nSectors, 0);
    _codeCounts.clear();
    _select(sample, -1, offset.squaredNorm());
    return ALONE;
  }
  if (_block && _parameters->isRuleBlockKeepAll() && isWithin(inBlock, _volume->blockHalfSize)) {
    _select(sample, _sectorOf(local), offset.squaredNorm());
    return DROPPED;
  }
  return KEPT;
}

/// False when a rejected sample is removed; one that is kept may lose its rejected variable.
bool NgdNeighborhoodSearch::_surviveRejection(int sample, const NbgVector3D &location,
                                              double squaredDistance)
{
  if (!_isRejectedByMode(sample, location, squaredDistance))
    return true;
  const bool isKept = rejection.option == NgcERejectionAuxVarOption::AUX_VAR_KEEP_ALL ||
                      (rejection.option == NgcERejectionAuxVarOption::AUX_VAR_KEEP_TARGET &&
                       sample == rejection.targetRank);
  if (!isKept)
    return false;
  if (!_rejectedFlags[sample]) {
    _rejectedFlags[sample] = 1;
    _rejectedRanks.push_back(sample);
  }
  return _isUsable(sample);
}

bool NgdNeighborhoodSearch::_isRejectedByMode(int sample, const NbgVector3D &location,
                                              double squaredDistance) const
{
  if (sample == rejection.targetRank)
    return true;
  if (rejection.mode == NgcERejectionMode::REJECTION_BY_PARTITION)
    return rejection.partition.isIncluded(location);
  if (rejection.mode == NgcERejectionMode::REJECTION_BY_LINE &&
      samples.lines[sample] != NbbGlobal::I64_FFFF &&
      samples.lines[sample] == samples.lines[rejection.targetRank])
    return true;
  return squaredDistance < collocated;
}

bool NgdNeighborhoodSearch::_isKeptByFaults(const NbgVector3D &location) const
{
  if (faults.targetPolygon < 0)
    return faults.set.isInLineOfSight(_center, location, -1);
  if (faults.mode == NgcEFaultsMode::CALCULATE_INSIDE)
    return faults.set.isInside(location) &&
           faults.set.isInLineOfSight(_center, location, faults.targetPolygon);
  if (faults.mode == NgcEFaultsMode::CALCULATE_INSIDE_IGNORING_POLYGON)
    return faults.set.isInLineOfSight(_center, location, faults.targetPolygon);
  return true;
}

bool NgdNeighborhoodSearch::isCapped(int sample, bool top) const
{
  if (sample >= samples.n)
    return false;
  const NbgVector3D local =
      _parameters->getEllipseRotation().worldToLocal(_location(sample) - _center);
  return _isCapped(sample, local, top);
}

bool NgdNeighborhoodSearch::_isRemovedByCaps(int sample, const NbgVector3D &local) const
{
  const NgmNeighborhoodMoving &p = *_parameters;
  return sample < samples.n && ((p.getCutLargeMode() == NgcECutoffMode::CUTOFF_REMOVE &&
                                 _isCapped(sample, local, true)) ||
                                (p.getCutSmallMode() == NgcECutoffMode::CUTOFF_REMOVE &&
                                 _isCapped(sample, local, false)));
}

bool NgdNeighborhoodSearch::_isCapped(int sample, const NbgVector3D &local, bool top) const
{
  const NgmNeighborhoodMoving &p = *_parameters;
  const double *values = top ? samples.largeValues : samples.smallValues;
  if (!values || !(top ? p.isRuleCutLarge() : p.isRuleCutSmall()))
    return false;
  const double value = values[sample];
  if (!NbbGlobal::isDefined(value) ||
      !(top ? value > p.getCutLargeThreshold() : value < p.getCutSmallThreshold()))
    return false;
  const NbgVector3D &radii = top ? p.getCutLargeDistance() : p.getCutSmallDistance();
  return radii == NbgVector3D() || local.componentsProduct(radii.inverse()).squaredNorm() >= 1.;
}

/// At least one variable is defined, with the isotopic rule every one.
bool NgdNeighborhoodSearch::_isUsable(int sample) const
{
  const bool needsAll = _parameters->isRuleIsotopicSearch();
  for (int variable = 0; variable < samples.nVariables; ++variable) {
    if (isDefined(sample, variable) != needsAll)
      return !needsAll;
  }
  return needsAll;
}

bool NgdNeighborhoodSearch::isDefined(int sample, int variable) const
{
  if (sample < samples.n) {
    const bool isKnown = samples.nVariables == 1
                             ? samples.usable[sample]
                             : samples.defined[std::size_t(variable) * samples.n + sample];
    return isKnown && !(variable == rejection.variable && isRejected(sample));
  }
  return variable < int(additional.variables.size()) &&
         !additional.variables[variable]->isUndefined(sample - samples.n);
}

NbgVector3D NgdNeighborhoodSearch::_location(int sample) const
{
  return sample < samples.n ? NbgVector3D(samples.x[sample], samples.y[sample], samples.z[sample])
                            : additional.locations[sample - samples.n];
}

int NgdNeighborhoodSearch::_sectorOf(const NbgVector3D &local) const
{
  const int n = _parameters->getSectorsNumber();
  int sector = 0;
  if (n > 1) {
    sector = int(local.dirHorizontal() * n / 6.283185307179586);
    if (sector >= n)
      sector = 0;
  }
  const bool isUpper = local.z() * _volume->scaling.z() >= 0.;
  return _parameters->isSplitSectors() && !isUpper ? sector + n : sector;
}

/// Keeps a candidate of squared distances `a` (scaled) and `e`; where the best of each sector are
/// enough, one that its sector has no place for is only counted.
void NgdNeighborhoodSearch::_offer(const NbgVector3D &local, double a, double e, int sample)
{
  ++_nCandidates;
  const double key = _keysAreAnisotropic ? a : e;
  // Constructed in place: elements copied right after their parts were written wait for the memory.
  if (!_keepsBestPerSector)
    _candidates.emplace_back(key, e, sample, _nSectors > 1 ? _sectorOf(local) : 0);
  else if (!(key > _worstBest))
    _offerToSector(_Candidate(key, e, sample, _sectorOf(local)));
}

void NgdNeighborhoodSearch::_offerToSector(const _Candidate &candidate)
{
  const int sector = candidate.sector;
  _Candidate *best = _candidates.data() + std::size_t(sector) * _perSector;
  int &count = _bestCounts[sector];
  if (count == _perSector && !_isBefore(candidate, best[count - 1]))
    return;
  const bool wasFull = count == _perSector;
  int i = wasFull ? count - 1 : count++;
  for (; i > 0 && _isBefore(candidate, best[i - 1]); --i)
    best[i] = best[i - 1];
  best[i] = candidate;

  _nFullBest += !wasFull && count == _perSector;
  if (_nFullBest < _nSectors)
    return;
  _worstBest = 0.;
  for (int s = 0; s < _nSectors; ++s)
    _worstBest =
        std::max(_worstBest, _candidates[std::size_t(s) * _perSector + _perSector - 1].key);
}

void NgdNeighborhoodSearch::_mergeSectors()
{
  std::size_t size = 0;
  for (int sector = 0; sector < _nSectors; ++sector) {
    const std::size_t first = std::size_t(sector) * _perSector;
    for (int i = 0; i < _bestCounts[sector]; ++i)
      _candidates[size++] = _candidates[first + i];
  }
  _candidates.resize(size);
}

void NgdNeighborhoodSearch::_sort()
{
  if (!_hasNearest || _nSectors > 1 || additional.data) {
    std::sort(_candidates.begin(), _candidates.end(), _isBefore);
    return;
  }
  // The index proposes in nearly the right order: insertion is linear then.
  for (std::size_t i = 1; i < _candidates.size(); ++i) {
    const _Candidate candidate = _candidates[i];
    std::size_t j = i;
    for (; j > 0 && _isBefore(candidate, _candidates[j - 1]); --j)
      _candidates[j] = _candidates[j - 1];
    _candidates[j] = candidate;
  }
}
