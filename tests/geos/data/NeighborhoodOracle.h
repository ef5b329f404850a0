#pragma once

#include "basic/geom/NbgGeomPolylineSet.h"
#include "geos/NgcEnumGlobal.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/interpol/NgmNeighborhoodMoving.h"
#include "geos/interpol/NgmNeighborhoodNestedParam.h"
#include "geos/interpol/NgmSearchPartition.h"
#include "support/Random.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <vector>

/// The rules of a neighborhood search, straight from their definition and without any index, for
/// seeded random configurations.
namespace oracle {

inline constexpr double undefined = NbbGlobal::D_FFFF;

/// A fault: a line of two vertices, or the rectangle between them.
struct Fault
{
  NbgVector3D a;
  NbgVector3D b;
  bool isPolygon;

  QVector<NbgVector3D> vertices() const
  {
    if (!isPolygon)
      return {a, b};
    return {a, NbgVector3D(b.x(), a.y()), b, NbgVector3D(a.x(), b.y())};
  }
  bool holds(const NbgVector3D &p) const
  {
    return isPolygon && p.x() >= std::min(a.x(), b.x()) && p.x() <= std::max(a.x(), b.x()) &&
           p.y() >= std::min(a.y(), b.y()) && p.y() <= std::max(a.y(), b.y());
  }
};

struct Rejection
{
  NgcERejectionMode mode = NgcERejectionMode::REJECTION_BY_TARGET;
  NgcERejectionAuxVarOption option = NgcERejectionAuxVarOption::AUX_VAR_KEEP_NOTHING;
  NgmSearchPartition partition;
  int variable = 0;
};

/// What a search is asked and what the samples are.
struct Configuration
{
  explicit Configuration(std::uint64_t seed);

  int nDimensions = 2;
  std::vector<NbgVector3D> locations;
  std::vector<std::vector<double>> values;  ///< per variable
  std::vector<double> codes;
  std::vector<int> lines;
  NgmNeighborhoodMoving parameters;
  std::vector<NgmNeighborhoodNestedParam> levels;
  std::optional<NgmBlock> block;
  std::optional<Rejection> rejection;
  std::vector<NbgVector3D> moreLocations;
  std::vector<std::vector<double>> moreValues;
  std::vector<bool> moreEnabled;
  int moreMaximum = -1;
  std::vector<Fault> faults;
  NgcEFaultsMode faultsMode = NgcEFaultsMode::CALCULATE_INSIDE;
  bool hasCollocated = false;
  bool forcesCollocated = false;
  std::vector<double> factors;  ///< per target: of the radii, with the local ellipsoid
  std::vector<double> factorsOfAxes[3];
  std::vector<double> angles[3];

  static constexpr int nTargets = 5;
  std::vector<NbgVector3D> targets;
  std::vector<int> targetRanks;  ///< of targets that are samples, else -1
  std::vector<double> targetValues;

private:
  void _drawSamples();
  void _drawVolume();
  void _drawRules();
  void _drawExtras();
  void _drawTargets();
  NbgVector3D _drawLocation(bool onGrid);
  double _uniform() { return testsupport::uniform(_seed, _counter++); }
  double _uniform(double low, double high) { return low + (high - low) * _uniform(); }
  int _draw(int n) { return testsupport::uniformInt(_seed, _counter++, n); }
  bool _oneIn(int n) { return _draw(n) == 0; }

  std::uint64_t _seed;
  std::uint64_t _counter = 0;
};

struct Selected
{
  int sample;
  int sector;
  double squaredDistance;
};

struct Answer
{
  NgcENeighborhoodErrorCode outcome = NgcENeighborhoodErrorCode::NEIGH_NO_SAMPLE;
  int level = -1;
  std::vector<Selected> selected;
  std::vector<std::vector<double>> values;  ///< of the neighbors, per variable
  int nCodes = 0;
  std::vector<int> nCodesOf;  ///< where a variable is defined
  bool hasCollocatedTarget = false;
};

/// The search of one target.
class Search
{
public:
  Search(const Configuration &configuration, int target)
      : _c(configuration), _index(target), _target(configuration.targets[target])
  {
  }

