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

  int getNPairs() const { return cross ? nVariables * (nVariables + 1) / 2 : nVariables; }
  int getNSides() const { return int(terms.variogram) + int(terms.covariance); }
  /// Rank of the sums of a pair of variables among those of one direction.
  int rankOf(int set, bool isCova, int pair) const
  {
    const int side = isCova && terms.variogram ? 1 : 0;
    return (set * getNSides() + side) * getNPairs() + pair;
  }
  int getNSums() const { return nSets * getNSides() * getNPairs(); }
};

/// The pairs of samples of a group of directions that are searched together. Rows of blocks are the
/// units of work: a row holds the pairs of a block with itself and with those that follow.
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
    std::vector<int> _proposed;
    NgcVarioPairs _pairs;
    std::vector<NgcVarioAccumulator> _accumulators;
  };

  NgcVarioSearch(const NgcVarioBlocks &blocks,
                 std::vector<const NgmPairsSelectorDirection *> directions,
                 const NgcVarioTask &task);

  int getNRows() const { return _blocks.getNBlocks(); }

  /// Sums without pairs: for each direction those of NgcVarioTask::rankOf().
  NgaVarioSumList makeSums() const;

  /// Adds the pairs of a row to `sums`. Returns early when `progress` must stop.
  void processRow(int row, Workspace &workspace, const NbcAProgress &progress,
                  NgaVarioSumList &sums) const;

private:
  static constexpr int CAPACITY = 1024;

  void _processBlocks(int first, int second, Workspace &workspace) const;
  void _addCandidates(int i, int first, int last, Workspace &workspace) const;
  void _processPairs(Workspace &workspace) const;
  void _filterCodes(Workspace &workspace) const;
  void _orient(Workspace &workspace) const;
  void _selectPairs(const NgmPairsSelectorDirection &direction, Workspace &workspace) const;
  void _accumulate(int direction, Workspace &workspace) const;

  const NgcVarioBlocks &_blocks;
  std::vector<const NgmPairsSelectorDirection *> _directions;
  NgcVarioTask _task;
  double _squaredReach = 0.;
};
