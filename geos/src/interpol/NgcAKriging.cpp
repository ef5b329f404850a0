#include "geos/interpol/NgcAKriging.h"

#include "basic/base/NbbHtml.h"
#include "basic/base/NbbMessage.h"
#include "basic/base/NbbUserStringFormats.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdDataPoints.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgBox.h"
#include "basic/unit/NbuEUnitClass.h"
#include "geos/anam/NgmITransformation.h"
#include "geos/data/NgdADataSet.h"
#include "geos/interpol/NgmIKrigingPostPro.h"
#include "geos/matrix/NgmKrigingSystemDual.h"
#include "geos/stats/NgmIMultivariateTransform.h"
#include "interpol/private/NgcKrigingNeighbors.h"
#include "interpol/private/NgcKrigingSolver.h"

#include <QObject>
#include <QStringList>

#include <algorithm>

namespace {

QString locationText(const NbgVector3D &location, int nDimensions)
{
  const NbbStringFormat format = NbbUserStringFormats::getStringFormat(NbuEUnitClass::LENGTH);
  const double coordinates[] = {location.x(), location.y(), location.z()};
  QStringList texts;
  for (int axis = 0; axis < nDimensions; ++axis)
    texts << format.valueToString(coordinates[axis]);
  return texts.join(QStringLiteral(", "));
}

bool hasDefinedData(const NbdDataPoints &data)
{
  const QList<NbdAVariableNumeric *> variables =
      data.getDataTableConst().getVarsNumeric(Nbd::Role::V);
  return std::any_of(variables.begin(), variables.end(), [](const NbdAVariableNumeric *variable) {
    return variable->getNDefined() > 0;
  });
}

/// `box` holds the targets that are to be estimated from the missing data.
void warnOfMissingData(const NbgBox &box, int nDimensions)
{
  const QString text =
      QObject::tr(
          "No data available when building kriging system for unique neighborhood.\nIf you "
          "use the parcelling, please increase the extension in order to get some input "
          "samples in each parcelling box.<br>") +
      QObject::tr("Parcelling Lower Left Corner: %1<br>")
          .arg(locationText(box.getLowerLeftCorner(), nDimensions)) +
      QObject::tr("Parcelling Upper Right Corner: %1<br>")
          .arg(locationText(box.getUpperRightCorner(), nDimensions));
  NbbMessage::print(text, NbbHtml::WarningColor);
}

}  // namespace

NgcAKriging::NgcAKriging(const QString &key)
    : NgcAInterpol(key, true), _model(1), _pointGaussianCorrelation(0, 0, true)
{
  _setEnableFaults(true);
}

NgcAKriging::~NgcAKriging() = default;

// Settings.

void NgcAKriging::setVarioModel(const NgmVModel &model)
{
  _model = model;
}

void NgcAKriging::setKrigingMode(const NgcEKrigingMode &mode)
{
  _mode = mode;
}

void NgcAKriging::setKrigingMode(NgcEKrigingMode::EValue mode)
{
  _mode = NgcEKrigingMode::fromValue(int(mode));
}

void NgcAKriging::setSimpleKrigingOption(Ngc::SimpleKrigingOption option)
{
  _simpleKrigingOption = option;
}

void NgcAKriging::setSimpleKrigingMean(int variable, double mean)
{
  if (variable < 0)
    NBE_FAIL(QStringLiteral("variable >= 0"));
  if (variable >= _means.size())
    _means.resize(variable + 1);
  _means[variable] = mean;
}

void NgcAKriging::setSimpleKrigingVariableOnlyOnTarget(bool only)
{
  _meansOnlyOnTarget = only;
}

void NgcAKriging::setStDevMeasError(int variable, const QString &name)
{
  _measurementErrors.insert(variable, name);
}

void NgcAKriging::setCollocated(int variable, const QString &name)
{
  _collocated.insert(variable, name);
}

void NgcAKriging::setCollocatedTransformation(bool transform)
{
  _collocatedTransformation = transform;
}

void NgcAKriging::setLGSModelRotationConvention(bool use, int conventionId)
{
  _lgsUseConvention = use;
  _lgsConvention = conventionId;
}

void NgcAKriging::setLGSModelRotationForce2D(bool force)
{
  _lgsForce2D = force;
}

