#pragma once

#include "geos/base/NgcACalculatorBuffer.h"

class NbdDataPoints;

/// A calculator whose workers loop on the buffers of an input data set and patch the values of an
/// output data set, sample by sample.
class NgcALoopOnInputPatchOutput : public NgcACalculatorBuffer
{
public:
  ~NgcALoopOnInputPatchOutput() override;

  void setInputDataSet(const NgdADataSet &dataSet);
  void setOutputDataSet(const NgdADataSet &dataSet);
  bool isGridOutputDataset() const;

  /// Whether statistics of the output would count a sample more than once: they are asked for, and
  /// the input takes more than one buffer, each of which may patch the same samples.
  bool hasOverlappedStats() const;

  /// The next input buffer with something to do, null at the end; the caller owns it. Advances the
  /// progress by the buffers consumed. Thread-safe.
  NbdAData *getNextInputBuffer();

  /// A new points buffer, without samples, that has all variables of the output; the caller owns
  /// it.
  NbdDataPoints *getOutputBuffer() const;

  /// Writes the buffer's values to the output at the sample numbers it holds. Thread-safe.
  void saveBuffer(NbdDataPoints &buffer);

protected:
  NgcALoopOnInputPatchOutput();

  void _checkDatasets() override;
  void _initBufferManager() override;
  const NgdADataSet *_bufferDataset() const override;

  /// Samples of the input data set when it was given.
  qint64 _getNInputSamples() const { return _nInputSamples; }

private:
  qint64 _nInputSamples = 0;
};
