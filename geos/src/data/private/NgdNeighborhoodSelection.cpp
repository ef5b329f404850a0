#include "data/private/NgdNeighborhoodSearch.h"

#include "basic/base/NbbGlobal.h"
#include "geos/interpol/NgmNeighborhoodMoving.h"

#include <algorithm>
#include <limits>

// The second half of a search: which of the sorted candidates are selected.

const NgcENeighborhoodErrorCode &NgdNeighborhoodSearch::_check(
    const NgcENeighborhoodErrorCode &parsed)
{
  if (parsed == NgcENeighborhoodErrorCode::NEIGH_SUCCESS) {
    _taken.assign(_candidates.size(), 0);
    if (_parameters->isRuleHeterotopicSearch())
      _takeForVariables();
    if (_keepsAllThatFit) {
      _takeAll();
    } else {
      _takePerSector();
      if (_hasTooManyEmptySectors())
        return _fail(NgcENeighborhoodErrorCode::NEIGH_EMPTY_SECT);
    }
  } else if (parsed != NgcENeighborhoodErrorCode::NEIGH_BLOCK_ONLY) {
    return parsed;
  }

  if (_parameters->isRuleMaximumDistanceWithoutAnySample() && !_selected.empty()) {
    const double distance = _parameters->getMaximumDistanceWithoutAnySample();
    if (std::none_of(_selected.begin(), _selected.end(), [=](const Selected &selected) {
          return selected.squaredDistance < distance * distance;
        }))
      return _fail(NgcENeighborhoodErrorCode::NEIGH_TOO_FAR);
  }
  if (int(_selected.size()) < _parameters->getMinimumNumber())
    return _fail(NgcENeighborhoodErrorCode::NEIGH_NOT_ENOUGH);
  if (_testsCodes && _parameters->isRuleMinimumCodeNb() &&
      int(_codeCounts.size()) < _parameters->getMinimumCodeNb())
    return _fail(NgcENeighborhoodErrorCode::NEIGH_NOT_ENOUGH_CODES);
  return parsed;
}

const NgcENeighborhoodErrorCode &NgdNeighborhoodSearch::_fail(const NgcENeighborhoodErrorCode &code)
{
  _selected.clear();
  return code;
}

void NgdNeighborhoodSearch::_takeAll()
{
  for (const _Candidate &candidate : _candidates)
    _select(candidate.sample, 0, candidate.squaredDistance);
}

/// The heterotopic search: per sector, a sample for each variable that no selected one informs.
void NgdNeighborhoodSearch::_takeForVariables()
{
  _marked.assign(_candidates.size(), 0);
  for (int sector = 0; sector < _nSectors; ++sector) {
    bool hasMarked = false;
    for (int variable = 0; variable < samples.nVariables; ++variable)
      hasMarked |= _markForVariable(sector, variable);
    if (!hasMarked)
      continue;
    for (std::size_t i = 0; i < _candidates.size(); ++i) {
      if (!_marked[i])
        continue;
      _select(_candidates[i].sample, sector, _candidates[i].squaredDistance);
      _taken[i] = 1;
      _marked[i] = 0;
    }
  }
}

bool NgdNeighborhoodSearch::_markForVariable(int sector, int variable)
{
  for (const Selected &selected : _selected) {
    if (selected.sector == sector && isDefined(selected.sample, variable))
      return false;
  }
  for (std::size_t i = 0; i < _candidates.size(); ++i) {
    const _Candidate &candidate = _candidates[i];
    if (_taken[i] || candidate.sector != sector || !isDefined(candidate.sample, variable) ||
        !_passesTests(candidate))
      continue;
    _marked[i] = 1;
    return true;
  }
  return false;
}

/// Takes sorted candidates until every sector is full or the maximum number is reached.
void NgdNeighborhoodSearch::_takePerSector()
{
  if (_testsCodes && _parameters->isRuleOptimumPerCode() && _parameters->getOptimumPerCode() >= 1)
    _takePass(true);
  _takePass(false);
}