void NgcAKriging::setMonovariateTransformation(int variable,
                                               const NgmITransformation &transformation)
{
  _monoTransfos[variable].reset(transformation.clone());
}

void NgcAKriging::setEnableMonovariateTransformation(bool enable)
{
  _monoTransfosEnabled = enable;
}

void NgcAKriging::setMultivariateTransformation(const NgmIMultivariateTransform &transformation)
{
  _multiTransfo.reset(transformation.clone());
}

void NgcAKriging::setDriftModel(const NgmDriftModel &model)
{
  _driftModel = model;
}

void NgcAKriging::setExtDriftModel(const NgmExtDriftModel &model)
{
  _extDriftModel = model;
}

void NgcAKriging::setBlockCorrectionCoefficient(int variable, double r)
{
  _blockCorrectionCoefficients.insert(variable, r);
  _directBlock = true;
}

double NgcAKriging::getBlockCorrectionCoefficient(int variable) const
{
  return _blockCorrectionCoefficients.value(variable, NbbGlobal::D_FFFF);
}

bool NgcAKriging::hasBlockCorrectionCoefficient(int variable) const
{
  return _blockCorrectionCoefficients.contains(variable);
}

void NgcAKriging::setPointGaussianCorrelation(const NgmMatrix &correlation)
{
  _pointGaussianCorrelation = correlation;
}

void NgcAKriging::setGaussianKrigingPostPro(const NgmIKrigingPostPro &postPro)
{
  _postPro.reset(postPro.clone());
}

void NgcAKriging::_addFilterStructure(int structure)
{
  if (!_filteredStructures.contains(structure))
    _filteredStructures << structure;
}

// What was set.

bool NgcAKriging::isSimpleKriging() const
{
  return _mode == NgcEKrigingMode::SIMPLE_KRIGING;
}

bool NgcAKriging::isRescaledCokriging() const
{
  return _mode == NgcEKrigingMode::RESCALED_COKRIGING;
}

double NgcAKriging::getSimpleKrigingMean(int variable) const
{
  return _means.value(variable, 0.);
}

bool NgcAKriging::needMeanCorrection() const
{
  if (!isSimpleKriging() && !isRescaledCokriging())
    return false;
  return _simpleKrigingOption == Ngc::SIMPLE_KRIGING_LOCAL_MEAN ||
         std::any_of(_means.begin(), _means.end(), [](double mean) { return mean != 0.; });
}

int NgcAKriging::getNDriftEquations() const
{
  if (isSimpleKriging())
    return 0;
  return _driftModel.getNDriftEquations() + _extDriftModel.getNDriftEquations();
}

bool NgcAKriging::isFilteringComponentsEnabled() const
{
  return _filterNugget || !_filteredStructures.isEmpty() || _filterDrifts;
}

bool NgcAKriging::isUsingMonoTransfo(int variable) const
{
  return _monoTransfos.find(variable) != _monoTransfos.end();
}

const NgmITransformation &NgcAKriging::getMonoTransfo(int variable) const
{
  if (!isUsingMonoTransfo(variable))
    NBE_FAIL(QStringLiteral("isUsingMonoTransfo(variable)"));
  return *_monoTransfos.at(variable);
}

const NgmIMultivariateTransform &NgcAKriging::getMultiTransfo() const
{
  if (!isUsingMultiTransfo())
    NBE_FAIL(QStringLiteral("isUsingMultiTransfo()"));
  return *_multiTransfo;
}

bool NgcAKriging::hasMeansOfTargetsOnly() const
{
  return needMeanCorrection() && _meansOnlyOnTarget &&
         _simpleKrigingOption == Ngc::SIMPLE_KRIGING_LOCAL_MEAN;
}

// Run.

void NgcAKriging::_preProcessing()
{
  _setModelContext();
  _checkMeasurementErrors();
  _checkCollocated();
  _prepareModels();
}

void NgcAKriging::_preLaunchThreads()
{
  _uniqueFailed = false;
  _uniqueDriftError.clear();
  _systemDual.reset();
  _companionDual.reset();
  if (!isUsingMoving())
    _buildUniqueKrigingSystem();
}

