#pragma once

#include "geos/base/NgcACalculatorBuffer.h"

/// A calculator whose workers loop on the buffers of an output data set and write one output role
/// of it.
class NgcAVariableCreator : public NgcACalculatorBuffer
{
public:
  explicit NgcAVariableCreator(const QString &outputRole);
  ~NgcAVariableCreator() override;

  void setOutputDataSet(const NgdADataSet &dataSet);
  const NgdADataSet &getOutputDataset() const;

  /// The next buffer with something to do, null at the end; the caller owns it. Advances the
  /// progress by the buffers skipped. Thread-safe.
  NbdAData *getNextBuffer();

  /// Writes a computed buffer to the output, gathers its statistics and advances the progress by 1.
  /// Throws NbeException when a stop was requested. Thread-safe.
  void saveBuffer(const NbdAData &buffer);

protected:
  void _checkDatasets() override;
  void _initBufferManager() override;
  const NgdADataSet *_bufferDataset() const override;

  const QString &_getOutputRole() const { return _outputRole; }

private:
  QString _outputRole;
};
