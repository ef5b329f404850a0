#include "geos/base/NgcAInterpol.h"

#include "base/private/NgcInterpolErrors.h"
#include "base/private/NgcInterpolParcels.h"
#include "base/private/NgcSampleOutput.h"
#include "basic/base/NbbSysInfo.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeGuard.h"
#include "basic/error/NbeMemoryError.h"
#include "basic/error/NbeUserError.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/interval/NbiIntervalIntLargeDisjoint.h"
#include "basic/provider/NbpIProviderR.h"
#include "geos/base/NgwAInterpol.h"
#include "geos/data/NgdBufferManagerGrid.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/data/NgdSampout.h"
#include "geos/interpol/NgmAInterpolTestResult.h"
#include "geos/interpol/NgmBlockUnfolded.h"
#include "geos/interpol/NgmNeighborhoodNestedParam.h"

#include <QMutexLocker>
#include <QObject>

#include <algorithm>

namespace {

constexpr int preferredBuffers = 100;
constexpr int everySamplePerSector = 99999999;

/// Samples on the surface of a search ellipsoid are not selected.
constexpr double fakeRadiusMargin = 1. + 1e-6;

/// Extent of a filter along an axis on which it lets everything pass.
constexpr double unbounded = 1e29;

const QString weightsId = QStringLiteral("DS_WEIGHTS");
const QString inputWriteId = QStringLiteral("DS_INPUT_WRITE");

/// Corner roles in the order of NgmBlockUnfolded: west to east, then south to north, then up.
QStringList cornerRoles()
{
  return {Nbd::Role::BLOCK_BOTSW, Nbd::Role::BLOCK_BOTSE, Nbd::Role::BLOCK_BOTNW,
          Nbd::Role::BLOCK_BOTNE, Nbd::Role::BLOCK_TOPSW, Nbd::Role::BLOCK_TOPSE,
          Nbd::Role::BLOCK_TOPNW, Nbd::Role::BLOCK_TOPNE};
}

QStringList localEllipsoidRoles()
{
  return {NgmLgsNeighborhoodMoving::getRoleRadiusFactor(),
          NgmLgsNeighborhoodMoving::getRoleRadiusFactorU(),
          NgmLgsNeighborhoodMoving::getRoleRadiusFactorV(),
          NgmLgsNeighborhoodMoving::getRoleRadiusFactorW(),
          NgmLgsNeighborhoodMoving::getRoleRot1(),
          NgmLgsNeighborhoodMoving::getRoleRot2(),
          NgmLgsNeighborhoodMoving::getRoleRot3()};
}

qint64 countSelected(const NgdADataSet &dataSet)
{
  return dataSet.getDataProvider()->getSelectedSampleCount(
      NbiIntervalIntLarge::fromLength(dataSet.getNSamples()));
}

/// Name of the variable used as selection; empty for one held in memory.
QString selectionName(const NbpIProviderR &provider)
{
  NbdVariableDetails details;
  const QString id = provider.getSelectionId();
  return !id.isEmpty() && provider.getDetails(id, details) ? details.getName() : QString();
}

}  // namespace

NgcAInterpol::NgcAInterpol(const QString &key, bool unfoldedBlocks)
    : _key(key),
      _unfoldedBlocks(unfoldedBlocks),
      _interestRole(Nbd::Role::V),
      _unique(Nbd::Role::V),
      _moving(Nbd::Role::V),
      _errors(std::make_unique<NgcInterpolErrors>())
{
  _setNeedCoordinates(true);
  _setNeedSampleNumber(true);
}

NgcAInterpol::~NgcAInterpol() = default;

// Settings.

void NgcAInterpol::setInputDataSet(const NgdADataSet &dataSet)
{
  _setDataset(Nbd::Dataset::INPUT, dataSet);
}

void NgcAInterpol::setOutputDataSet(const NgdADataSet &dataSet)
{
  _setDataset(Nbd::Dataset::OUTPUT, dataSet);
}

