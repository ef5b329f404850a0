#include "geos/vmodel/NgmPointToBlockVModel.h"

#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/fit/NgmVModelAutoFitting.h"
#include "geos/fit/NgmVModelToBeOptimized.h"
#include "geos/interpol/NgmABlock.h"
#include "geos/stats/NgmVariogramExpData.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmCvvBuilder.h"
#include "geos/vmodel/NgmVModel.h"
#include "vmodel/private/NgmBulkCovas.h"

#include <QObject>

#include <algorithm>
#include <vector>

namespace {

constexpr int DEFAULT_LAG_COUNT = 20;
constexpr double DEFAULT_RANGES = 1.25;
constexpr double NULL_VARIOGRAM = 1e-6;  // in units of the variance

/// Axes of the directions.
NbgVector3D axisOf(const NbgRotation &rotation, int axis)
{
  NbgVector3D unit;
  unit[axis] = 1.;
  return rotation.localToWorld(unit);
}

/// Largest practical range of a structure along a direction.
double largestRange(const NgmVModel &model, const NbgVector3D &direction)
{
  double largest = 0.;
  for (int k = 0; k < model.getNStructures(); ++k) {
    const double reduced = NgmBulkCovas::reducedVector(model, k, direction).norm();
    if (reduced > 0.)
      largest = std::max(largest, model.getStructure(k).getPracticalScaleFactor() / reduced);
  }
  return largest;
}

void check(bool isValid, const char *message)
{
  if (!isValid)
    throw NbeProgrammingError(QString::fromLatin1(message));
}

void checkDimensions(bool isValid)
{
  check(isValid,
        "NgmPointToBlockVModel::computeBlockVarioModel: invalid number of space dimensions");
}

int dimensionsOf(const NgmVModel &model)
{
  const int nDimensions = model.getContext().getNDimensions();
  checkDimensions(nDimensions >= 1 && nDimensions <= 3);
  return nDimensions;
}

void checkLags(int nDimensions, const QVector<double> &lags, const QVector<int> &counts)
{
  checkDimensions(lags.size() == nDimensions && counts.size() == nDimensions);
  for (int axis = 0; axis < nDimensions; ++axis) {
    check(NbbGlobal::isDefined(lags[axis]) && lags[axis] > 0.,
          "NgmPointToBlockVModel::computeBlockVarioModel: invalid lag");
    check(counts[axis] >= 1,
          "NgmPointToBlockVModel::computeBlockVarioModel: invalid number of lags");
  }
}

/// Size of the block along an axis; a 2D block has none along the third.
double extension(const NgmABlock &block, int axis)
{
  return axis < 2 || block.is3D() ? block.getSize()[axis] : 0.;
}

}  // namespace

NgmPointToBlockVModel::NgmPointToBlockVModel() : _pointCovariance(0, 0, false) {}

NgmPointToBlockVModel::~NgmPointToBlockVModel()
{
  _finish();
}

void NgmPointToBlockVModel::setPointVarioModel(const NgmVModel &model)
{
  _model = std::make_unique<NgmVModel>(model);
}

void NgmPointToBlockVModel::setPointCovariance(const NgmMatrix &covariance)
{
  _pointCovariance = covariance;
}

void NgmPointToBlockVModel::setBlock(const NgmABlock &block)
{
  _block.reset(block.clone());
}

void NgmPointToBlockVModel::setDiscretizationLags(const QVector<double> &lags,
                                                  const QVector<int> &counts)
{
  _lags = lags;
  _counts = counts;
}

void NgmPointToBlockVModel::calcDiscretizationLags(const NgmVModel &model, const NgmABlock &block,
                                                   QVector<double> &lags, QVector<int> &counts)
{
  const int nDimensions = dimensionsOf(model);
  lags.resize(nDimensions);
  counts.fill(DEFAULT_LAG_COUNT, nDimensions);
  for (int axis = 0; axis < nDimensions; ++axis) {
    const double range = largestRange(model, axisOf(model.getMajorRotation(), axis));
    lags[axis] = (extension(block, axis) + DEFAULT_RANGES * range) / DEFAULT_LAG_COUNT;
  }
}

void NgmPointToBlockVModel::setRotation(bool isSet, const NbgRotation &rotation)
{
  _isRotationSet = isSet;
  _rotation = rotation;
}

const NgmVModel &NgmPointToBlockVModel::getPointVarioModel() const
{
  if (!_model)
    NBE_FAIL(QStringLiteral("the point variogram model is not defined"));
  return *_model;
}

const NgmMatrix &NgmPointToBlockVModel::getBlockCovariance() const
{
  check(isCompleted(), "NgmPointToBlockVModel::getBlockCovariance: Result not yet computed");
  return *_covariance;
}

const NgmVariogramExpData &NgmPointToBlockVModel::getBlockVarioExp() const
{
  check(isCompleted(), "NgmPointToBlockVModel::getBlockVarioExp: Result not yet computed");
  return *_varioExp;
}

