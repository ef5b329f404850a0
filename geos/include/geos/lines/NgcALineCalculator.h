#pragma once

#include "geos/base/NgcACalculatorBuffer.h"

class NbdDataLines;
class NgdDataSetLines;

/// Base of the calculators that work line by line on an input lines data set: buffers hold whole
/// lines.
class NgcALineCalculator : public NgcACalculatorBuffer
{
public:
  ~NgcALineCalculator() override;

  void setInputDataSet(const NgdADataSet &dataSet);

  /// The next buffer of lines with a selected sample, null at the end; the caller owns it.
  /// Thread-safe.
  NbdDataLines *getNextInputLines();

  /// Writes a buffer back to the input data set. Thread-safe.
  void saveInputLines(const NbdDataLines &lines);

protected:
  /// What moves the progress counter: the input lines that are taken or the output lines that are
  /// saved. Unset, it becomes the first of them that happens.
  enum ProgressMode { PROGRESS_UNSET, PROGRESS_ON_INPUT, PROGRESS_ON_OUTPUT };

  NgcALineCalculator();

  void _checkDatasets() override;
  void _initBufferManager() override;
  const NgdADataSet *_bufferDataset() const override;

  /// The input; null when there is none or it has no lines.
  const NgdDataSetLines *_getInputLines() const;

  void _setProgressMode(ProgressMode mode) { _progressMode = mode; }
  ProgressMode _getProgressMode() const { return _progressMode; }

private:
  ProgressMode _progressMode = PROGRESS_UNSET;
};
