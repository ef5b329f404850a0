#pragma once

#include "stats/private/NgcVarioAccumulator.h"
#include "stats/private/NgcVarioSamples.h"

#include <vector>

class NbcAProgress;
class NgmPairsSelectorDirection;

/// What is accumulated for the pairs of a search.
struct NgcVarioTask
{
  NgcVarioTerms terms;
  int nVariables;
  int nSets;  ///< 2 with Gaussian variables, which follow the raw ones
  bool cross;
  int filtering;  ///< 0 none, 1 equal codes only, other different codes only
  bool clouds;    ///< the pairs themselves, too

  int getNPairs() const { return cross ? nVariables * (nVariables + 1) / 2 : nVariables; }
  int getNSides() const { return int(terms.variogram) + int(terms.covariance); }
  /// Rank of the sums of a pair of variables among those of one direction.
  int rankOf(int set, bool isCova, int pair) const
  {
    const int side = isCova && terms.variogram ? 1 : 0;
    return (set * getNSides() + side) * getNPairs() + pair;
  }
  /// The same for the variables i <= j.
  int rankOf(int set, bool isCova, int i, int j) const
  {
    return rankOf(set, isCova, cross ? i * nVariables - i * (i - 1) / 2 + j - i : i);
  }
  int getNSums() const { return nSets * getNSides() * getNPairs(); }
};

/// The pairs of samples of a group of directions that are searched together. The unit of work is a
/// pair of blocks, or a row of them: the pairs of a block with itself and with those that follow.
class NgcVarioSearch
{
public:
  /// What one thread works with.
  class Workspace
  {
  public:
    explicit Workspace(const NgcVarioSearch &search);

  private:
    friend class NgcVarioSearch;

    int _n = 0;
    std::vector<int> _tails;
    std::vector<int> _heads;
    std::vector<double> _hx;
    std::vector<double> _hy;
    std::vector<double> _hz;
    std::vector<double> _distances;  // squared ones first
    std::vector<int> _proposed;      // then those kept
    std::vector<unsigned char> _isTaken;
    NgcVarioPairs _pairs;
    NgaVarioSumList *_sums = nullptr;
    std::vector<NgcVarioAccumulator> _accumulators;
  };

  NgcVarioSearch(const NgcVarioBlocks &blocks,
                 std::vector<const NgmPairsSelectorDirection *> directions,
                 const NgcVarioTask &task);

  /// The directions that are not offered the pairs that the direction before them has taken; one
  /// that was not offered a pair has not taken it. None by default.
  void setExclusive(std::vector<bool> isExclusive) { _isExclusive = std::move(isExclusive); }

  /// The clouds of the sums, without pairs, and the means of the variables of all sets.
  void setClouds(std::vector<NgmVariogramCloud> clouds, std::vector<double> means);

  int getNRows() const { return _blocks.getNBlocks(); }

  /// Sums without pairs: for each direction those of NgcVarioTask::rankOf().
  NgaVarioSumList makeSums() const;

  /// Adds the pairs of two blocks, which may be the same, to `sums`.
  void processPair(int first, int second, Workspace &workspace, NgaVarioSumList &sums) const;

  /// Adds the pairs of a row to `sums`. Returns early when `progress` must stop.
  void processRow(int row, Workspace &workspace, const NbcAProgress &progress,
                  NgaVarioSumList &sums) const;

private:
  static constexpr int CAPACITY = 1024;

  void _processBlocks(int first, int second, Workspace &workspace) const;
  void _addCandidates(int i, int first, int last, Workspace &workspace) const;
  void _processPairs(Workspace &workspace) const;
  void _flush(Workspace &workspace) const;
  static void _markTaken(Workspace &workspace);
  static int _leaveOutTaken(int nProposed, Workspace &workspace);
  void _filterCodes(Workspace &workspace) const;
  void _orient(Workspace &workspace) const;
  void _selectPairs(int rank, Workspace &workspace) const;
  void _accumulate(int direction, Workspace &workspace) const;
  void _addToCloud(bool isCova, const double *a, const double *b, double meanA, double meanB,
                   const NgcVarioPairs &pairs, NgmVariogramCloud &cloud) const;

  const NgcVarioBlocks &_blocks;
  std::vector<const NgmPairsSelectorDirection *> _directions;
  NgcVarioTask _task;
  double _squaredReach = 0.;
  std::vector<bool> _isExclusive;
  std::vector<NgmVariogramCloud> _clouds;
  std::vector<double> _means;
};
