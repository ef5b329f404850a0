#pragma once

#include "basic/geom/NbgRotation.h"

#include <QtGlobal>

#include <vector>

/// The samples of an experimental variogram, one array per field. Undefined values are not a
/// number.
struct NgcVarioSamples
{
  std::vector<double> x;
  std::vector<double> y;
  std::vector<double> z;
  std::vector<std::vector<double>> values;  ///< one array per variable
  std::vector<double> weights;              ///< empty without weights
  std::vector<int> codes;                   ///< empty without filter
  std::vector<qint64> numbers;              ///< sample numbers; may be empty

  int count() const { return int(x.size()); }

  /// The samples in the given order; all of them or some.
  NgcVarioSamples ordered(const std::vector<int> &order) const;
};

/// The samples of a search in blocks. Within a block they ascend along an axis, so that the
/// neighbors of a sample in a block are among consecutive ones, and no pair within the bands is
/// missed.
class NgcVarioBlocks
{
public:
  /// Largest absolute component of a pair along each axis of `frame`.
  struct Bands
  {
    double band[3];
  };

  struct Block
  {
    int first;
    int last;  ///< one behind
    double lower;
    double upper;  ///< of the coordinate across the strips
  };

  /// Blocks are strips across the axis along which the search is shortest against the extent of
  /// the samples; within a block samples follow the next such axis. `sortingAxis` gives the sense
  /// of pairs: from the sample with the lower coordinate along it.
  NgcVarioBlocks(const NgcVarioSamples &samples, const NbgRotation &frame, const Bands &bands,
                 int sortingAxis, int maximumCount);

  /// The given blocks of samples, whose coordinates `along` ascend in each block. Pairs go up along
  /// it, by sample numbers for equal coordinates.
  NgcVarioBlocks(NgcVarioSamples samples, std::vector<Block> blocks, std::vector<double> along,
                 double band);

  const NgcVarioSamples &getSamples() const { return _samples; }
  int getNBlocks() const { return int(_blocks.size()); }
  const Block &getBlock(int i) const { return _blocks[i]; }

  /// Whether a block that follows may hold neighbors of a sample of `block`.
  bool isWithinReach(const Block &block, const Block &next) const
  {
    return next.lower - block.upper <= _acrossBand;
  }

  /// Coordinates along the strips, ascending in each block.
  const double *getAlong() const { return _along.data(); }
  double getAlongBand() const { return _alongBand; }

  /// Whether the pair (i, j) goes from i to j: along the sorting axis, by order for equal
  /// coordinates.
  bool isForward(int i, int j) const
  {
    return _sorting[i] < _sorting[j] || (_sorting[i] == _sorting[j] && _ranks[i] < _ranks[j]);
  }

private:
  NgcVarioSamples _samples;
  std::vector<Block> _blocks;
  std::vector<double> _along;
  std::vector<double> _sorting;
  std::vector<int> _ranks;
  double _acrossBand = 0.;
  double _alongBand = 0.;
};
