#pragma once

#include "basic/calc/NbcStatBasic.h"
#include "basic/data/Nbd.h"
#include "basic/geom/NbgBox.h"
#include "basic/geom/NbgGeomCuboid.h"
#include "basic/geom/NbgIntVector3D.h"
#include "basic/geom/NbgVector3D.h"
#include "geos/NgcEnumGlobal.h"
#include "geos/base/NgcACalculatorBuffer.h"
#include "geos/base/NgcIInterpol.h"
#include "geos/base/NgcISampoutInterpol.h"
#include "geos/data/NgdNeighborhoodMoving.h"
#include "geos/data/NgdNeighborhoodUnique.h"
#include "geos/interpol/NgmNeighborhoodFaultSet.h"

#include <QList>
#include <QMap>
#include <QMultiMap>
#include <QMutex>
#include <QStringList>

#include <memory>
#include <vector>

class NbdDataTable;
class NbgGeomGrid;
class NgcInputWriteOutput;
class NgcInterpolErrors;
class NgcInterpolParcels;
class NgcWeightsOutput;

/// Base of the calculators that estimate values at the samples of an output data set (targets) from
/// the samples of an input data set that a neighborhood selects.
///
/// The run goes over the parcels of a grid output (one when parcelling is off) and, within each,
/// over the realizations of the input (one when it is no macro variable). Each pass loads the
/// samples anew; then the workers take buffers of targets, search, estimate and give the buffers
/// back. A failure at one target is counted and leaves that target undefined; the run goes on
/// unless it is told to stop.
///
/// Results do not depend on the number of threads nor on the cut into buffers, and with an
/// extension that covers the search volume not on the parcels.
///
/// Beside the output there may be
/// - the weights (role WEIGHT of a data set with the samples of the input): the sum over all
///   targets of the weights of each sample, divided by the sum over all samples. The sum is exact,
///   so it does not depend on the order. With several realizations it is that of the last one;
/// - the input write: values that the calculator gives to samples of the input;
/// - the sample output: a row for each target and neighbor, see NgdSampout.
class NgcAInterpol : public NgcACalculatorBuffer, public NgcIInterpol, public NgcISampoutInterpol
{
public:
  struct SampleWeight
  {
    qint64 sampleNumber;
    double weight;
  };

  ~NgcAInterpol() override;

  void setInputDataSet(const NgdADataSet &dataSet) override;
  void setOutputDataSet(const NgdADataSet &dataSet) override;
  const NgdADataSet *getInputDataset() const override;
  const NgdADataSet *getOutputDataset() const override;

  void setSupportPoint() override;
  void setSupportBlock(const NgmABlock &block) override;
  void setSupportBlockVarSize(bool varies) override { _blockVariableSize = varies; }
  bool isBlockInterpolation() const { return _block != nullptr; }
  bool isBlockVariableSize() const { return _blockVariableSize; }

  /// The block is an NgmBlockUnfolded.
  bool isSupportBlockUnfolded() const { return _blockUnfolded; }

  /// Fails without a block.
  const NgmABlock &getBlockDefinition() const;

  /// A new copy of the block; the caller owns it. Fails without one.
  NgmABlock *cloneBlockDefinition() const;

  /// The variables of a buffer that give the sizes (role BLOCK_SIZE, one variable per dimension) or
  /// the corners (three variables x, y, z under each of the eight corner roles) of its blocks, as
  /// NgmABlock::getResizedBlock() takes them; none when the size does not vary.
  QList<NbdAVariableNumeric *> getBlockVariables(const NbdDataTable &targets) const;

  void setUsingUniqueNeighborhood() override;
  void setUsingMovingNeighborhood(const NgmNeighborhoodMoving &parameters) override;
  void addMovingAlternativeParameters(const NgmNeighborhoodNestedParam &change) override;
  const NgdANeighborhood &getConstNeighborhood() const override;

  /// During a run also true for a unique neighborhood with faults: a moving one that selects every
  /// sample stands in for it.
  bool isUsingMoving() const { return _usingMoving; }

  // Rejection of samples around targets that are samples themselves; moving neighborhood only.
  void setRejectionMode(const NgcERejectionMode &mode) { _moving.setRejectionMode(mode); }
  void setRejectionVarIndex(int index) { _moving.setRejectionVarIndex(index); }
  void setRejectionPartition(const NgmSearchPartition &partition);
  void setRejectionAuxVarOption(const NgcERejectionAuxVarOption &option);

  void setParcelling(const NbgIntVector3D &sizes, const NbgVector3D &extension) override;
  bool isParcelling() const { return _parcelling; }