void NgcAKriging::_setModelContext()
{
  _model.setContextIrfDegree(isSimpleKriging() ? -1 : _driftModel.getMaximumPolynomialDegree());
  _model.setContextNDim(getOutputDataset()->getNDimensions());
  if (_model.getEffectiveIrfDegree() >= 0)
    _model.setContextFieldSize(_calcFieldSize());
}

double NgcAKriging::_calcFieldSize() const
{
  if (!isUsingMoving())
    return getBoundingBox().getDiagonalLength();
  const auto &moving = static_cast<const NgdNeighborhoodMoving &>(getConstNeighborhood());
  const NbgVector3D radii = moving.getMaximumSize();
  const double components[] = {radii.x(), radii.y(), radii.z()};
  double largest = 0.;
  for (int axis = 0; axis < getOutputDataset()->getNDimensions(); ++axis)
    largest = std::max(largest, 2. * components[axis]);
  return largest;
}

/// The model without filtered components, and the variances of blocks that all have one size.
void NgcAKriging::_prepareModels()
{
  _filteredModel.reset();
  if (_filterNugget || !_filteredStructures.isEmpty())
    _filteredModel =
        std::make_unique<NgmVModel>(_model.buildFilteredModel(_filterNugget, _filteredStructures));
  _blockVariances.clear();
  if (!isBlockInterpolation() || isBlockVariableSize())
    return;
  const NgmMatrix cvv = getEstimatedModel().computeMeanCvv(getBlockDefinition());
  for (int variable = 0; variable < getNVariables(); ++variable)
    _blockVariances << cvv.getElement(variable, variable);
}

void NgcAKriging::_buildUniqueKrigingSystem()
{
  _setProgressMessageDetail(QObject::tr("Building Kriging System..."));
  if (isBlockInterpolation() && isDirectBlock())
    NBE_FAIL(QObject::tr("You cannot define both Block Interpolation and Direct Block Kriging."));
  const NbdDataPoints &data = getAllInputData();
  const int n = data.getNSamples();
  if (n == 0 || (isParcelling() && !hasDefinedData(data))) {
    warnOfMissingData(_getTargetsBox(), getOutputDataset()->getNDimensions());
    return;
  }
  NgcKrigingNeighbors neighbors(*this);
  neighbors.setSource(data, n);
  QVector<double> means;
  for (int variable = 0; variable < getNVariables(); ++variable)
    means << getSimpleKrigingMean(variable);
  const NgmKrigingSamples &samples =
      neighbors.take(n, hasMeansOfTargetsOnly() ? nullptr : means.constData());

  auto system = std::make_unique<NgmKrigingSystemDual>(n, getNVariables(), isSimpleKriging(),
                                                       isRescaledCokriging(), getNDriftEquations());
  NgcKrigingSystems::configure(*this, *system);
  if (!_buildSystemOfData(*system, samples))
    return;
  _systemDual = std::move(system);
  if (!isSimpleKriging() && getOutputDataset()->hasVariablesWithRole(Nbd::Role::WEIGHT_OF_MEAN))
    _buildCompanionSystem(samples);
}

/// False when the data of a parcel give no system: its targets tell why, and the other parcels are
/// estimated. Without parcels that ends the run.
bool NgcAKriging::_buildSystemOfData(NgmKrigingSystemDual &system, const NgmKrigingSamples &samples)
{
  const bool isTooLarge =
      samples.n > NgmKrigingSystemDual::getMaximumNumberOfSamples(getNVariables());
  try {
    // One thread: another factorization, and other bits, come with the parallel path.
    system.buildSystem(_model, samples, 1);
  } catch (const NbeUserError &) {
    if (!isParcelling() || isTooLarge)
      throw;
    _uniqueFailed = true;
  }
  if (system.hasDriftError() && !isParcelling())
    throw NbeUserError(system.getDriftError());
  _uniqueDriftError = system.getDriftError();
  _uniqueFailed = _uniqueFailed || system.hasDriftError();
  return !_uniqueFailed;
}

/// Its failure is told for each target.
void NgcAKriging::_buildCompanionSystem(const NgmKrigingSamples &samples)
{
  auto system = std::make_unique<NgmKrigingSystemDual>(samples.n, getNVariables(), true, false, 0);
  NgcKrigingSystems::configureCompanion(*this, *system);
  try {
    system->buildSystem(_model, samples, 1);
  } catch (const NbeUserError &) {
    return;
  }
  _companionDual = std::move(system);
}
