#pragma once

#include "data/private/NgdSearchVolume.h"
#include "geos/data/NgdSortedData.h"
#include "geos/interpol/NgmNeighborhoodFaultSet.h"
#include "geos/interpol/NgmSearchPartition.h"
#include "geos/interpol/NgmTarget.h"

#include <vector>

class NbdAData;
class NbdAVariableNumeric;

/// Selects the samples of one target at one search level, by the rules of the parameters.
///
/// Samples are named by one number: the loaded ones by their rank, those of an additional input by
/// the number of loaded samples plus their position there. Candidates are taken in ascending order
/// of that number, and equal sorting distances keep it.
class NgdNeighborhoodSearch
{
public:
  /// The loaded samples. The flags hold one value per sample, variable by variable.
  struct Samples
  {
    int n = 0;
    int nDimensions = 1;
    const double *x = nullptr;
    const double *y = nullptr;
    const double *z = nullptr;
    int nVariables = 0;
    std::vector<unsigned char> usable;    ///< passes the test of variables
    std::vector<unsigned char> defined;   ///< variable v is defined in sample i: [v * n + i]; empty
                                          ///< for a single variable, of which `usable` tells it
    bool hasCodes = false;                ///< there is a code variable
    std::vector<int> codes;               ///< I32_FFFF without code
    std::vector<qint64> lines;            ///< I64_FFFF without line; empty unless needed
    const double *largeValues = nullptr;  ///< values compared to the thresholds of the caps
    const double *smallValues = nullptr;
    std::vector<double> largeCopy;  ///< the same where the samples hold no doubles
    std::vector<double> smallCopy;
  };

  /// Rejection around targets that are samples.
  struct Rejection
  {
    bool active = false;
    NgcERejectionMode mode = NgcERejectionMode::REJECTION_BY_TARGET;
    NgcERejectionAuxVarOption option = NgcERejectionAuxVarOption::AUX_VAR_KEEP_NOTHING;
    NgmSearchPartition partition;
    int variable = -1;
    int targetRank = -1;
  };

  /// Faults, and where the target stands among them.
  struct Faults
  {
    bool active = false;
    NgcEFaultsMode mode = NgcEFaultsMode::CALCULATE_INSIDE;
    NgmNeighborhoodFaultSet set;
    int targetPolygon = -1;
  };

  /// More samples, of which only the enabled ones exist.
  struct Additional
  {
    const NbdAData *data = nullptr;
    std::vector<const NbdAVariableNumeric *> variables;
    int maximum = -1;
    NgdSortedData index;
    std::vector<NbgVector3D> locations;
  };

  /// A selected sample; the sector is -1 for one selected by proximity.
  struct Selected
  {
    Selected(int sample_, int sector_, double squaredDistance_)
        : sample(sample_), sector(sector_), squaredDistance(squaredDistance_)
    {
    }

    int sample;
    int sector;
    double squaredDistance;
  };

  /// The index of the loaded samples; to be set before a search.
  void setIndex(const NgdSortedDataKdTree &tree) { _tree = &tree; }

  /// Selects. Failures leave no sample, except too many in the block.
  const NgcENeighborhoodErrorCode &run(const NgmNeighborhoodMoving &parameters,
                                       const NgdSearchVolume &volume, const NgmTarget &target);

  const std::vector<Selected> &getSelected() const { return _selected; }
  void clearSelected() { _selected.clear(); }

  /// The rejected variable of this sample is not to be used.
  bool isRejected(int sample) const
  {
    return !_rejectedFlags.empty() && sample < samples.n && _rejectedFlags[sample];
  }

  /// A variable of a sample is defined and, in the search that ran last, not rejected.
  bool isDefined(int sample, int variable) const;

  /// Whether the top (bottom) cap takes hold of a sample in the search that ran last.
  bool isCapped(int sample, bool top) const;

  /// Searches that the tree served with the nearest samples, and all of them.
  qint64 getNNearestSearches() const { return _nNearest; }
  qint64 getNSearches() const { return _nSearches; }

  Samples samples;
  Rejection rejection;
  Faults faults;
  Additional additional;

private:
  struct _Candidate
  {
    _Candidate() = default;
    _Candidate(double key_, double squaredDistance_, int sample_, int sector_)
        : key(key_), squaredDistance(squaredDistance_), sample(sample_), sector(sector_)
    {
    }

    double key = 0.;
    double squaredDistance = 0.;
    int sample = 0;
    int sector = 0;
  };

