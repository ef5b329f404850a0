#pragma once

#include "basic/geom/NbgBox.h"
#include "geos/base/NgcACalculatorBuffer.h"
#include "geos/base/NgcIInterpol.h"
#include "geos/data/NgdNeighborhoodMoving.h"
#include "geos/data/NgdNeighborhoodUnique.h"

#include <QMap>
#include <QMutex>

/// Base of the calculators that estimate values at the samples of an output data set (targets) from
/// the samples of an input data set that a neighborhood selects.
///
/// The run loads the input samples once, then each worker takes buffers of targets, searches,
/// estimates and gives the buffers back. A failure at one target is counted and leaves that target
/// undefined; the run goes on unless it is told to stop.
class NgcAInterpol : public NgcACalculatorBuffer, public NgcIInterpol
{
public:
  ~NgcAInterpol() override;

  void setInputDataSet(const NgdADataSet &dataSet) override;
  void setOutputDataSet(const NgdADataSet &dataSet) override;
  const NgdADataSet *getInputDataset() const override;
  const NgdADataSet *getOutputDataset() const override;
  void setUsingUniqueNeighborhood() override;
  void setUsingMovingNeighborhood(const NgmNeighborhoodMoving &parameters) override;
  void setOnErrorBehavior(Ngc::OnErrorBehavior behavior) override;
  int getNumberOfInterpolErrors() const override;
  QString getInterpolErrorsMessage() const override;
  const NgdANeighborhood &getConstNeighborhood() const override;

  /// Key given to the constructor, by which an application names the calculator.
  const QString &getKey() const { return _key; }

  bool isUsingMoving() const { return _usingMoving; }
  Ngc::OnErrorBehavior getOnErrorBehavior() const { return _onErrorBehavior; }

  /// Dimension of the input, else of the output, else 0.
  int getNDimensions() const;

  /// Bounds the samples of the input and of the output.
  NbgBox getBoundingBox() const;
  bool isGridOutputDataset() const;

  /// Failures of one kind in the last run.
  bool hasInterpolError(Ngc::InterpolError type) const;

  /// Counts a failure at the target of that sample number; from any thread. The message is kept
  /// when the target is among the ten with the smallest numbers, so that texts do not depend on
  /// threads. When the run shall stop, throws the NbeUserError that ends it.
  void addInterpolError(const QString &message, Ngc::InterpolError type, qint64 sampleNumber);

  /// The next buffer of targets with a selected sample, or null; the caller owns it.
  NbdAData *getNextBuffer();

  /// Writes a buffer of results to the output data set.
  void saveBuffer(const NbdAData &buffer);

  /// The samples that the last call of the search object loaded.
  const NbdDataPoints &getAllInputData() const;

protected:
  explicit NgcAInterpol(const QString &key);

  void _doRun() override;
  void _checkDatasets() override;
  void _addRuntimeConstraints() override;
  void _initBufferManager() override;
  const NgdADataSet *_bufferDataset() const override;

  /// Called when the samples are loaded, before (after) the workers run.
  virtual void _preLaunchThreads();
  virtual void _postLaunchThreads();

  /// Checks, opens the variables and tests that the samples fit in memory.
  virtual void _prepareRun();

  /// Input and output must have the same dimension.
  void _setStrictDimension(bool strict) { _strictDimension = strict; }

  /// Bytes that the loaded samples take.
  qint64 _getNeededMemory() const { return _neededMemory; }

private:
  struct _TargetError
  {
    QString message;
    Ngc::InterpolError type;
  };

  void _estimateNeededMemory();
  void _loadInput();
  void _clearErrors();

  QString _key;
  NgdNeighborhoodUnique _unique;
  NgdNeighborhoodMoving _moving;
  bool _usingMoving = true;
  bool _hasMovingParameters = false;
  bool _strictDimension = true;
  qint64 _neededMemory = 0;

  Ngc::OnErrorBehavior _onErrorBehavior = Ngc::ON_ERROR_CONTINUE;
  mutable QMutex _errorsMutex;  // guards what follows
  QMap<Ngc::InterpolError, int> _errorCounts;
  QMultiMap<qint64, _TargetError> _firstErrors;  // by sample number
  QString _stopMessage;
};
