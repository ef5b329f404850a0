#include "geos/data/NgdNeighborhoodContext.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "data/private/NgdNeighborhoodLevel.h"
#include "data/private/NgdNeighborhoodSearch.h"
#include "geos/NgmEnumGlobal.h"

#include <algorithm>

// The neighbors that a search leaves, and what is asked about them.

namespace {

/// A sample at that squared distance from the target stands at it.
constexpr double collocatedDistance = 1e-6;

}  // namespace

void NgdNeighborhoodContext::_takeOver()
{
  _ranks.clear();
  _squaredDistances.clear();
  _sectors.clear();
  for (const NgdNeighborhoodSearch::Selected &selected : _search->getSelected()) {
    _ranks.push_back(selected.sample);
    _squaredDistances.push_back(selected.squaredDistance);
    _sectors.push_back(selected.sector);
  }
  _collocatedRank = -1;
  _copySelected();
}

void NgdNeighborhoodContext::_copySelected()
{
  _count = int(_ranks.size());
  if (_neighbors.getNSamples() != _count)
    _neighbors.setResizedTo(_count);
  if (_search->additional.data) {
    _copyAdditional();
    return;
  }
  for (const _Column &column : _columns) {
    if (column.toDouble) {
      double *to = column.toDouble->getArray();
      for (int i = 0; i < _count; ++i)
        to[i] = column.doubles[_ranks[i]];
    } else if (column.toInt64) {
      auto *to = column.toInt64->getArray();
      for (int i = 0; i < _count; ++i)
        to[i] = column.integers[_ranks[i]];
    } else {
      for (int i = 0; i < _count; ++i)
        column.to->copyValuesFrom(*column.from, _ranks[i], i, 1);
    }
  }
  const int rejected = _search->rejection.variable;
  if (!_search->rejection.active || rejected < 0)
    return;
  for (int i = 0; i < _count; ++i) {
    if (_search->isRejected(_ranks[i]))
      _mainColumns[rejected]->setToUndefined(i);
  }
}

/// The same when some of the selected samples belong to the additional input: these bring their
/// location and their main variables.
void NgdNeighborhoodContext::_copyAdditional()
{
  const NgdNeighborhoodSearch::Additional &additional = _search->additional;
  const int n = _search->samples.n;
  for (int i = 0; i < _count; ++i) {
    const int position = _ranks[i] - n;
    for (const _Column &column : _columns) {
      if (position < 0)
        column.to->copyValuesFrom(*column.from, _ranks[i], i, 1);
      else
        column.to->setToUndefined(i);
    }
    if (position < 0)
      continue;
    _neighbors.setCoordValues(i, additional.locations[position]);
    for (std::size_t v = 0; v < std::min(_mainColumns.size(), additional.variables.size()); ++v)
      _mainColumns[v]->copyValuesFrom(*additional.variables[v], position, i, 1);
  }
}

void NgdNeighborhoodContext::_applyCaps()
{
  const NgmNeighborhoodMoving &p = _levels[_currentLevel].parameters;
  if (p.isRuleCutLarge())
    _applyCap(true, p.getCutLargeMode(), p.getCutLargeThreshold(), _largeCapVariable);
  if (p.isRuleCutSmall())
    _applyCap(false, p.getCutSmallMode(), p.getCutSmallThreshold(), _smallCapVariable);
}

void NgdNeighborhoodContext::_applyCap(bool top, const NgcECutoffMode &mode, double threshold,
                                       int mainIndex)
{
  if (mode == NgcECutoffMode::CUTOFF_REMOVE)
    return;
  NbdAVariableNumeric &values = *_mainColumns[mainIndex];
  for (int i = 0; i < _count; ++i) {
    if (!_search->isCapped(_ranks[i], top) || values.isUndefined(i))
      continue;
    if (mode == NgcECutoffMode::CUTOFF_REPLACE)
      values.setValue(i, threshold);
    else
      values.setToUndefined(i);
  }
}