const NgdADataSet *NgcAInterpol::getInputDataset() const
{
  return _getDataset(Nbd::Dataset::INPUT);
}

const NgdADataSet *NgcAInterpol::getOutputDataset() const
{
  return _getDataset(Nbd::Dataset::OUTPUT);
}

void NgcAInterpol::setSupportPoint()
{
  _block.reset();
  _blockUnfolded = false;
}

void NgcAInterpol::setSupportBlock(const NgmABlock &block)
{
  _block.reset(block.clone());
  _blockUnfolded = dynamic_cast<const NgmBlockUnfolded *>(&block) != nullptr;
}

const NgmABlock &NgcAInterpol::getBlockDefinition() const
{
  if (!_block)
    NBE_FAIL(QObject::tr("block interpolation is not defined"));
  return *_block;
}

NgmABlock *NgcAInterpol::cloneBlockDefinition() const
{
  return getBlockDefinition().clone();
}

QList<NbdAVariableNumeric *> NgcAInterpol::getBlockVariables(const NbdDataTable &targets) const
{
  if (!_block || !_blockVariableSize)
    return {};
  if (!_blockUnfolded)
    return targets.getVarsNumeric(Nbd::Role::BLOCK_SIZE);
  QList<NbdAVariableNumeric *> variables;
  for (const QString &role : cornerRoles())
    variables << targets.getVarsNumeric(role);
  return variables;
}

void NgcAInterpol::setUsingUniqueNeighborhood()
{
  _usingMoving = false;
}

void NgcAInterpol::setUsingMovingNeighborhood(const NgmNeighborhoodMoving &parameters)
{
  _usingMoving = true;
  _moving.setParameters(parameters);
}

void NgcAInterpol::addMovingAlternativeParameters(const NgmNeighborhoodNestedParam &change)
{
  _moving.addAlternativeParameters(change);
}

const NgdANeighborhood &NgcAInterpol::getConstNeighborhood() const
{
  if (_usingMoving)
    return _moving;
  return _unique;
}

NgdANeighborhood &NgcAInterpol::_getNeighborhood()
{
  if (_usingMoving)
    return _moving;
  return _unique;
}

void NgcAInterpol::setRejectionPartition(const NgmSearchPartition &partition)
{
  _moving.setRejectionPartition(partition);
}

void NgcAInterpol::setRejectionAuxVarOption(const NgcERejectionAuxVarOption &option)
{
  _moving.setRejectionAuxVarOption(option);
}

void NgcAInterpol::setParcelling(const NbgIntVector3D &sizes, const NbgVector3D &extension)
{
  if (sizes.x() < 1 || sizes.y() < 1 || sizes.z() < 1)
    throw NbeUserError(QObject::tr("Parcelling size cannot be null: %1").arg(sizes.toString()));
  _parcelling = true;
  _parcelSizes = sizes;
  _parcelExtension = extension;
}

void NgcAInterpol::setOnErrorBehavior(Ngc::OnErrorBehavior behavior)
{
  _onErrorBehavior = behavior;
}

void NgcAInterpol::setWeightsDataset(const NgdADataSet &dataSet)
{
  _setDataset(weightsId, dataSet);
}

void NgcAInterpol::setInputWriteDataset(const NgdADataSet &dataSet,
                                        const QMap<QString, Nbd::EVariableType> &types)
{
  _setDataset(inputWriteId, dataSet);
  _inputWriteTypes = types;
}

NgdADataSet *NgcAInterpol::_wgtDataset() const
{
  return _getDataset(weightsId);
}

NgdADataSet *NgcAInterpol::_inWDataset() const
{
  return _getDataset(inputWriteId);
}

