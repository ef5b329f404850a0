#pragma once

#include "geos/data/NgdABufferManager.h"

#include <memory>

class NgdBufferPointsIterator;
class NgdDataSetPoints;

/// Cuts a points data set into runs of consecutive sample ranks.
class NgdBufferManagerPoints final : public NgdABufferManager
{
public:
  /// Keeps a clone of the data set.
  explicit NgdBufferManagerPoints(const NgdDataSetPoints &dataSet);
  ~NgdBufferManagerPoints() override;

  int getNSamplesPerBuffer() const override { return _nSamplesPerBuffer; }
  NgdIBufferIterator *createBufferIterator() const override;

protected:
  /// At least 1000 samples a buffer; more when a `nPreferred`-th of the data fits in memory, but
  /// no more than one `nThreads`-th of the data.
  void _tuneBufferSize(qint64 maxMemory, int nThreads, int nPreferred) override;
  void _setBufferSize(qint64 bytes) override;
  void _setNSamplesPerBuffer(int nSamples) override;

private:
  void _setSamples(qint64 nSamplesPerBuffer);

  std::unique_ptr<NgdDataSetPoints> _dataSet;
  int _nSamplesPerBuffer = 1;
};