  Answer run()
  {
    Answer answer;
    _polygon = -1;
    if (_c.faultsMode != NgcEFaultsMode::IGNORE_POYGONAL_STATUS) {
      for (int i = int(_c.faults.size()) - 1; i >= 0; --i)
        _polygon = _c.faults[i].holds(_target) ? i : _polygon;
    }
    if (_polygon >= 0 && _c.faultsMode == NgcEFaultsMode::DO_NOT_CALCULATE_INSIDE)
      return answer;

    for (int level = 0; level <= int(_c.levels.size()); ++level) {
      _setLevel(level);
      answer.outcome = _select();
      const std::string key = answer.outcome.getKey();
      if (key == "NEIGH_SUCCESS" || key == "NEIGH_MAX_IN_BLOCK" || key == "NEIGH_PROXIMITY" ||
          (key == "NEIGH_BLOCK_ONLY" && level == int(_c.levels.size()))) {
        answer.level = level;
        answer.selected = _selected;
        _countCodes(answer);
        _fillValues(answer, key == "NEIGH_SUCCESS" || key == "NEIGH_PROXIMITY");
        return answer;
      }
    }
    return answer;
  }

private:
  struct Candidate
  {
    int id;
    double key;
    double squaredDistance;
    int sector;
    bool taken = false;
    bool marked = false;
  };

  int _nMain() const { return int(_c.locations.size()); }
  bool _isMain(int id) const { return id < _nMain(); }
  NbgVector3D _location(int id) const
  {
    return _isMain(id) ? _c.locations[id] : _c.moreLocations[id - _nMain()];
  }
  double _value(int id, int v) const
  {
    if (!_isMain(id))
      return _c.moreValues[v][id - _nMain()];
    return _lost.count(id) && v == _c.rejection->variable ? undefined : _c.values[v][id];
  }
  bool _defined(int id, int v) const { return NbbGlobal::isDefined(_value(id, v)); }

  void _setLevel(int level)
  {
    _p = _c.parameters;
    NbgVector3D size = _p.getEllipseSize();
    for (int k = 0; k < level; ++k) {
      const NgmNeighborhoodNestedParam &change = _c.levels[k];
      if (change.factor.isDefined())
        size = size.componentsProduct(change.factor);
      if (change.minimum >= 0)
        _p.setRuleMinimumNumber(change.minimum > 0, change.minimum);
      if (change.maximumPerSector >= 0)
        _p.setSectors(_p.getSectorsNumber(), change.maximumPerSector, _p.isSplitSectors());
    }
    const auto factorOf = [this](const std::vector<double> &factors) {
      if (factors.empty())
        return 1.;
      return NbbGlobal::isDefined(factors[_index]) ? factors[_index] : 0.;
    };
    size = factorOf(_c.factors) * size;
    for (int axis = 0; axis < 3; ++axis)
      size[axis] = size[axis] * factorOf(_c.factorsOfAxes[axis]);
    NbgVector3D angles;
    for (int i = 0; i < 3 && !_c.angles[i].empty(); ++i)
      angles[i] = _c.angles[i][_index];
    if (!_c.angles[0].empty() && angles.isDefined())
      _p.setEllipseRotation(NbgRotation(angles.x(), angles.y(), angles.z()));
    _p.setEllipseSize(size);
  }