void NgcAInterpol::setSampoutDataSet(const NgdADataSet &dataSet)
{
  if (dataSet.isGrid() || dataSet.isLine())
    NBE_FAIL(QObject::tr("The sample output must be a points dataset."));
  _setDataset(NgdSampout::getDatasetId(), dataSet);
  _sampout = std::make_unique<NgdSampout>();
  _sampout->setDataSet(static_cast<NgdDataSetPoints *>(_getDataset(NgdSampout::getDatasetId())));
  _sampout->setHasRhs(dataSet.hasVariablesWithRole(NgdSampout::getRoleRhs()));
}

void NgcAInterpol::setFaultsData(const NgmNeighborhoodFaultSet &faults, const NgcEFaultsMode &mode)
{
  if (!_faultsEnabled)
    NBE_FAIL(QObject::tr("Fault are not allowed in this calculator"));
  _faultsActive = true;
  _faults = faults;
  _faultsMode = mode;
}

void NgcAInterpol::setLGSNeighRotationConvention(bool use, int conventionId)
{
  _lgsUseConvention = use;
  _lgsConvention = conventionId;
}

void NgcAInterpol::_setInterestRole(const QString &role)
{
  _interestRole = role;
  _unique.setRoleMain(role);
  _moving.setRoleMain(role);
}

// What it works on.

int NgcAInterpol::getNDimensions() const
{
  if (getInputDataset())
    return getInputDataset()->getNDimensions();
  return getOutputDataset() ? getOutputDataset()->getNDimensions() : 0;
}

NbgBox NgcAInterpol::getBoundingBox() const
{
  NbgBox box;
  for (const NgdADataSet *dataSet : {getInputDataset(), getOutputDataset()}) {
    if (dataSet)
      dataSet->updateBoundingBox(box);
  }
  return box;
}

bool NgcAInterpol::isGridOutputDataset() const
{
  return getOutputDataset() && getOutputDataset()->isGrid();
}

const NbgGeomGrid &NgcAInterpol::getOutputGridGeom() const
{
  if (!isGridOutputDataset())
    NBE_FAIL(QObject::tr("The output dataset is not a grid."));
  return static_cast<const NgdDataSetGrid *>(getOutputDataset())->getGeometry();
}

const NbdDataPoints &NgcAInterpol::getAllInputData() const
{
  return _usingMoving ? _moving.getAllData() : _unique.getAllData();
}

QStringList NgcAInterpol::sampoutInterestRoles() const
{
  return {_interestRole};
}

const NgdADataSet *NgcAInterpol::_bufferDataset() const
{
  return getOutputDataset();
}

// Errors at targets.

int NgcAInterpol::getNumberOfInterpolErrors() const
{
  return _errors->getCount();
}

QString NgcAInterpol::getInterpolErrorsMessage() const
{
  return _errors->getMessage();
}

bool NgcAInterpol::hasInterpolError(Ngc::InterpolError type) const
{
  return _errors->has(type);
}

void NgcAInterpol::addInterpolError(const QString &message, Ngc::InterpolError type,
                                    qint64 sampleNumber)
{
  if (_onErrorBehavior == Ngc::ON_ERROR_STOP)
    throw NbeUserError(_errors->stopAt(message, type));
  _errors->add(message, type, sampleNumber);
}

// For the workers.

NbdAData *NgcAInterpol::getNextBuffer()
{
  const QMutexLocker locker(&_getMutex());
  int nSkipped = 0;
  qint64 nSamples = 0;
  NbdAData *buffer = _takeNextBuffer(nSkipped, nSamples);
  if (buffer)
    nSamples += buffer->getNSamples();
  if (!_perSampleProgress)
    _incrementCounter(nSamples + nSkipped);
  return buffer;
}

void NgcAInterpol::saveBuffer(const NbdAData &buffer)
{
  {
    const QMutexLocker locker(&_getMutex());
    _checkForProgressStop();
    getOutputDataset()->saveFromBufferInParent(buffer);
  }
  _performStatistics(buffer);
  if (!_perSampleProgress)
    _incrementCounter(1);
}