void NgdNeighborhoodContext::_appendCollocatedTarget(int targetIndex)
{
  if (!_forceCollocated && (_collocated.isEmpty() || _isTargetCollocated()))
    return;
  _collocatedRank = _neighbors.appendSample(_target->getCenter());
  _count = _neighbors.getNSamples();
  if (targetIndex < 0)
    return;
  for (auto it = _collocated.constBegin(); it != _collocated.constEnd(); ++it)
    _mainColumns[it.key()]->copyValuesFrom(*it.value(), targetIndex, _collocatedRank, 1);
}

bool NgdNeighborhoodContext::_isTargetCollocated() const
{
  return std::any_of(_squaredDistances.begin(), _squaredDistances.end(),
                     [](double distance) { return distance <= collocatedDistance; });
}

int NgdNeighborhoodContext::getMaximumCount() const
{
  return _unique ? _count : _moving->getMaximumNeighborsCount();
}

const double *NgdNeighborhoodContext::getMainValues(int index) const
{
  return _mainDoubles[index] ? _mainDoubles[index]->getArrayConst() : nullptr;
}

QList<NbdAVariableNumeric *> NgdNeighborhoodContext::getNumericVariables(const QString &role) const
{
  return _selected->getDataTableConst().getVarsNumeric(role);
}

QList<NbdVariableAlpha *> NgdNeighborhoodContext::getAlphaVariables(const QString &role) const
{
  return _selected->getDataTableConst().getVarsAlpha(role);
}

NbdAVariableNumeric *NgdNeighborhoodContext::getNumericVariable(const QString &role) const
{
  return _selected->getDataTableConst().getVarNumeric(role);
}

int NgdNeighborhoodContext::getNestedNeighIndex(int level) const
{
  if (level < 0)
    return NgmENeighborhoodNestedCode::FAILED.getValue();
  return level == 0 ? NgmENeighborhoodNestedCode::STANDARD.getValue() : _levels[level].code;
}

QString NgdNeighborhoodContext::getNestedNeighName(int level) const
{
  if (level < 0)
    return NgmENeighborhoodNestedCode::FAILED.getLabel();
  return level == 0 ? NgmENeighborhoodNestedCode::STANDARD.getLabel() : _levels[level].name;
}

int NgdNeighborhoodContext::getNSelectedCodes() const
{
  return getNSelectedCodesByVar(-1);
}

int NgdNeighborhoodContext::getNSelectedCodesByVar(int index) const
{
  const NgdNeighborhoodSearch::Samples &samples = _search->samples;
  if (!samples.hasCodes)
    return 0;
  const auto codeOf = [&](int rank) {
    const bool counts = rank < samples.n && (index < 0 || _search->isDefined(rank, index));
    return counts ? samples.codes[rank] : NbbGlobal::I32_FFFF;
  };
  int nCodes = 0;
  for (auto rank = _ranks.begin(); rank != _ranks.end(); ++rank) {
    const int code = codeOf(*rank);
    nCodes += code != NbbGlobal::I32_FFFF &&
              std::none_of(_ranks.begin(), rank, [&](int r) { return codeOf(r) == code; });
  }
  return nCodes;
}

const NgmNeighborhoodMoving &NgdNeighborhoodContext::getMovingParams(int level) const
{
  return _moving->getLevels()[level].parameters;
}

const NgmNeighborhoodMoving &NgdNeighborhoodContext::getCurrentParams() const
{
  return _levels[_currentLevel].parameters;
}

int NgdNeighborhoodContext::getRejectionTargetRank() const
{
  return _search->rejection.targetRank;
}

int NgdNeighborhoodContext::getRejectionMainVarIndex() const
{
  return _search->rejection.variable;
}

qint64 NgdNeighborhoodContext::getNSearches() const
{
  return _search->getNSearches();
}

qint64 NgdNeighborhoodContext::getNNearestSearches() const
{
  return _search->getNNearestSearches();
}