  NgcENeighborhoodErrorCode _select()
  {
    using Code = NgcENeighborhoodErrorCode;
    _selected.clear();
    _lost.clear();
    _candidates.clear();
    if (_gather())
      return Code::NEIGH_PROXIMITY;
    if (_p.isRuleMaximumPerBlock() && int(_selected.size()) >= _p.getMaximumPerBlock())
      return Code::NEIGH_MAX_IN_BLOCK;
    const bool blockOnly = _candidates.empty();
    if (blockOnly && _selected.empty())
      return Code::NEIGH_NO_SAMPLE;

    if (!blockOnly) {
      const bool needsOrder = _p.isRuleHeterotopicSearch() || _p.isRuleMinimumGap() ||
                              _p.isRuleMaximumDistanceWithoutAnySample() ||
                              _p.isRuleMaximumEmptySectors() || _p.isRuleCutLarge() ||
                              _p.isRuleCutSmall() || _p.isRulePerCode();
      const bool fits =
          !needsOrder && _p.getSplittedSectorsNumber() < 2 &&
          int(_selected.size() + _candidates.size()) <= _p.getMaximumNumberPerSector();
      if (fits) {
        for (const Candidate &candidate : _candidates)
          _selected.push_back({candidate.id, 0, candidate.squaredDistance});
      } else {
        std::stable_sort(_candidates.begin(), _candidates.end(),
                         [](const Candidate &a, const Candidate &b) { return a.key < b.key; });
        if (_p.isRuleHeterotopicSearch())
          _takeForVariables();
        _takePass(true);
        _takePass(false);
        if (_p.isRuleMaximumEmptySectors() && _hasTooManyEmptySectors())
          return Code::NEIGH_EMPTY_SECT;
      }
    }
    const double limit = _p.getMaximumDistanceWithoutAnySample();
    if (_p.isRuleMaximumDistanceWithoutAnySample() &&
        std::none_of(_selected.begin(), _selected.end(),
                     [=](const Selected &s) { return s.squaredDistance < limit * limit; }))
      return Code::NEIGH_TOO_FAR;
    if (int(_selected.size()) < _p.getMinimumNumber())
      return Code::NEIGH_NOT_ENOUGH;
    if (_p.isRuleMinimumCodeNb() && int(_selectedCodes().size()) < _p.getMinimumCodeNb())
      return Code::NEIGH_NOT_ENOUGH_CODES;
    return blockOnly ? Code::NEIGH_BLOCK_ONLY : Code::NEIGH_SUCCESS;
  }

  /// Candidates and what is selected at once; true when that is one by proximity.
  bool _gather()
  {
    const NbgVector3D size = _p.getEllipseSize();
    const bool fromBlock =
        _p.getMovingNeighborhoodMode() == NgcEMovNeighMode::FROM_BLOCK && _c.block;
    const double radius = fromBlock ? 0. : std::max({size.x(), size.y(), size.z()});
    const NbgVector3D half = fromBlock ? 0.5 * _c.block->getSize() : size;
    const NbgRotation boxRotation = fromBlock ? _c.block->getRotation() : _p.getEllipseRotation();

    bool isNull = false;
    for (int axis = 0; axis < _c.nDimensions; ++axis)
      isNull = isNull || size[axis] == 0.;

    std::vector<Candidate> more;
    for (int id = 0; id < _nMain() + int(_c.moreLocations.size()); ++id) {
      if (!_isMain(id) && !_c.moreEnabled[id - _nMain()])
        continue;
      const NbgVector3D d = _location(id) - _target;
      const NbgVector3D inBox = boxRotation.worldToLocal(d);
      bool isInBox = true;
      for (int axis = 0; axis < _c.nDimensions; ++axis)
        isInBox = isInBox && std::abs(inBox[axis]) <= half[axis];
      if (!isInBox && !_isMain(id))
        continue;
      if (_isRejected(id, d.squaredNorm()) || !_isSeen(id))
        continue;
      int nDefined = 0;
      for (int v = 0; v < int(_c.values.size()); ++v)
        nDefined += _defined(id, v);
      if (nDefined == 0 || (_p.isRuleIsotopicSearch() && nDefined < int(_c.values.size())))
        continue;

      const NbgVector3D l = _p.getEllipseRotation().worldToLocal(d);
      NbgVector3D q;
      for (int axis = 0; axis < _c.nDimensions && radius > 0.; ++axis)
        q[axis] = l[axis] * (radius / size[axis]);
      double a = q.x() * q.x() + q.y() * q.y() + q.z() * q.z();
      if (_p.isRectangular()) {
        const double m = std::max({std::abs(q.x()), std::abs(q.y()), std::abs(q.z())});
        a = m * m;
      }
      if (_isCapped(id, true, NgcECutoffMode::CUTOFF_REMOVE) ||
          _isCapped(id, false, NgcECutoffMode::CUTOFF_REMOVE))
        continue;
      const double e = d.squaredNorm();
      const NbgVector3D b = _c.block ? _c.block->getRotation().worldToLocal(d) : d;
      if (isInBox && _p.isRuleProximity() && _isWithin(b, _p.getProximitySize())) {
        _selected = {{id, -1, e}};
        return true;
      }
      if (isInBox && _c.block && _p.isRuleBlockKeepAll() &&
          _isWithin(b, 0.5 * _c.block->getSize())) {
        _selected.push_back({id, _sector(l, q), e});
        continue;
      }
      if (a < radius * radius && !isNull) {
        const Candidate candidate = {id, _p.isRuleAnisotropicDistances() ? a : e, e, _sector(l, q)};
        (_isMain(id) ? _candidates : more).push_back(candidate);
      }
    }
    if (_c.moreMaximum >= 0 && int(more.size()) > _c.moreMaximum) {
      std::stable_sort(more.begin(), more.end(),
                       [](const Candidate &a, const Candidate &b) { return a.key < b.key; });
      more.resize(_c.moreMaximum);
      std::sort(more.begin(), more.end(),
                [](const Candidate &a, const Candidate &b) { return a.id < b.id; });
    }
    _candidates.insert(_candidates.end(), more.begin(), more.end());
    return false;
  }

