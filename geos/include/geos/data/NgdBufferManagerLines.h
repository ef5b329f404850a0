#pragma once

#include "geos/data/NgdABufferManager.h"

#include <QList>

#include <memory>

class NgdDataSetLines;

/// Cuts a lines data set into groups of whole lines. Lines without any sample are left out.
class NgdBufferManagerLines final : public NgdABufferManager
{
public:
  /// Keeps a clone of the data set.
  explicit NgdBufferManagerLines(const NgdDataSetLines &dataSet);
  ~NgdBufferManagerLines() override;

  /// The number of lines: a line is the unit that this manager cuts by.
  int getNSamplesPerBuffer() const override { return _nLinesPerBuffer; }
  int getNLinesPerBuffer() const { return _nLinesPerBuffer; }

  /// Largest number of samples in one line when the manager was tuned.
  int getMaxSamplesPerLine() const { return _maxSamplesPerLine; }

  NgdIBufferIterator *createBufferIterator() const override;

protected:
  /// At most 1000 lines a buffer and at least min(nThreads, 10).
  void _tuneBufferSize(qint64 maxMemory, int nThreads, int nPreferred) override;
  void _setBufferSize(qint64 bytes) override;

  /// Not for lines: a programming error.
  void _setNSamplesPerBuffer(int nSamples) override;

private:
  void _setLines(int nLinesPerBuffer);

  std::unique_ptr<NgdDataSetLines> _dataSet;
  QList<int> _lineRanks;
  int _nLinesPerBuffer = 1;
  int _maxSamplesPerLine = 0;
};
