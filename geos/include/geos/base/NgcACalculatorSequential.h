#pragma once

#include "geos/base/NgcACalculatorSimple.h"

#include <memory>

class NbdAData;
class NgdABufferManager;
class NgdIBufferIterator;

/// A calculator that needs the whole data set (Nbd::Dataset::INOUT) at once: it is loaded as one
/// buffer, processed on the calculator's thread and written back.
///
/// A calculator that changes its buffer for its own needs (sorts it, thins it, adds variables)
/// switches the writing back off.
class NgcACalculatorSequential : public NgcACalculatorSimple
{
public:
  ~NgcACalculatorSequential() override;

  void setDataSet(const NgdADataSet &dataSet);

protected:
  NgcACalculatorSequential();

  void _doRun() override;
  void _checkDatasets() override;

  /// Coordinates that are not needed are not loaded.
  void _checkConstraints() override;

  const NgdADataSet *_statisticsDataset() const override;

  /// The data set to process.
  virtual const NgdADataSet *_dataset() const;

  virtual void _preProcessing();

  /// The work on the whole (or one) buffer.
  virtual void _processing(NbdAData &buffer) = 0;

  virtual void _postProcessing();

  /// Sizes the buffers: one, within the memory budget.
  virtual void _initBufferManager(NgdABufferManager *manager) const;

  /// A new iterator; the caller owns it.
  virtual NgdIBufferIterator *_createBufferIterator(NgdABufferManager *manager) const;

  /// A new manager of the data set, sized; the caller owns it.
  NgdABufferManager *_getSequentialBufferManager() const;

  /// The whole data set; null when no sample is selected. The caller owns it.
  NbdAData *_getWholeBuffer();

  /// Writes a processed buffer back (when that is on and the data set can be written) and gathers
  /// its statistics.
  void _saveWholeBuffer(const NbdAData &buffer);

  /// Whether `buffer` holds something to process.
  static bool _hasSelectedSamples(const NbdAData &buffer);

  /// Whether buffers carry coordinates and sample numbers (neither by default), and whether they
  /// are written back (by default).
  void _setNeedCoordinates(bool need) { _needCoordinates = need; }
  bool _getNeedCoordinates() const { return _needCoordinates; }
  void _setNeedSampleNumber(bool need) { _needSampleNumber = need; }
  bool _getNeedSampleNumber() const { return _needSampleNumber; }
  void _setSaveOutput(bool save) { _saveOutput = save; }
  bool _getSaveOutput() const { return _saveOutput; }

private:
  bool _needCoordinates = false;
  bool _needSampleNumber = false;
  bool _saveOutput = true;
};