  static bool _isWithin(const NbgVector3D &v, const NbgVector3D &half)
  {
    return std::abs(v.x()) <= half.x() && std::abs(v.y()) <= half.y() &&
           std::abs(v.z()) <= half.z();
  }

  bool _isRejected(int id, double e)
  {
    const int t = _c.targetRanks[_index];
    if (!_c.rejection || t < 0)
      return false;
    const NgcERejectionMode &mode = _c.rejection->mode;
    bool rejected = id == t;
    if (mode == NgcERejectionMode::REJECTION_BY_PARTITION) {
      NgmSearchPartition partition = _c.rejection->partition;
      partition.setTarget(NgmTarget(_target));
      rejected = rejected || partition.isIncluded(_location(id));
    } else {
      rejected = rejected || e < 1e-6;
    }
    if (mode == NgcERejectionMode::REJECTION_BY_LINE)
      rejected = rejected || _c.lines[id] == _c.lines[t];
    if (!rejected)
      return false;
    const NgcERejectionAuxVarOption &option = _c.rejection->option;
    if (option == NgcERejectionAuxVarOption::AUX_VAR_KEEP_ALL ||
        (option == NgcERejectionAuxVarOption::AUX_VAR_KEEP_TARGET && id == t)) {
      _lost.insert(id);
      return false;
    }
    return true;
  }

  // Faults. The long double products are exact for the coordinates that touch a fault, which are
  // small integers.

  static int _side(const NbgVector3D &a, const NbgVector3D &b, const NbgVector3D &c)
  {
    using Long = long double;
    const Long area = (Long(b.x()) - a.x()) * (Long(c.y()) - a.y()) -
                      (Long(b.y()) - a.y()) * (Long(c.x()) - a.x());
    return area > 0. ? 1 : (area < 0. ? -1 : 0);
  }
  static bool _isBetween(const NbgVector3D &p, const NbgVector3D &a, const NbgVector3D &b)
  {
    return _side(a, b, p) == 0 && p.x() >= std::min(a.x(), b.x()) &&
           p.x() <= std::max(a.x(), b.x()) && p.y() >= std::min(a.y(), b.y()) &&
           p.y() <= std::max(a.y(), b.y());
  }
  static bool _meet(const NbgVector3D &a, const NbgVector3D &b, const NbgVector3D &c,
                    const NbgVector3D &d)
  {
    return (_side(a, b, c) * _side(a, b, d) < 0 && _side(c, d, a) * _side(c, d, b) < 0) ||
           _isBetween(a, c, d) || _isBetween(b, c, d) || _isBetween(c, a, b) || _isBetween(d, a, b);
  }

  bool _isInSight(int id, int excluded) const
  {
    for (int i = 0; i < int(_c.faults.size()); ++i) {
      const QVector<NbgVector3D> vertices = _c.faults[i].vertices();
      for (int k = 0; k < vertices.size() && i != excluded; ++k) {
        if (_meet(_target, _location(id), vertices[k], vertices[(k + 1) % vertices.size()]))
          return false;
      }
    }
    return true;
  }

