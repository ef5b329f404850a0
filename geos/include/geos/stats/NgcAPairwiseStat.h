#pragma once

#include "geos/stats/NgcAStat.h"

#include <memory>

class NgdDataDoubleBuffer;
class NgdIBufferIterator;

/// Base of the calculators that loop over pairs of samples: workers share the pairs of buffers of
/// the input, each buffer with itself and with those that follow. Buffers carry coordinates and
/// sample numbers and are sorted along the axis of the largest extent.
///
/// The buffers of points are whole numbers of chunks of samples, and chunks do not depend on the
/// number of threads. Who hands in partial sums per pair of chunks gets the same bits with any
/// number of threads. With a memory budget below a chunk, and for other data sets, a buffer is a
/// chunk.
class NgcAPairwiseStat : public NgcAStat
{
public:
  /// With `registerRule` the role takes at least one variable, read as double.
  NgcAPairwiseStat(const QString &roleV, bool registerRule);
  ~NgcAPairwiseStat() override;

  /// The axis along which buffers are sorted: 0 X, 1 Y, 2 Z.
  int getSortedDimension() const { return _sortedDimension; }

  /// Samples per chunk, by rank in the data set; 0 when each buffer is a chunk.
  qint64 getChunkSize() const { return _chunkSize; }

  /// The next pair of sorted buffers, null at the end; the caller owns it. Thread-safe.
  NgdDataDoubleBuffer *getDoubleBuffer();

  /// Takes the sums of the pairs of two chunks. Thread-safe.
  void saveChunks(qint64 chunk1, qint64 chunk2, std::unique_ptr<NgaIAdditive> partial);

  /// To be called when the sums of a pair of buffers are handed in. Thread-safe.
  void finishDoubleBuffer();

protected:
  void _initBufferManager() override;
  void _initCalculatorCounter() override;
  void _createBufferIterator() override;

  /// Sorts a buffer along the sorted dimension; stable.
  void _sortBuffer(NbdAData &data) const;

private:
  std::unique_ptr<NbdAData> _load(NgdIBufferIterator &iterator, int &rank) const;
  bool _moveFirst();
  std::unique_ptr<NbdAData> _nextSecond();

  int _sortedDimension = 0;
  qint64 _chunkSize = 0;
  qint64 _nPairs = 0;
  // Where the walk stands; guarded by the calculator's mutex.
  std::unique_ptr<NbdAData> _first;
  int _firstRank = -1;
  std::unique_ptr<NgdIBufferIterator> _secondIterator;
  int _secondRank = -1;
};
