#include "geos/fit/NgmAVModelFitting.h"

#include "basic/base/NbbDebug.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/fit/NgmAOptimizer.h"
#include "geos/fit/NgmVModelOptimizable.h"

#include <QObject>

namespace {

constexpr qint64 PROGRESS = 100;

void printBetweenRules(const QString &text)
{
  const QString rule(60, QLatin1Char('='));
  NbbDebug::print(rule + QLatin1Char('\n') + text + QLatin1Char('\n') + rule);
}

}  // namespace

NgmAVModelFitting::NgmAVModelFitting() : _curve(&NgmEVarioExp::VARIOGRAM), _variances(0, 0, false)
{
  setProgressMessage(QObject::tr("Fits the variogram model"));
}

NgmAVModelFitting::~NgmAVModelFitting() = default;

void NgmAVModelFitting::setVariogramExp(const NgmVariogramExpData &data, const NbbAEnum &curve)
{
  NgmVModelOptimizable checked;
  checked.setVariogramExp(data, curve);
  _data = data;
  _curve = &checked.getFittedCurve();
}

void NgmAVModelFitting::setInitialModel(const NgmVModelToBeOptimized &model)
{
  _initialModel = std::make_unique<NgmVModelToBeOptimized>(model);
}

const NgmVModelToBeOptimized &NgmAVModelFitting::getInitialModel() const
{
  if (!_initialModel)
    throw NbeProgrammingError(
        QStringLiteral("NgmAVModelFitting::getInitialModel: no initial model"));
  return *_initialModel;
}

void NgmAVModelFitting::setCovarianceTransformation(const NgmICovaTransformation &transformation)
{
  _transformation = transformation.clone();
}

void NgmAVModelFitting::_copySettings(const NgmAVModelFitting &other)
{
  _data = other._data;
  _curve = other._curve;
  if (other._initialModel)
    setInitialModel(*other._initialModel);
  _variances = other._variances;
  if (other._transformation)
    setCovarianceTransformation(*other._transformation);
  _nPairsExponent = other._nPairsExponent;
  _nPairsMinimum = other._nPairsMinimum;
  _deprecatedWeighting = other._deprecatedWeighting;
  _nbMaxIteration = other._nbMaxIteration;
  _verbose = other._verbose;
  _superVerbose = other._superVerbose;
}

void NgmAVModelFitting::fit(bool blocking)
{
  if (isRunning())
    throw NbeProgrammingError(QStringLiteral(
        "Automatic fitting is already running. Use wait() method in non blocking mode !"));
  if (blocking)
    execute();
  else
    start();
}

std::unique_ptr<NgmVModelOptimizable> NgmAVModelFitting::_newOptimizable() const
{
  auto optimizable = std::make_unique<NgmVModelOptimizable>();
  if (_data.getNDirections() > 0)
    optimizable->setVariogramExp(_data, *_curve);
  NgmVModelToBeOptimized start(getInitialModel());
  start.checkConsistency();
  if (_data.getNDirections() > 0) {
    start.fixModel(_data);
    start.alterModel(_data);
  }
  optimizable->setInitialModel(start);
  if (_variances.getNElements() > 0)
    optimizable->setVarianceCovarianceMatrix(_variances);
  if (_transformation)
    optimizable->setCovarianceTransformation(*_transformation);
  optimizable->setNPairsExponent(_nPairsExponent);
  optimizable->setNPairsMinimum(_nPairsMinimum);
  optimizable->setUseDeprecatedWeightingFunction(_deprecatedWeighting);
  return optimizable;
}

void NgmAVModelFitting::_doRun()
{
  _fittedModel.reset();
  _converged = false;
  printBetweenRules(QObject::tr("Variogram Model Automatic Fitting Starts"));
  if (_nbMaxIteration <= 0)
    throw NbeProgrammingError(
        QStringLiteral("NgmAVModelFitting::_doRun: Maximum number of iteration must be positive"));
  _optimizer = _initialize();
  if (!_optimizer)
    throw NbeProgrammingError(QStringLiteral("Undefined optimizer"));
  _initCounter(PROGRESS);
  _optimizable = _newOptimizable();
  _optimizer->setOptimizable(_optimizable.get(), false);
  _optimizer->setNbMaxIteration(_nbMaxIteration);
  _optimizer->setVerboseFlag(_verbose);
  _optimizer->setSuperVerboseFlag(_superVerbose);
  _runSubProgress(*_optimizer, false, PROGRESS);
  _fittedModel = std::make_unique<NgmVModel>(_optimizable->getOptimizedModel());
  _fittedModel->makeAuthorized();
  _converged = _optimizer->hasConverged();
  _postProcessing();
  printBetweenRules(QObject::tr("Variogram Model Automatic Fitting Ends : Success"));
}

void NgmAVModelFitting::_cleanup()
{
  _optimizer.reset();
  _optimizable.reset();
  NgcACalculator::_cleanup();
}

void NgmAVModelFitting::_errorOccurred(const NbeError &error)
{
  _fittedModel.reset();
  printBetweenRules(
      QObject::tr("Variogram Model Automatic Fitting Ends : %1").arg(error.getMessage()));
  NgcACalculator::_errorOccurred(error);
}

const NgmVModel &NgmAVModelFitting::getFittedModel() const
{
  if (!isCompleted() || !_fittedModel)
    throw NbeProgrammingError(QStringLiteral("NgmAVModelFitting::getFittedModel: no fitted model"));
  return *_fittedModel;
}

QString NgmAVModelFitting::debug(int level) const
{
  const QString indent(qMax(level, 0) * 2, QLatin1Char(' '));
  QString text = indent + QStringLiteral("Variogram Model Fitting\n");
  if (_initialModel)
    text += _initialModel->debug(level + 1);
  if (isCompleted() && _fittedModel)
    text += indent + QStringLiteral("Fitted model\n") + _fittedModel->debug(level + 1);
  return text;
}