void NgcAInterpol::saveWeights(const QMultiMap<qint64, double> &weights)
{
  std::vector<SampleWeight> list;
  list.reserve(std::size_t(weights.size()));
  for (auto it = weights.constBegin(); it != weights.constEnd(); ++it)
    list.push_back({it.key(), it.value()});
  saveWeights(list);
}

void NgcAInterpol::saveWeights(const std::vector<SampleWeight> &weights)
{
  if (!_weights)
    return;
  const QMutexLocker locker(&_weightsMutex);
  for (const SampleWeight &weight : weights)
    _weights->add(weight.sampleNumber, weight.weight);
}

void NgcAInterpol::saveInputWriteVars(const QMap<qint64, QList<double>> &values)
{
  if (!_inputWrite)
    return;
  const QMutexLocker locker(&_inputWriteMutex);
  for (auto it = values.constBegin(); it != values.constEnd(); ++it)
    _inputWrite->set(it.key(), it.value());
}

// Checks.

void NgcAInterpol::_checkDatasets()
{
  if (!getInputDataset())
    NBE_FAIL(QObject::tr("No input dataset defined!"));
  if (!getOutputDataset())
    NBE_FAIL(QObject::tr("No output dataset defined!"));
}

void NgcAInterpol::_addRuntimeConstraints()
{
  NgcACalculatorBuffer::_addRuntimeConstraints();
  _checkNeighborhood();
  _checkSupport();
  _checkOptions();
  _addSearchRules();
  _addTargetRules();
  _addOptionalOutputRules();
}

void NgcAInterpol::_checkNeighborhood() const
{
  if (_usingMoving && _moving.getLevels().empty())
    NBE_FAIL(QObject::tr("No moving neighborhood defined."));
  const int nIn = getInputDataset()->getNDimensions();
  const int nOut = getOutputDataset()->getNDimensions();
  if (nIn == nOut)
    return;
  if (_strictDimension)
    NBE_FAIL(QObject::tr("In data (ndim=%1) and out data (ndim=%2) do not have the same space "
                         "dimension!")
                 .arg(nIn)
                 .arg(nOut));
  if (_usingMoving && _moving.getLevels().size() > 1)
    NBE_FAIL(QObject::tr("Cannot use nested neighborhood with in data (ndim=%1) and out data "
                         "(ndim=%2) different space dimension!")
                 .arg(nIn)
                 .arg(nOut));
}

void NgcAInterpol::_checkSupport() const
{
  QString why;
  if (_block && !_block->isDiscretizationDefined(why))
    NBE_FAIL(QObject::tr("Discretization parameters are missing."));
  if (_blockUnfolded && !_unfoldedBlocks)
    NBE_FAIL(QObject::tr("Support block unfolded is not allowed"));
}

void NgcAInterpol::_checkOptions() const
{
  if (_sampout && !_usingMoving)
    NBE_FAIL(QObject::tr("Sampout available only for moving neighborhood."));
  if (_parcelling && !isGridOutputDataset())
    NBE_FAIL(QObject::tr("Parcelling is only available for output dataset grid"));
  if (_wgtDataset())
    _checkSelection(*_wgtDataset(), QObject::tr("weights"));
  if (_inWDataset())
    _checkSelection(*_inWDataset(), QObject::tr("input write"));
}

void NgcAInterpol::_checkSelection(const NgdADataSet &dataSet, const QString &dataSetName) const
{
  const QSharedPointer<NbpIProviderR> input = getInputDataset()->getDataProvider();
  const QSharedPointer<NbpIProviderR> other = dataSet.getDataProvider();
  if (!input || !other)
    return;  // which the run tells when it opens the data sets
  if (input->hasSelection() != other->hasSelection())
    NBE_FAIL(QObject::tr(
                 "Selection definitions are not consistent between input dataset and %1 dataset.")
                 .arg(dataSetName));
  if (input->hasSelection() && selectionName(*input) != selectionName(*other))
    NBE_FAIL(QObject::tr("Selection names are not consistent between input dataset and %1 dataset.")
                 .arg(dataSetName));
}