void NgdNeighborhoodSearch::_takePass(bool testsOptimum)
{
  const int perSector = _perSector;
  const std::size_t maximum = _parameters->isRuleMaximumNumber()
                                  ? std::size_t(std::max(0, _parameters->getMaximumNumber()))
                                  : std::numeric_limits<std::size_t>::max();
  int nFull = int(std::count_if(_sectorCounts.begin(), _sectorCounts.end(),
                                [=](int count) { return count >= perSector; }));
  for (std::size_t i = 0; i < _candidates.size(); ++i) {
    if (nFull == _nSectors || _selected.size() >= maximum)
      return;
    const _Candidate &candidate = _candidates[i];
    if (_taken[i] || _sectorCounts[candidate.sector] >= perSector || !_passesTests(candidate) ||
        (testsOptimum && !_passesOptimum(candidate.sample)))
      continue;
    _select(candidate.sample, candidate.sector, candidate.squaredDistance);
    _taken[i] = 1;
    nFull += _sectorCounts[candidate.sector] == perSector;
  }
}

bool NgdNeighborhoodSearch::_passesTests(const _Candidate &candidate) const
{
  return _passesGap(candidate.sample) && (!_testsCodes || _passesMaximumCodes(candidate.sample));
}

bool NgdNeighborhoodSearch::_passesGap(int sample) const
{
  if (!_parameters->isRuleMinimumGap())
    return true;
  const double squaredGap = _parameters->getMinimumGap() * _parameters->getMinimumGap();
  const NbgVector3D location = _location(sample);
  return std::none_of(_selected.begin(), _selected.end(), [&](const Selected &selected) {
    return (_location(selected.sample) - location).squaredNorm() < squaredGap;
  });
}

bool NgdNeighborhoodSearch::_passesOptimum(int sample) const
{
  if (!_hasCode(sample))
    return true;
  const _CodeCount *known = _findCode(samples.codes[sample]);
  return !known || known->count < _parameters->getOptimumPerCode();
}

bool NgdNeighborhoodSearch::_passesMaximumCodes(int sample) const
{
  if (!_hasCode(sample))
    return true;
  if (const _CodeCount *known = _findCode(samples.codes[sample]))
    return !_parameters->isRuleMaximumPerCode() || known->count < _parameters->getMaximumPerCode();
  return !_parameters->isRuleMaximumCodeNb() ||
         int(_codeCounts.size()) < _parameters->getMaximumCodeNb();
}

bool NgdNeighborhoodSearch::_hasCode(int sample) const
{
  return sample < samples.n && samples.codes[sample] != NbbGlobal::I32_FFFF;
}

const NgdNeighborhoodSearch::_CodeCount *NgdNeighborhoodSearch::_findCode(int code) const
{
  for (const _CodeCount &known : _codeCounts) {
    if (known.code == code)
      return &known;
  }
  return nullptr;
}

void NgdNeighborhoodSearch::_select(int sample, int sector, double squaredDistance)
{
  _selected.emplace_back(sample, sector, squaredDistance);
  if (sector >= 0)
    ++_sectorCounts[sector];
  if (!_testsCodes || !_hasCode(sample))
    return;
  const int code = samples.codes[sample];
  for (_CodeCount &known : _codeCounts) {
    if (known.code == code) {
      ++known.count;
      return;
    }
  }
  _codeCounts.push_back({code, 1});
}

bool NgdNeighborhoodSearch::_hasTooManyEmptySectors() const
{
  if (!_parameters->isRuleMaximumEmptySectors())
    return false;
  const int allowed = _parameters->getMaximumEmptySectors();
  if (!_parameters->isRuleMaximumEmptySectorsConsecutive())
    return std::count(_sectorCounts.begin(), _sectorCounts.end(), 0) > allowed;
  const int nPerHalf = std::max(1, _parameters->getSectorsNumber());
  for (int first = 0; first < _nSectors; first += nPerHalf) {
    if (_longestEmptyRun(first) > allowed)
      return true;
  }
  return false;
}

/// Empty sectors in a row around the half that begins with sector `first`.
int NgdNeighborhoodSearch::_longestEmptyRun(int first) const
{
  const int n = std::max(1, _parameters->getSectorsNumber());
  int longest = 0;
  int run = 0;
  for (int i = 0; i < 2 * n; ++i) {
    run = _sectorCounts[first + i % n] == 0 ? run + 1 : 0;
    longest = std::max(longest, std::min(run, n));
  }
  return longest;
}