const NgmVModel &NgmPointToBlockVModel::getBlockVarioModel() const
{
  check(isCompleted(), "NgmPointToBlockVModel::getBlockVarioModel: Result not yet computed");
  return *_blockModel;
}

void NgmPointToBlockVModel::setNormalization(bool pointModel, bool blockModel)
{
  _normalizesPoints = pointModel;
  _normalizesBlocks = blockModel;
}

void NgmPointToBlockVModel::setAdvancedParameter(int index, double value)
{
  double *const parameters[] = {&_nIterations, &_initialDelta, &_tolerance};
  if (index < 0 || index > 2)
    NBE_FAIL(QStringLiteral("invalid index of an advanced parameter"));
  *parameters[index] = value;
}

QString NgmPointToBlockVModel::debug(int level) const
{
  QString text = QStringLiteral("NgmPointToBlockVModel:\n");
  if (_block)
    text += _block->debug(level);
  text += _isRotationSet ? QStringLiteral("Rotation is set:\n") + _rotation.debug(level)
                         : QStringLiteral("Rotation extracted from the variogram model\n");
  if (!isCompleted())
    return text + QStringLiteral("Not yet computed\n");
  return text + QStringLiteral("Result:\n") + _covariance->debug(level) + _varioExp->debug(level) +
         _blockModel->debug(level);
}

void NgmPointToBlockVModel::_doFinalChecks()
{
  NgcACalculator::_doFinalChecks();
  if (!_model)
    return;  // the run says so
  const int nDimensions = dimensionsOf(*_model);
  if (!_lags.isEmpty())
    checkLags(nDimensions, _lags, _counts);
  if (_pointCovariance.getNElements() > 0)
    _checkPointCovariance();
}

void NgmPointToBlockVModel::_doRun()
{
  _doFinalChecks();
  _setProgressMessageDetail(QObject::tr("Calculate Experimental Block Variogram."));
  _rescaleModel();
  _calcBlockCovariance();
  _pointToBlock();
  _setProgressMessageDetail(QObject::tr("Block Variogram Fitting"));
  _fitVarioExp();
}

void NgmPointToBlockVModel::_checkPointCovariance() const
{
  const int n = _model->getNVariables();
  bool isValid = _pointCovariance.getNRows() == n && _pointCovariance.getNColumns() == n;
  for (int i = 0; i < n && isValid; ++i)
    isValid = NbbGlobal::isDefined(_pointCovariance(i, i)) && _pointCovariance(i, i) > 0.;
  if (!isValid)
    NBE_FAIL(QStringLiteral("the point covariance is not one of the variables of the model"));
}

void NgmPointToBlockVModel::_rescaleModel()
{
  _rescaled = _model ? std::make_unique<NgmVModel>(*_model) : nullptr;
  if (!_rescaled || (_pointCovariance.getNElements() == 0 && !_normalizesPoints))
    return;
  QVector<double> variances(_rescaled->getNVariables(), 1.);
  for (int i = 0; i < variances.size() && !_normalizesPoints; ++i)
    variances[i] = _pointCovariance(i, i);
  _rescaled->fitSillsToVariances(variances);
}

void NgmPointToBlockVModel::_calcBlockCovariance()
{
  NgmCvvBuilder builder;
  if (_rescaled)
    builder.setVModel(*_rescaled);
  if (_block)
    builder.setBlockDefinition(*_block);
  _initCounter(100);
  _runSubProgress(builder, false, 10);

  _block->getDiscretizationPoints(_points);
  _jittered.clear();
  for (const qint64 seed : builder.getSeeds()) {
    QVector<NbgVector3D> jittered;
    _block->getRandomPoints(seed, jittered, false);
    _jittered << jittered;
  }
  _covariance = std::make_unique<NgmMatrix>(builder.getMeanCvv());
}

void NgmPointToBlockVModel::_pointToBlock()
{
  QVector<double> lags = _lags;
  QVector<int> counts = _counts;
  if (lags.isEmpty())
    calcDiscretizationLags(*_model, *_block, lags, counts);
  checkLags(dimensionsOf(*_model), lags, counts);  // no range and no extension: a default of 0

  auto varioExp = std::make_unique<NgmVariogramExpData>();
  varioExp->setNVariables(_model->getNVariables());
  varioExp->setMinimumLag(*std::min_element(lags.begin(), lags.end()));
  const char *const names[] = {"U", "V", "W"};
  for (int axis = 0; axis < lags.size(); ++axis)
    varioExp->addDirectionVector(axisOf(_getRotation(), axis), counts[axis],
                                 QLatin1String(names[axis]));
  varioExp->createTables({NgmEVarioExp::VARIOGRAM}, {}, true);
  for (int axis = 0; axis < lags.size(); ++axis) {
    _calcDirection(axis, lags[axis], counts[axis], *varioExp);
    _setCounter(10 + 80 * (axis + 1) / lags.size());
  }
  _varioExp = std::move(varioExp);
}