/// What the search reads of the samples.
void NgcAInterpol::_addSearchRules()
{
  for (const QString &role : {Nbd::Role::X, Nbd::Role::Y, Nbd::Role::Z})
    _addVariableRule(Nbd::Dataset::INPUT, role, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 0, 1);
  _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::SN, Nbd::ACCESS_READ, Nbd::TYPE_INT64, 0, 1);
  if (!_usingMoving)
    return;
  const NgmNeighborhoodMoving &parameters = _moving.getLevels().front().parameters;
  if (parameters.isRulePerCode())
    _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::CODE, Nbd::ACCESS_READ, Nbd::TYPE_INT32, 1, 1);
  if (parameters.isRuleCutLarge())
    _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::LARGE_CUTOFF, Nbd::ACCESS_READ,
                     Nbd::TYPE_DOUBLE, 1, 1);
  if (parameters.isRuleCutSmall())
    _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::SMALL_CUTOFF, Nbd::ACCESS_READ,
                     Nbd::TYPE_DOUBLE, 1, 1);
}

/// What gives targets their own ellipsoid and block.
void NgcAInterpol::_addTargetRules()
{
  if (_lgs) {
    for (const QString &role : localEllipsoidRoles())
      _addVariableRule(Nbd::Dataset::OUTPUT, role, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 0, 1);
  }
  if (!_block || !_blockVariableSize)
    return;
  const QStringList roles = _blockUnfolded ? cornerRoles() : QStringList{Nbd::Role::BLOCK_SIZE};
  const int n = _blockUnfolded || _block->is3D() ? 3 : 2;
  for (const QString &role : roles)
    _addVariableRule(Nbd::Dataset::OUTPUT, role, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, n, n);
}

void NgcAInterpol::_addOptionalOutputRules()
{
  if (_wgtDataset())
    _addVariableRule(weightsId, Nbd::Role::WEIGHT, Nbd::ACCESS_WRITE, Nbd::TYPE_DOUBLE, 1, 1);
  if (_inWDataset()) {
    for (auto it = _inputWriteTypes.constBegin(); it != _inputWriteTypes.constEnd(); ++it)
      _addVariableRule(inputWriteId, it.key(), Nbd::ACCESS_WRITE, it.value(), 1, 1);
  }
  if (_sampout)
    _sampout->registerInterpolConstraints(_getRules());
}

void NgcAInterpol::_checkConstraints()
{
  _linkMacros();
  NgcACalculatorBuffer::_checkConstraints();
}

/// Realizations of the interpolated variables are processed one at a time, and those of every other
/// macro of the input and the output with them.
void NgcAInterpol::_linkMacros()
{
  if (!getInputDataset()->hasMacroVariablesWithRole(_interestRole))
    return;
  NgdVariableRules &rules = _getRules();
  rules.setRuleMacroByPiece(Nbd::Dataset::INPUT, _interestRole, true);
  for (const QString &id : {Nbd::Dataset::INPUT, Nbd::Dataset::OUTPUT}) {
    const NgdADataSet &dataSet = *_getDataset(id);
    for (const QString &role : dataSet.getAllRoles()) {
      const bool isReference = id == Nbd::Dataset::INPUT && role == _interestRole;
      if (!isReference && dataSet.hasMacroVariablesWithRole(role) && rules.isRegistered(id, role) &&
          !rules.isLinked(id, role))
        rules.setLinkTo(id, role, Nbd::Dataset::INPUT, _interestRole);
    }
  }
}

// Preparation.

void NgcAInterpol::_prepareRun()
{
  _doFinalChecks();
  _preProcessing();
  if (_mustReplaceUnique())
    _createFakeMovingNeigh();
  _getNeighborhood().setDataset(getInputDataset());
  _estimateNeededMemory();
  _parcels.reset();
  if (_parcelling)
    _parcels =
        std::make_unique<NgcInterpolParcels>(getOutputGridGeom().getNodesNumber(), _parcelSizes);
  _prepareOutputs();
}

