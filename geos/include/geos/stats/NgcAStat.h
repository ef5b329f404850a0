#pragma once

#include "geos/base/NgaOrderedSum.h"
#include "geos/base/NgcACalculatorBuffer.h"

#include <memory>

class NgaIAdditive;

/// Base of the calculators that gather statistics of the variables of one role of an input data
/// set: each worker adds up one buffer at a time and hands the partial sums in.
///
/// Partial sums are merged in the order of buffers, so the result does not depend on the number of
/// threads.
class NgcAStat : public NgcACalculatorBuffer
{
public:
  /// With `registerRule` the role takes at least one variable, read as `type`.
  NgcAStat(const QString &roleV, bool registerRule, Nbd::EVariableType type);
  ~NgcAStat() override;

  void setInputDataSet(const NgdADataSet &dataSet);

  /// The role of the variables.
  const QString &getRoleV() const { return _roleV; }

  /// Number of variables bound to the role; 0 without data set.
  int getRoleVCount() const;

  /// The next buffer with something to do, null at the end; the caller owns it. Thread-safe.
  NbdAData *getNextBuffer();

  /// Takes the sums of the buffer that the calling thread took last. Thread-safe.
  void saveStat(const NgaIAdditive &partial);

  /// The same, without a copy.
  void saveStat(std::unique_ptr<NgaIAdditive> partial);

protected:
  void _checkDatasets() override;
  void _initBufferManager() override;
  const NgdADataSet *_bufferDataset() const override;

  const QString &_getRoleV() const { return _roleV; }

  /// Replaces the accumulator by a new, empty one. For _preProcessing().
  void _setAccumulator(std::unique_ptr<NgaIAdditive> accumulator);

  /// The sums of all buffers handed in so far. For _postProcessing().
  NgaIAdditive &_getAccumulator();

  /// Takes the partial sums of a part of the work; every rank once, and in order of ranks they are
  /// added. Does not count progress. Thread-safe.
  void _saveStat(qint64 rank, std::unique_ptr<NgaIAdditive> partial);

  /// Progress counts the partial results handed in (by default) or the buffers taken.
  void _setCountProgressInSave(bool inSave) { _countProgressInSave = inSave; }
  bool _isProgressCountedInSave() const { return _countProgressInSave; }

private:
  QString _roleV;
  std::unique_ptr<NgaIAdditive> _accumulator;
  NgaOrderedSum _partials;
  bool _countProgressInSave = true;
  QMutex _accumulatorMutex;  // guards _accumulator and _partials
};