  bool _isSeen(int id) const
  {
    if (_polygon < 0)
      return _isInSight(id, -1);
    if (_c.faultsMode == NgcEFaultsMode::CALCULATE_INSIDE &&
        std::none_of(_c.faults.begin(), _c.faults.end(),
                     [&](const Fault &fault) { return fault.holds(_location(id)); }))
      return false;
    return _isInSight(id, _polygon);
  }

  bool _isCapped(int id, bool top, const NgcECutoffMode &mode) const
  {
    if (!(top ? _p.isRuleCutLarge() : _p.isRuleCutSmall()) || !_isMain(id) ||
        (top ? _p.getCutLargeMode() : _p.getCutSmallMode()) != mode)
      return false;
    const double value = _c.values[0][id];
    if (!NbbGlobal::isDefined(value) ||
        (top ? value <= _p.getCutLargeThreshold() : value >= _p.getCutSmallThreshold()))
      return false;
    const NbgVector3D radii = top ? _p.getCutLargeDistance() : _p.getCutSmallDistance();
    const NbgVector3D l = _p.getEllipseRotation().worldToLocal(_location(id) - _target);
    double sum = 0.;
    for (int axis = 0; axis < 3; ++axis) {
      const double ratio = l[axis] * (radii[axis] == 0. ? undefined : 1. / radii[axis]);
      sum += ratio * ratio;
    }
    return (radii.x() == 0. && radii.y() == 0. && radii.z() == 0.) || sum >= 1.;
  }

  int _sector(const NbgVector3D &l, const NbgVector3D &q) const
  {
    const int n = _p.getSectorsNumber();
    int sector = 0;
    if (n > 1 && (l.x() != 0. || l.y() != 0.)) {
      double angle = std::atan2(l.y(), l.x());
      if (angle < 0.)
        angle += 6.283185307179586;
      sector = int(angle * n / 6.283185307179586);
      if (sector >= n)
        sector = 0;
    }
    return _p.isSplitSectors() && !(q.z() >= 0.) ? sector + n : sector;
  }

  int _code(int id) const
  {
    return _isMain(id) && NbbGlobal::isDefined(_c.codes[id]) ? int(std::lround(_c.codes[id])) : -99;
  }
  std::map<int, int> _selectedCodes() const
  {
    std::map<int, int> counts;
    for (const Selected &s : _selected) {
      if (_code(s.sample) != -99)
        ++counts[_code(s.sample)];
    }
    return counts;
  }

  bool _passes(int id, bool testsOptimum) const
  {
    for (const Selected &s : _selected) {
      if (_p.isRuleMinimumGap() && (_location(s.sample) - _location(id)).squaredNorm() <
                                       _p.getMinimumGap() * _p.getMinimumGap())
        return false;
    }
    const int code = _code(id);
    if (code == -99)
      return true;
    const std::map<int, int> counts = _selectedCodes();
    const auto known = counts.find(code);
    if (known == counts.end())
      return !_p.isRuleMaximumCodeNb() || int(counts.size()) < _p.getMaximumCodeNb();
    return (!_p.isRuleMaximumPerCode() || known->second < _p.getMaximumPerCode()) &&
           (!testsOptimum || !_p.isRuleOptimumPerCode() || known->second < _p.getOptimumPerCode());
  }

  int _count(int sector) const
  {
    return int(std::count_if(_selected.begin(), _selected.end(),
                             [=](const Selected &s) { return s.sector == sector; }));
  }

  void _takeForVariables()
  {
    for (int sector = 0; sector < _p.getSplittedSectorsNumber(); ++sector) {
      for (int v = 0; v < int(_c.values.size()); ++v) {
        if (std::any_of(_selected.begin(), _selected.end(), [&](const Selected &s) {
              return s.sector == sector && _defined(s.sample, v);
            }))
          continue;
        for (Candidate &candidate : _candidates) {
          if (!candidate.taken && candidate.sector == sector && _defined(candidate.id, v) &&
              _passes(candidate.id, false)) {
            candidate.marked = true;
            break;
          }
        }
      }
      for (Candidate &candidate : _candidates) {
        if (candidate.marked && !candidate.taken) {
          candidate.taken = true;
          _selected.push_back({candidate.id, sector, candidate.squaredDistance});
        }
      }
    }
  }