bool NgcAInterpol::_mustReplaceUnique() const
{
  return !_usingMoving && _faultsActive && !_faults.isEmpty();
}

/// Only a search can leave out the samples behind a fault.
void NgcAInterpol::_createFakeMovingNeigh()
{
  if (!_mustReplaceUnique())
    NBE_FAIL(QObject::tr("Fake Moving Neighborhood must not be created."));
  const NbgBox box = getBoundingBox();
  const double diagonal = box.isValid() ? box.getDiagonalLength() * fakeRadiusMargin : 0.;
  const double radius = diagonal > 0. ? diagonal : 1.;
  NgmNeighborhoodMoving parameters;
  parameters.setEllipseSize({radius, radius, radius});
  parameters.setSectors(1, everySamplePerSector, false);
  setUsingMovingNeighborhood(parameters);
  _hasFakeMoving = true;
}

/// Half of the budget may go to the loaded samples. Parcels share them, unevenly.
void NgcAInterpol::_estimateNeededMemory()
{
  _neededMemory = 0;
  if (!_usingMoving)
    return;
  const qint64 nSamples = countSelected(*getInputDataset());
  _neededMemory = nSamples * getInputDataset()->getSampleSizeBytes();
  if (_parcelling) {
    const double nParcels =
        NgcInterpolParcels::count(getOutputGridGeom().getNodesNumber(), _parcelSizes);
    if (nParcels <= 1e-6)
      throw NbeMemoryError(
          QObject::tr("NgcAInterpol::_prepareRun: Cannot allocate such memory !!"));
    _neededMemory = qint64(double(_neededMemory) / nParcels * 2.);
  }
  const qint64 available = getAvailableMemBytes();
  if (available / 2 >= _neededMemory)
    return;
  throw NbeMemoryError(
      QObject::tr("There is not enough available memory to perform the interpolation.\n") +
      QObject::tr("Available memory : ") + NbbSysInfo::getStringSize(available) +
      QLatin1Char('\n') + QObject::tr("Needed memory : ") +
      NbbSysInfo::getStringSize(_neededMemory) + QLatin1Char('\n') +
      QObject::tr("(Number of samples = ") + QString::number(nSamples) + QLatin1Char(')'));
}

void NgcAInterpol::_prepareOutputs()
{
  const NgdADataSet &input = *getInputDataset();
  _weightsStatistics = NbcStatBasic();
  _inputWriteStats.clear();
  if (_wgtDataset())
    _weights = std::make_unique<NgcWeightsOutput>(*_wgtDataset(), input, _getNPasses() > 1);
  if (_inWDataset())
    _inputWrite =
        std::make_unique<NgcInputWriteOutput>(*_inWDataset(), input, _inputWriteTypes.keys());
  if (!_sampout)
    return;
  QStringList names;
  for (const QString &role : sampoutInterestRoles())
    names << input.getVariableNames(role);
  _sampout->setVariableNames(names);
}

// The run.

void NgcAInterpol::_doRun()
{
  _resetRun();
  _errors->clear();
  _hasStarted = false;
  _isCounting = false;
  _prepareRun();
  _createBufferManager();
  _prepareStatistics();
  while (_nextParcel()) {
    _checkForProgressStop();
    _prepareParcel();
    _initBufferManager();
    _initCalculatorCounter();
    _runParcel();
  }
  _finishOutputs();
  _finalizeStatistics();
  _postProcessing();
  _setCounter(getCounterMax());
}

void NgcAInterpol::_cleanup()
{
  NgcACalculatorBuffer::_cleanup();
  _weights.reset();
  _inputWrite.reset();
  _moving.setUseFilteringCuboid(false);
  _unique.setUseFilteringCuboid(false);
  if (_hasFakeMoving)
    setUsingUniqueNeighborhood();
  _hasFakeMoving = false;
}