  void setOnErrorBehavior(Ngc::OnErrorBehavior behavior) override;
  Ngc::OnErrorBehavior getOnErrorBehavior() const { return _onErrorBehavior; }
  int getNumberOfInterpolErrors() const override;
  QString getInterpolErrorsMessage() const override;

  /// Failures of one kind in the last run.
  bool hasInterpolError(Ngc::InterpolError type) const;

  /// Counts a failure at the target of that sample number; from any thread. The message is kept
  /// when the target is among the ten with the smallest numbers, so that texts do not depend on
  /// threads. When the run shall stop, throws the NbeUserError that ends it.
  void addInterpolError(const QString &message, Ngc::InterpolError type, qint64 sampleNumber);

  /// The data set has the samples and the selection of the input.
  void setWeightsDataset(const NgdADataSet &dataSet);
  const NgdADataSet *getWeightsDataset() const { return _wgtDataset(); }

  /// Statistics of the normalized weights of the last run.
  const NbcStatBasic &getWeightsStatistics() const { return _weightsStatistics; }

  /// The data set has the samples and the selection of the input. `types`: the roles under which it
  /// holds one variable each, with the types to write.
  void setInputWriteDataset(const NgdADataSet &dataSet,
                            const QMap<QString, Nbd::EVariableType> &types);

  /// Statistics of the values of the last run, by role.
  const QMap<QString, NbcStatBasic> &getInputWriteStatistics() const { return _inputWriteStats; }

  void setSampoutDataSet(const NgdADataSet &dataSet) override;
  NgdSampout *getSampout() const override { return _sampout.get(); }

  /// Fails in a calculator that does not know faults.
  void setFaultsData(const NgmNeighborhoodFaultSet &faults, const NgcEFaultsMode &mode);
  bool areFaultsActive() const { return _faultsActive; }
  const NgmNeighborhoodFaultSet &getFaultsData() const { return _faults; }
  const NgcEFaultsMode &getFaultsMode() const { return _faultsMode; }

  void setEnableLGS(bool enable) override { _lgs = enable; }
  void setLGSNeighRotationConvention(bool use, int conventionId) override;
  void setLGSNeighRotationForce2D(bool force) override { _lgsForce2D = force; }
  bool isLGSEnabled() const { return _lgs; }
  bool isUsingLGSNeighRotationConvention() const { return _lgsUseConvention; }
  int getLGSNeighRotationConvention() const { return _lgsConvention; }
  bool getLGSNeighRotationForce2D() const { return _lgsForce2D; }

  /// Estimates the target of that sample number of the output, of the first realization, on the
  /// calling thread, as a run would, and tells how in `result`. Nothing is written; missing macro
  /// realizations of the output are created. A target that is not selected leaves `result` without
  /// results. Not while a run is under way.
  void test(qint64 sampleNumber, NgmAInterpolTestResult &result) override;

  /// Key given to the constructor, by which an application names the calculator.
  const QString &getKey() const { return _key; }

  /// Dimension of the input, else of the output, else 0.
  int getNDimensions() const;

  /// Bounds the samples of the input and of the output.
  NbgBox getBoundingBox() const;
  bool isGridOutputDataset() const;

  /// Geometry of the whole output grid; fails when the output is none.
  const NbgGeomGrid &getOutputGridGeom() const;

  /// The samples that the last call of the search object loaded.
  const NbdDataPoints &getAllInputData() const;

  // For the workers.

  /// The next buffer of targets with a selected sample, or null; the caller owns it.
  NbdAData *getNextBuffer();

  /// Writes a buffer of results to the output data set.
  void saveBuffer(const NbdAData &buffer);

  /// Adds weights to those of the samples, whatever the order of the calls.
  void saveWeights(const QMultiMap<qint64, double> &weights);
  void saveWeights(const std::vector<SampleWeight> &weights);

  /// Sets the values of samples, in the order of the roles of the input write. A sample is given by
  /// one target only.
  void saveInputWriteVars(const QMap<qint64, QList<double>> &values);

protected:
  explicit NgcAInterpol(const QString &key, bool unfoldedBlocks = false);

  void _cleanup() override;
  void _doRun() override;
  void _checkDatasets() override;
  void _addRuntimeConstraints() override;
  void _checkConstraints() override;
  void _initBufferManager() override;

  /// Called for every parcel; the counter is set up with the first. Progress counts the samples
  /// taken by workers and the buffers they have given back, or with progress by sample the selected
  /// samples.
  void _initCalculatorCounter() override;
  const NgdADataSet *_bufferDataset() const override;

  /// The roles of the input whose variables the sample output names.
  virtual QStringList sampoutInterestRoles() const;

  /// Called when the samples of a pass are loaded, before the workers start.
  virtual void _preLaunchThreads();