  void _takePass(bool testsOptimum)
  {
    for (Candidate &candidate : _candidates) {
      if (_p.isRuleMaximumNumber() && int(_selected.size()) >= _p.getMaximumNumber())
        return;
      if (candidate.taken || _count(candidate.sector) >= _p.getMaximumNumberPerSector() ||
          !_passes(candidate.id, testsOptimum))
        continue;
      candidate.taken = true;
      _selected.push_back({candidate.id, candidate.sector, candidate.squaredDistance});
    }
  }

  bool _hasTooManyEmptySectors() const
  {
    const int n = _p.getSectorsNumber();
    int nEmpty = 0;
    int longest = 0;
    for (int first = 0; first < _p.getSplittedSectorsNumber(); first += n) {
      for (int start = 0; start < n; ++start) {
        nEmpty += _count(first + start) == 0;
        int run = 0;
        while (run < n && _count(first + (start + run) % n) == 0)
          ++run;
        longest = std::max(longest, run);
      }
    }
    const bool consecutive = _p.isRuleMaximumEmptySectorsConsecutive();
    return (consecutive ? longest : nEmpty) > _p.getMaximumEmptySectors();
  }

  void _countCodes(Answer &answer) const
  {
    answer.nCodes = int(_selectedCodes().size());
    for (int v = 0; v < int(_c.values.size()); ++v) {
      std::set<int> codes;
      for (const Selected &s : _selected) {
        if (_code(s.sample) != -99 && _defined(s.sample, v))
          codes.insert(_code(s.sample));
      }
      answer.nCodesOf.push_back(int(codes.size()));
    }
  }

  void _fillValues(Answer &answer, bool withCaps) const
  {
    answer.values.resize(_c.values.size());
    bool isAtTarget = false;
    for (const Selected &s : answer.selected) {
      isAtTarget = isAtTarget || s.squaredDistance <= 1e-6;
      for (int v = 0; v < int(_c.values.size()); ++v) {
        double value = _value(s.sample, v);
        for (const bool top : {true, false}) {
          if (v != 0 || !withCaps || !NbbGlobal::isDefined(value))
            continue;
          if (_isCapped(s.sample, top, NgcECutoffMode::CUTOFF_REPLACE))
            value = top ? _p.getCutLargeThreshold() : _p.getCutSmallThreshold();
          if (_isCapped(s.sample, top, NgcECutoffMode::CUTOFF_IGNORE))
            value = undefined;
        }
        answer.values[v].push_back(value);
      }
    }
    answer.hasCollocatedTarget = _c.forcesCollocated || (_c.hasCollocated && !isAtTarget);
    if (!answer.hasCollocatedTarget)
      return;
    for (int v = 0; v < int(_c.values.size()); ++v)
      answer.values[v].push_back(v == 0 && _c.hasCollocated ? _c.targetValues[_index] : undefined);
  }