bool NgcAInterpol::_nextParcel()
{
  if (_parcels)
    return _parcels->next();
  const bool isFirst = !_hasStarted;
  _hasStarted = true;
  return isFirst;
}

void NgcAInterpol::_prepareParcel()
{
  // One realization is estimated at a time: buffers are sized and counted for one.
  _getBufferManager()->setLoopIndices(NbiIntervalIntSmall::fromLength(1));
  if (!_parcels)
    return;
  static_cast<NgdBufferManagerGrid *>(_getBufferManager())
      ->setTargetSubGrid(_parcels->getCounts(), _parcels->getFirst());
  _setFilteringCuboid();
}

/// Only the samples in the cells of the parcel and within the extension around them are loaded.
void NgcAInterpol::_setFilteringCuboid()
{
  NbgGeomCuboid cuboid = _getParcelCuboid();
  cuboid.extend(_parcelExtension);
  if (getOutputGridGeom().is2D()) {
    const NbgVector3D size = cuboid.getSize();
    cuboid.setSize({size.x(), size.y(), unbounded});
  }
  _getNeighborhood().setFilteringCuboid(cuboid);
  _getNeighborhood().setUseFilteringCuboid(true);
}

NbgGeomCuboid NgcAInterpol::_getParcelCuboid() const
{
  const NbgGeomGrid &grid = getOutputGridGeom();
  const NbgIntVector3D first = _parcels->getFirst();
  const NbgIntVector3D counts = _parcels->getCounts();
  NbgVector3D center;
  NbgVector3D size;
  for (int axis = 0; axis < grid.getNDim(); ++axis) {
    const double cell = grid.getCellSize()[axis];
    center[axis] = (first[axis] + 0.5 * (counts[axis] - 1)) * cell;
    size[axis] = counts[axis] * cell;
  }
  return NbgGeomCuboid(grid.getOriginCentered() + grid.getRotation().localToWorld(center), size,
                       grid.getRotation());
}

NbgBox NgcAInterpol::_getTargetsBox() const
{
  if (_parcels)
    return _getParcelCuboid().getBoundingBox();
  NbgBox box;
  if (getOutputDataset())
    getOutputDataset()->updateBoundingBox(box);
  return box;
}

void NgcAInterpol::_initBufferManager()
{
  const qint64 memory = std::max<qint64>(getAvailableMemBytes() - _neededMemory, 1);
  _getBufferManager()->tuneBufferSize(memory, getNThread(), preferredBuffers);
}

void NgcAInterpol::_initCalculatorCounter()
{
  if (_isCounting)
    return;
  NgcACalculatorBuffer::_initCalculatorCounter();
  _isCounting = true;
  const NgdADataSet &output = *getOutputDataset();
  const bool countsAll = output.isGrid() && !_perSampleProgress;
  double total = double(countsAll ? output.getNSamples() : countSelected(output));
  if (!_perSampleProgress) {
    const double nParcels =
        _parcels ? NgcInterpolParcels::count(getOutputGridGeom().getNodesNumber(), _parcelSizes)
                 : 1.;
    total += nParcels * _getBufferManager()->getNBuffers();
  }
  _initCounter(qint64(total * _getNPasses()));
}

int NgcAInterpol::_getNPasses() const
{
  return _getRules().getLoopPolicy() == Nbd::LOOP_NONE ? 1 : _getRules().getNIndicesForLoop();
}

void NgcAInterpol::_runParcel()
{
  for (int pass = 0; pass < _getNPasses(); ++pass)
    _runPass(pass);
  if (_weights)
    _weights->endParcel();
  if (_inputWrite)
    _inputWrite->endParcel();
}

void NgcAInterpol::_runPass(int macroRank)
{
  _getBufferManager()->setLoopIndices(NbiIntervalIntSmall(macroRank, macroRank));
  _loadInput(macroRank);
  if (_weights)
    _weights->beginPass();
  if (_inputWrite)
    _inputWrite->beginPass();
  _preLaunchThreads();
  try {
    _createBufferIterator();
    _runWorkers();
  } catch (...) {
    _postLaunchThreads();
    throw;
  }
  _postLaunchThreads();
}

