#pragma once

#include "basic/data/Nbd.h"
#include "basic/interval/NbiIntervalIntSmall.h"

#include <QtGlobal>

class NgdADataSet;
class NgdIBufferIterator;

/// Decides how a data set is cut into buffers, so that the buffers of all workers fit in a memory
/// budget, and makes the iterator that hands them out.
///
/// Made by a data set after its variables are open, sized once, then asked for iterators. When
/// macros are processed by piece, every cut is visited once per loop index.
class NgdABufferManager
{
public:
  explicit NgdABufferManager(const NgdADataSet &dataSet);
  virtual ~NgdABufferManager();
  NgdABufferManager(const NgdABufferManager &) = delete;
  NgdABufferManager &operator=(const NgdABufferManager &) = delete;

  virtual int getNSamplesPerBuffer() const = 0;

  /// A new iterator; the caller owns it.
  virtual NgdIBufferIterator *createBufferIterator() const = 0;

  /// Sizes buffers for `nThreads` workers within `maxMemory` bytes, about `nPreferred` of them. A
  /// preference of 1 asks for everything in one buffer.
  void tuneBufferSize(qint64 maxMemory, int nThreads, int nPreferred);

  /// Sizes buffers to about that many bytes.
  void setBufferSize(qint64 bytes);

  void setNSamplesPerBuffer(int nSamples);

  /// Bytes per sample by which buffers are sized; those of the data set by default.
  int getSampleSize() const { return _sampleSize; }
  void setSampleSize(int bytes) { _sampleSize = bytes; }

  /// How many buffers an iterator hands out, loop indices included.
  int getNBuffers() const { return _nBuffers; }

  Nbd::ELoopPolicy getIndicesLoopPolicy() const { return _indicesLoopPolicy; }
  void setIndicesLoopPolicy(Nbd::ELoopPolicy policy) { _indicesLoopPolicy = policy; }

  /// Ranks of the loop indices that the iterators visit: those set, or rank 0 without a loop.
  NbiIntervalIntSmall getVisitedLoopRanks() const;

  /// Ranks of the loop indices to visit when there is a loop.
  const NbiIntervalIntSmall &getLoopIndices() const { return _loopIndices; }
  void setLoopIndices(const NbiIntervalIntSmall &indices) { _loopIndices = indices; }

  bool getNeedCoordinates() const { return _needCoordinates; }
  void setNeedCoordinates(bool need) { _needCoordinates = need; }
  bool getNeedSampleNumber() const { return _needSampleNumber; }
  void setNeedSampleNumber(bool need) { _needSampleNumber = need; }

protected:
  virtual void _tuneBufferSize(qint64 maxMemory, int nThreads, int nPreferred) = 0;
  virtual void _setBufferSize(qint64 bytes) = 0;
  virtual void _setNSamplesPerBuffer(int nSamples) = 0;

  /// Sets the number of cuts; buffers are that many times the loop indices. A data set without a
  /// selected sample has none.
  void _setNBuffers(qint64 nCuts);

private:
  void _logSizes(const char *operation) const;

  int _sampleSize;
  bool _hasSelected;
  int _nBuffers = 1;
  Nbd::ELoopPolicy _indicesLoopPolicy = Nbd::LOOP_NONE;
  NbiIntervalIntSmall _loopIndices = NbiIntervalIntSmall::fromLength(1);
  bool _needCoordinates = true;
  bool _needSampleNumber = true;
};