void NgmPointToBlockVModel::_calcDirection(int axis, double lag, int count,
                                           NgmVariogramExpData &varioExp) const
{
  const NbgVector3D direction = axisOf(_getRotation(), axis);
  const int n = _model->getNVariables();
  QVector<double> distances(count);
  std::vector<NgmMatrix> covariances(std::size_t(count), NgmMatrix(n, n, true));
  for (int k = 0; k < count; ++k) {
    _checkForProgressStop();
    distances[k] = (k + 1) * lag;
    _calcCovariance(distances[k] * direction, covariances[std::size_t(k)]);
  }
  const QVector<long long> pairs(count, 1);
  QVector<double> gammas(count);
  for (int i = 0; i < n; ++i)
    for (int j = i; j < n; ++j) {
      for (int k = 0; k < count; ++k)
        gammas[k] = (*_covariance)(i, j) - covariances[std::size_t(k)](i, j);
      varioExp.setDistances(axis, false, i, j, count, distances.constData());
      varioExp.setNumberOfPairs(axis, false, i, j, count, pairs.constData());
      varioExp.setVarioValues(axis, NgmEVarioExp::EValue::VARIOGRAM, i, j, count,
                              gammas.constData());
    }
}

void NgmPointToBlockVModel::_calcCovariance(const NbgVector3D &h, NgmMatrix &covariance) const
{
  NgmMatrix sum(covariance.getNRows(), covariance.getNColumns(), false);
  covariance.fill(0.);
  for (const QVector<NbgVector3D> &jittered : _jittered) {
    QVector<NbgVector3D> shifted(jittered);
    for (NbgVector3D &point : shifted)
      point += h;
    NgmBulkCovas::sumOfPairs(*_rescaled, _points, shifted, sum);
    covariance.add(sum);
  }
  const double nPairs = double(_points.size()) * _points.size() * _jittered.size();
  covariance.scalarMultiply(1. / nPairs);
}

const NbgRotation &NgmPointToBlockVModel::_getRotation() const
{
  return _isRotationSet ? _rotation : _model->getMajorRotation();
}

/// The structures to try, along the axes of the variogram, without nugget.
NgmVModelToBeOptimized NgmPointToBlockVModel::_requestedModel() const
{
  QStringList labels = _labels;
  for (int k = 0; k < _model->getNStructures() && _labels.isEmpty(); ++k)
    labels << _model->getStructureLabel(k);
  NgmVModelToBeOptimized request(_model->getNVariables());
  NgmModelContext context(_model->getContext());
  context.setNDimensions(_varioExp->getNDimensions());
  request.setContext(context);
  request.setFitNugget(false);
  request.setAuthRotation(false);
  request.setAuthCompress(_discards || _nMaxStructures >= 0);
  request.setTolSigma(_discards ? _tolerance : 0.);
  request.setNbMaxStruct(_nMaxStructures);
  for (const QString &label : qAsConst(labels))
    request.addStructure(label);
  request.setGlobalRotation(_getRotation());
  for (int i = 0; i < _covariance->getNRows() && _normalizesBlocks; ++i)
    request.setSillCumulativeConstraint(i, (*_covariance)(i, i));
  return request;
}

/// Every variable varies between blocks, and within the lags.
bool NgmPointToBlockVModel::_hasVariogram() const
{
  for (int i = 0; i < _covariance->getNRows(); ++i) {
    double largest = 0.;
    for (int dir = 0; dir < _varioExp->getNDirections(); ++dir) {
      for (double gamma : _varioExp->getVarioColumn(dir, NgmEVarioExp::EValue::VARIOGRAM, i, i))
        largest = std::max(largest, gamma);
    }
    if (!(largest > NULL_VARIOGRAM * (*_covariance)(i, i)))
      return false;
  }
  return true;
}

void NgmPointToBlockVModel::_fitVarioExp()
{
  _blockModel = std::make_unique<NgmVModel>(_model->getNVariables());
  if (_hasVariogram() && (_model->getNStructures() > 0 || !_labels.isEmpty())) {
    NgmMatrix covariance(*_covariance);
    covariance.makeSymmetrical();
    NgmVModelAutoFitting fitting;
    fitting.setVariogramExp(*_varioExp, NgmEVarioExp::VARIOGRAM);
    fitting.setInitialModel(_requestedModel());
    fitting.setVarianceCovarianceMatrix(covariance);
    fitting.setNbMaxIteration(int(_nIterations));
    fitting.setInitialDelta(_initialDelta);
    _runSubProgress(fitting, false, 10);
    *_blockModel = fitting.getFittedModel();
  }
  _blockModel->setContext(_model->getContext());
}
