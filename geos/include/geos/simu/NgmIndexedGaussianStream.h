#pragma once

#include "geos/simu/NgmDistributionGaussian.h"

/// Standard Gaussian values by item number: an item has the same values in whatever order items are
/// asked for, without the cost of drawing all items before it.
///
/// Items come in blocks of 1000, each with a Gaussian distribution of its own seed; within a block
/// the values of the items before are skipped. All values of an item are meant to be read before
/// the next one (forward skips count whole items).
class NgmIndexedGaussianStream
{
public:
  using tSize = NgmRandomNumberGenerator::tSize;

  static constexpr qint64 BLOCK_SIZE = 1000;

  /// The base seed is what a generator of (seed, size) gives for nextNumber(k).
  NgmIndexedGaussianStream(qint64 nValuesPerItem, int k, quint64 seed, tSize size);

  /// The first value of an item, items counting from 1; when `continuing`, the next value of the
  /// item asked for last, whatever `item` is.
  double value(bool continuing, qint64 item);

  qint64 getNValuesPerItem() const { return _nValuesPerItem; }
  quint64 getBaseSeed() const { return _baseSeed; }

private:
  void _startBlock(qint64 block);

  NgmDistributionGaussian _gaussian;
  qint64 _nValuesPerItem;
  qint64 _block = -1;
  qint64 _position = -1;
  tSize _size;
  quint64 _baseSeed;
};