  /// Called when the workers of a pass have ended, also when they have failed.
  virtual void _postLaunchThreads();

  /// Checks, opens the variables, tests that the samples fit in memory and prepares what is written
  /// beside the output.
  virtual void _prepareRun();

  /// Called before a test with the data set that describes its target: bound to the variables of
  /// the output, of which the calculator may leave some out.
  virtual void _prepareTestOutputDataSet(NgdADataSet &output);

  /// Input and output must have the same dimension (the default).
  void _setStrictDimension(bool strict) { _strictDimension = strict; }

  /// The calculator knows faults (it does not by default).
  void _setEnableFaults(bool enabled) { _faultsEnabled = enabled; }
  bool _areFaultsEnabled() const { return _faultsEnabled; }

  /// Progress counts samples as workers estimate them, for calculators that spend long on each.
  void _setPerSampleProgress(bool perSample) { _perSampleProgress = perSample; }
  bool _isPerSampleProgress() const { return _perSampleProgress; }

  /// Fails unless the data set has the selection of the input.
  void _checkSelection(const NgdADataSet &dataSet, const QString &dataSetName) const;

  NgdADataSet *_wgtDataset() const;
  NgdADataSet *_inWDataset() const;

  /// Role of the interpolated variables; V by default.
  void _setInterestRole(const QString &role);
  const QString &_getInterestRole() const { return _interestRole; }

  /// Rank of the realization of the pass under way.
  int _getMacroRank() const { return _macroRank; }

  /// Bounds the cells of the parcel under way, or the samples of the output without parcels.
  NbgBox _getTargetsBox() const;

  /// Bytes that the loaded samples take.
  qint64 _getNeededMemory() const { return _neededMemory; }

private:
  friend class NgwAInterpol;

  void _checkNeighborhood() const;
  void _checkSupport() const;
  void _checkOptions() const;
  void _addSearchRules();
  void _addTargetRules();
  void _addOptionalOutputRules();
  void _linkMacros();

  bool _mustReplaceUnique() const;
  void _createFakeMovingNeigh();
  NgdANeighborhood &_getNeighborhood();
  void _estimateNeededMemory();
  double _countParcels() const;
  void _prepareOutputs();
  bool _nextParcel();
  void _prepareParcel();
  void _setFilteringCuboid();
  NbgGeomCuboid _getParcelCuboid() const;
  void _runParcel();
  void _runPass(int macroRank);
  int _getNPasses() const;
  void _loadInput(int macroRank);
  void _finishOutputs();

  void _testTarget(qint64 sampleNumber, NgmAInterpolTestResult &result);
  std::unique_ptr<NbdDataPoints> _readTestTarget(qint64 rank);
  void _estimateTestTarget(NbdDataPoints &target, NgmAInterpolTestResult &result);

  QString _key;
  bool _unfoldedBlocks;
  QString _interestRole;
  std::unique_ptr<NgmABlock> _block;
  bool _blockVariableSize = false;
  bool _blockUnfolded = false;

  NgdNeighborhoodUnique _unique;
  NgdNeighborhoodMoving _moving;
  bool _usingMoving = true;
  bool _hasFakeMoving = false;
  bool _strictDimension = true;
  qint64 _neededMemory = 0;

  bool _parcelling = false;
  NbgIntVector3D _parcelSizes;
  NbgVector3D _parcelExtension;
  std::unique_ptr<NgcInterpolParcels> _parcels;  ///< null without parcelling
  bool _hasStarted = false;                      ///< the first parcel is under way
  int _macroRank = 0;

  bool _perSampleProgress = false;
  bool _isCounting = false;

  Ngc::OnErrorBehavior _onErrorBehavior = Ngc::ON_ERROR_CONTINUE;
  std::unique_ptr<NgcInterpolErrors> _errors;

  std::unique_ptr<NgcWeightsOutput> _weights;
  NbcStatBasic _weightsStatistics;
  QMutex _weightsMutex;

  QMap<QString, Nbd::EVariableType> _inputWriteTypes;
  std::unique_ptr<NgcInputWriteOutput> _inputWrite;
  QMap<QString, NbcStatBasic> _inputWriteStats;
  QMutex _inputWriteMutex;

  std::unique_ptr<NgdSampout> _sampout;

  bool _faultsEnabled = false;
  bool _faultsActive = false;
  NgmNeighborhoodFaultSet _faults;
  NgcEFaultsMode _faultsMode = NgcEFaultsMode::CALCULATE_INSIDE;

  bool _lgs = false;
  bool _lgsUseConvention = false;
  int _lgsConvention = 0;
  bool _lgsForce2D = false;
};