  const Configuration &_c;
  int _index;
  NbgVector3D _target;
  int _polygon = -1;
  NgmNeighborhoodMoving _p;
  std::vector<Selected> _selected;
  std::vector<Candidate> _candidates;
  std::set<int> _lost;  ///< samples that lose the rejected variable
};

inline Configuration::Configuration(std::uint64_t seed) : _seed(seed)
{
  nDimensions = 1 + _draw(3);
  _drawSamples();
  _drawVolume();
  _drawRules();
  _drawExtras();
  _drawTargets();
}

inline NbgVector3D Configuration::_drawLocation(bool onGrid)
{
  const NbgVector3D any =
      onGrid ? NbgVector3D(10. * _draw(12), 10. * _draw(12), 10. * _draw(5))
             : NbgVector3D(_uniform(0., 120.), _uniform(0., 120.), _uniform(0., 50.));
  return NbgVector3D(any.x(), nDimensions > 1 ? any.y() : 0., nDimensions > 2 ? any.z() : 0.);
}

inline void Configuration::_drawSamples()
{
  const int n = _oneIn(25) ? _draw(3) : 1 + _draw(_draw(2) ? 200 : 20);
  const bool onGrid = _oneIn(3);  // ties
  const int nVariables = 1 + (_oneIn(2) ? _draw(3) : 0);
  values.resize(nVariables);
  for (int i = 0; i < n; ++i) {
    NbgVector3D location = _drawLocation(onGrid);
    if (i > 0 && _oneIn(10))
      location = locations[_draw(i)];  // duplicates
    locations.push_back(location);
    for (std::vector<double> &column : values)
      column.push_back(_oneIn(nVariables > 1 ? 3 : 6) ? undefined : _uniform());
    codes.push_back(_oneIn(6) ? undefined : _draw(5) - 1.);
    lines.push_back(_draw(4));
  }
}

inline void Configuration::_drawVolume()
{
  const double radius = 10. * (1 + _draw(20));
  parameters.setEllipseSize(
      _draw(2) ? NbgVector3D(radius, radius, radius)
               : NbgVector3D(10. * (1 + _draw(12)), 10. * (1 + _draw(12)), 5. * (1 + _draw(8))));
  if (_draw(2))
    parameters.setEllipseRotation(nDimensions == 3
                                      ? NbgRotation(15. * _draw(24), 15. * _draw(6), 15. * _draw(6))
                                      : NbgRotation(15. * _draw(24), 0., 0.));
  parameters.setIsRectangular(_oneIn(10));
  parameters.setRuleAnisotropicDistances(_draw(2) == 0);
  const int nSectors = _draw(2) ? 1 : 1 + _draw(8);
  const int perSector = _oneIn(8) ? 300 : 1 + _draw(_oneIn(3) ? 2 : 12);
  parameters.setSectors(nSectors, perSector, nDimensions == 3 && _oneIn(3));
  const int capacity = parameters.getSplittedSectorsNumber() * perSector;
  parameters.setRuleMinimumNumber(true, _draw(std::min(8, capacity + 1)));
  parameters.setRuleMaximumNumber(_oneIn(3), 1 + _draw(20));

  if (_oneIn(3)) {
    for (int k = 1 + _draw(3); k > 0; --k) {
      const double factor = 1. + 0.5 * _draw(4);
      const NbgVector3D unequal(factor, 1. + 0.5 * _draw(4), 1. + 0.5 * _draw(4));
      levels.push_back({_oneIn(3) ? NbgVector3D::Undefined
                                  : (_draw(2) ? NbgVector3D(factor, factor, factor) : unequal),
                        _oneIn(2) ? _draw(std::min(5, nSectors)) : -1,
                        _oneIn(2) ? 8 + _draw(8) : -1, -1, QString()});
      if (levels.back().maximumPerSector >= 0 && levels.back().minimum < 0)
        levels.back().minimum = 1;
    }
  }
}

inline void Configuration::_drawRules()
{
  NgmNeighborhoodMoving &p = parameters;
  if (_oneIn(3))
    return;
  const auto box = [this](double most) {
    return NbgVector3D(_uniform(0., most), _uniform(0., most), _uniform(0., most));
  };
  const auto mode = [this] { return NgcECutoffMode::fromValue(_draw(3)); };
  p.setRuleHeterotopicSearch(_oneIn(5));
  p.setRuleIsotopicSearch(_oneIn(6));
  p.setRuleMinimumGap(_oneIn(5), _oneIn(2) ? 10. : _uniform(0., 20.));
  p.setRuleMaximumDistanceWithoutSample(_oneIn(5), _oneIn(5) ? 0. : _uniform(0., 40.));
  p.setRuleMaximumEmptySectors(_oneIn(4), _draw(4), _draw(2) == 0);
  p.setRuleCutLarge(_oneIn(5), mode(), _uniform(0.4, 1.), _oneIn(4) ? NbgVector3D() : box(60.));
  p.setRuleCutSmall(_oneIn(5), mode(), _uniform(0., 0.4), _oneIn(4) ? NbgVector3D() : box(60.));
  p.setRuleOptimumPerCode(_oneIn(6), 1 + _draw(3));
  p.setRuleMaximumPerCode(_oneIn(6), 3 + _draw(3));
  p.setRuleMinimumCodeNumber(_oneIn(6), _draw(4));
  p.setRuleMaximumCodeNumber(_oneIn(6), 3 + _draw(2));
  if (_oneIn(4)) {
    Rejection reject;
    reject.mode = NgcERejectionMode::fromValue(_draw(3));
    reject.option = NgcERejectionAuxVarOption::fromValue(_draw(3));
    reject.variable = _draw(int(values.size()));
    reject.partition.setShape(NgcESolidShape::fromValue(_draw(3)));
    if (reject.partition.getShape() == NgcESolidShape::SHAPE_CUBOID)
      reject.partition.setCuboidSize(box(40.));
    else if (reject.partition.getShape() == NgcESolidShape::SHAPE_ELLIPSOID)
      reject.partition.setEllipsoidSize(box(20.));
    else
      reject.partition.setEllipticCylinderSize(_uniform(0., 20.), _uniform(0., 20.), undefined);
    reject.partition.setRotation(NbgRotation(15. * _draw(24), 0., 0.));
    rejection = reject;
    return;
  }
  p.setRuleProximity(_oneIn(8), box(12.));
  if (_oneIn(4)) {
    block = NgmBlock(nDimensions == 3);
    block->setSize(NbgVector3D(10. * (1 + _draw(4)), 10. * (1 + _draw(4)), 10. * (1 + _draw(4))));
    block->setDiscretizationPointsNumber(NbgIntVector3D(1, 1, 1));
    block->setRotation(NbgRotation(15. * _draw(24), 0., 0.));
    p.setRuleKeepAllInBlock(_draw(3) > 0);
    p.setRuleMaximumPerBlock(p.isRuleBlockKeepAll() && _oneIn(3), 1 + _draw(6));
    if (_oneIn(4))
      p.setMovingNeighborhoodMode(NgcEMovNeighMode::FROM_BLOCK);
  }
}

inline void Configuration::_drawExtras()
{
  if (!rejection && _oneIn(6)) {
    const int n = 1 + _draw(60);
    moreMaximum = _draw(3) - 1 + _draw(4);
    moreValues.resize(values.size());
    for (int i = 0; i < n; ++i) {
      moreLocations.push_back(_drawLocation(_oneIn(2)));
      moreEnabled.push_back(_draw(3) > 0);
      for (std::vector<double> &column : moreValues)
        column.push_back(_oneIn(6) ? undefined : _uniform());
    }
  }
  if (nDimensions > 1 && _oneIn(5)) {
    faultsMode = NgcEFaultsMode::fromValue(_draw(4));
    for (int k = 1 + _draw(4); k > 0; --k)
      faults.push_back({NbgVector3D(5. * _draw(25), 5. * _draw(25)),
                        NbgVector3D(5. * _draw(25), 5. * _draw(25)), _draw(2) == 0});
  }
  hasCollocated = _oneIn(6);
  forcesCollocated = _oneIn(20);
}

inline void Configuration::_drawTargets()
{
  const bool isLocal = _oneIn(8);
  const bool isPerAxis = isLocal && _oneIn(2);
  const int nAngles = isLocal && nDimensions > 1 && _draw(2) ? (nDimensions > 2 ? 3 : 1) : 0;
  for (int k = 0; k < nTargets; ++k) {
    const int rank = !locations.empty() && (rejection ? _draw(5) > 0 : _oneIn(4))
                         ? _draw(int(locations.size()))
                         : -1;
    targetRanks.push_back(rank);
    targets.push_back(rank >= 0 ? locations[rank] : _drawLocation(_oneIn(2)));
    if (rank < 0 && _oneIn(10))
      targets.back() += NbgVector3D(500., 0., 0.);
    targetValues.push_back(_oneIn(5) ? undefined : _uniform());
    const auto drawFactor = [this] { return _oneIn(6) ? undefined : 0.5 + 0.5 * _draw(4); };
    if (isLocal && !isPerAxis)
      factors.push_back(drawFactor());
    for (int axis = 0; axis < 3 && isPerAxis; ++axis)
      factorsOfAxes[axis].push_back(drawFactor());
    for (int i = 0; i < nAngles; ++i)
      angles[i].push_back(_oneIn(8) ? undefined : 15. * _draw(24));
  }
}

}  // namespace oracle