void NgcAInterpol::_loadInput(int macroRank)
{
  _macroRank = macroRank;
  _getNeighborhood().setMacroRanks({macroRank});
  if (_usingMoving)
    _moving.loadData();
  else
    _unique.loadAllData();
}

void NgcAInterpol::_preLaunchThreads() {}

void NgcAInterpol::_postLaunchThreads() {}

void NgcAInterpol::_finishOutputs()
{
  if (_weights)
    _weightsStatistics = _weights->finish();
  if (_inputWrite)
    _inputWriteStats = _inputWrite->finish();
}

// The test of one target.

void NgcAInterpol::test(qint64 sampleNumber, NgmAInterpolTestResult &result)
{
  if (isRunning())
    NBE_FAIL(QObject::tr("A target cannot be tested during a run."));
  result.reset();
  _checkDatasets();
  if (sampleNumber < 1 || sampleNumber > getOutputDataset()->getNSamples())
    throw NbeUserError(QObject::tr("Sample number out of range"));
  try {
    NbeGuard::run([&] { _testTarget(sampleNumber, result); });
  } catch (...) {
    _cleanup();
    throw;
  }
  _cleanup();
}

void NgcAInterpol::_testTarget(qint64 sampleNumber, NgmAInterpolTestResult &result)
{
  _resetRun();
  _errors->clear();
  _prepareRun();
  const qint64 rank = sampleNumber - 1;
  const std::unique_ptr<NbdDataPoints> target = _readTestTarget(rank);
  const bool isGrid = isGridOutputDataset();
  const NbgIntVector3D node =
      isGrid ? getOutputGridGeom().getCellIJKFromRank(rank)
             : NbgIntVector3D(NbbGlobal::I32_FFFF, NbbGlobal::I32_FFFF, NbbGlobal::I32_FFFF);
  if (target->getNSamples() == 0)
    return;

  result.setTarget(sampleNumber, target->getLocation(0), node);
  result.setInputDetails(getInputDataset()->getVariableDetails(_interestRole));
  result.setOutputDetails(getOutputDataset()->getVariableDetails(_interestRole));
  if (_parcels) {
    _parcels->select(node);
    _setFilteringCuboid();
  }
  _loadInput(0);
  _preLaunchThreads();
  try {
    _estimateTestTarget(*target, result);
  } catch (...) {
    _postLaunchThreads();
    throw;
  }
  _postLaunchThreads();
}

/// The target as a buffer of one sample, or of none when it is not selected.
std::unique_ptr<NbdDataPoints> NgcAInterpol::_readTestTarget(qint64 rank)
{
  NgdDataSetPoints output(*getOutputDataset(), false);
  _prepareTestOutputDataSet(output);
  auto target = std::make_unique<NbdDataPoints>();
  target->setNDimensions(output.getNDimensions());
  output.createAllVariables(*target, true, true);
  output.loadInBuffer(NbiIntervalIntLargeDisjoint({rank, rank}), *target);
  if (target->getNSamples() == 0 && !output.getDataProvider()->hasSelection())
    NBE_FAIL(QObject::tr("No sample read but no selection is available!?!"));
  return target;
}

void NgcAInterpol::_estimateTestTarget(NbdDataPoints &target, NgmAInterpolTestResult &result)
{
  const std::unique_ptr<NgwAThread> thread(_createComputingThread(&_getPool()));
  auto *worker = dynamic_cast<NgwAInterpol *>(thread.get());
  if (!worker)
    NBE_FAIL(QObject::tr("Cannot create interpolator thread!"));
  worker->test(target, result);
  result.setTargetValues(target);
}

void NgcAInterpol::_prepareTestOutputDataSet(NgdADataSet &) {}