  struct _CodeCount
  {
    int code;
    int count;
  };

  enum _Verdict { OUTSIDE, DROPPED, KEPT, ALONE };

  static bool _isBefore(const _Candidate &a, const _Candidate &b)
  {
    return a.key < b.key || (a.key == b.key && a.sample < b.sample);
  }

  void _prepare();
  void _prepareRoad();
  const NgcENeighborhoodErrorCode &_parse();
  bool _collect();
  void _forgetCandidates();
  bool _collectNearest();
  bool _measureNearest(int wanted);
  bool _hasEnough() const;
  bool _collectAll();
  bool _collectAdditional();
  void _keepNearestAdditional(std::size_t first);
  _Verdict _measurePlain(int sample, const NbgVector3D &location);
  _Verdict _measureWithRules(int sample, const NbgVector3D &location);
  _Verdict _tryAroundTarget(int sample, const NbgVector3D &offset, const NbgVector3D &local);
  bool _surviveRejection(int sample, const NbgVector3D &location, double squaredDistance);
  bool _isRejectedByMode(int sample, const NbgVector3D &location, double squaredDistance) const;
  bool _isKeptByFaults(const NbgVector3D &location) const;
  bool _isRemovedByCaps(int sample, const NbgVector3D &local) const;
  bool _isCapped(int sample, const NbgVector3D &local, bool top) const;
  bool _isUsable(int sample) const;
  NbgVector3D _location(int sample) const;
  int _sectorOf(const NbgVector3D &local) const;
  void _offer(const NbgVector3D &local, double a, double e, int sample);
  void _offerToSector(const _Candidate &candidate);
  void _mergeSectors();
  void _sort();

  void _takeAll();
  void _takeForVariables();
  bool _markForVariable(int sector, int variable);
  void _takePerSector();
  void _takePass(bool testsOptimum);
  bool _passesGap(int sample) const;
  bool _passesOptimum(int sample) const;
  bool _passesTests(const _Candidate &candidate) const;
  bool _passesMaximumCodes(int sample) const;
  bool _hasCode(int sample) const;
  const _CodeCount *_findCode(int code) const;
  void _select(int sample, int sector, double squaredDistance);
  const NgcENeighborhoodErrorCode &_fail(const NgcENeighborhoodErrorCode &code);
  const NgcENeighborhoodErrorCode &_check(const NgcENeighborhoodErrorCode &parsed);
  bool _hasTooManyEmptySectors() const;
  int _longestEmptyRun(int first) const;

  const NgdSortedDataKdTree *_tree = nullptr;
  const NgmNeighborhoodMoving *_parameters = nullptr;
  const NgdSearchVolume *_volume = nullptr;
  const NgmTarget *_target = nullptr;
  const NgmABlock *_block = nullptr;
  NbgVector3D _center;

  // What the parameters say, once per search.
  int _nSectors = 1;  ///< halves included
  int _perSector = 1;
  bool _keysAreAnisotropic = false;
  bool _testsRejection = false;
  bool _testsFaults = false;
  bool _testsCodes = false;
  bool _removesByCaps = false;
  bool _looksAroundTarget = false;  ///< proximity or block rules
  bool _hasPlainRules = false;      ///< nothing but distance decides on a candidate
  bool _keysFollowFrame = false;    ///< sorting distances have the order of those in the index
  bool _takesNearest = false;       ///< the nearest samples may be enough
  int _fewestNearest = 1;           ///< how many of them are asked for at first, and at most
  int _mostNearest = 1;
  bool _keepsBestPerSector = false;  ///< the nearest candidates of each sector are enough
  bool _keepsAllThatFit = false;     ///< no rule asks for an order of candidates

  bool _hasNearest = false;  ///< candidates are the nearest that the index proposed
  NgdSortedDataKdTree::Proposals _proposals;
  QVector<int> _additionalPositions;
  std::vector<_Candidate> _candidates;
  std::vector<int> _bestCounts;
  int _nFullBest = 0;
  double _worstBest = 0.;
  int _nCandidates = 0;  ///< kept, those that their sector has no place for included
  std::vector<unsigned char> _taken;
  std::vector<unsigned char> _marked;
  std::vector<Selected> _selected;
  std::vector<int> _sectorCounts;
  std::vector<_CodeCount> _codeCounts;
  std::vector<unsigned char> _rejectedFlags;
  std::vector<int> _rejectedRanks;
  qint64 _nNearest = 0;
  qint64 _nSearches = 0;
};
