#include "geos/stats/NgcVariogramExp.h"

#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"
#include "stats/private/NgcVariogramExp_p.h"

#include <QObject>

NgcVariogramExp::NgcVariogramExp() : _d(std::make_unique<NgcVariogramExpPrivate>(*this))
{
  setProgressMessage(QObject::tr("Experimental variogram (started)"));
  _setNeedCoordinates(true);
  _setSaveOutput(false);
  _addVariableRule(Nbd::Dataset::INOUT, Nbd::Role::V, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 1, -1);
  _addVariableRule(Nbd::Dataset::INOUT, Nbd::Role::WEIGHT, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 0,
                   1);
}

NgcVariogramExp::~NgcVariogramExp()
{
  _finish();
}

void NgcVariogramExp::setVarioExp(const NgmVariogramExp &request)
{
  _d->request = std::make_unique<NgmVariogramExp>(request);
}

const NgmVariogramExp &NgcVariogramExp::getVarioExp() const
{
  if (!_d->request)
    NBE_FAIL(QStringLiteral("Can't get variogram."));
  return *_d->request;
}

void NgcVariogramExp::setPairsFiltering(PairsFiltering filtering)
{
  _d->filtering = filtering;
}

void NgcVariogramExp::setStatistics(const NgmMultivariateStatistics &statistics)
{
  _d->statistics = std::make_unique<NgmMultivariateStatistics>(statistics);
}

void NgcVariogramExp::setStatisticsGaussian(const NgmMultivariateStatistics &statistics)
{
  _d->statisticsGaussian = std::make_unique<NgmMultivariateStatistics>(statistics);
}

void NgcVariogramExp::setVariogramCloudParameters(const NgmVariogramCloudParameters &parameters)
{
  _d->cloudParameters = parameters;
}

const NgmVariogramCloudParameters &NgcVariogramExp::getCloudParameters() const
{
  return _d->cloudParameters;
}

bool NgcVariogramExp::computeCloud() const
{
  return _d->request && _d->request->getNeedCloud();
}

void NgcVariogramExp::useDecimation(bool use, int n)
{
  if (n < 1)
    NBE_FAIL(QStringLiteral("Invalid number of samples"));
  _d->useDecimation = use;
  _d->nDecimated = n;
}

void NgcVariogramExp::setBufferMaxNbSamples(int n)
{
  if (n < 1)
    NBE_FAIL(QStringLiteral("Invalid number of samples"));
  _d->bufferSize = n;
}

void NgcVariogramExp::setSeed(unsigned long long seed)
{
  _d->seed = seed;
}

void NgcVariogramExp::setComputeCross(bool cross)
{
  _d->cross = cross;
}

bool NgcVariogramExp::computeCross() const
{
  return _d->cross;
}

const NgmVariogramExpData &NgcVariogramExp::getResults() const
{
  if (!isCompleted())
    NBE_FAIL(QStringLiteral("Can't get variogram results."));
  return _d->results;
}

const NgmVariogramExpData &NgcVariogramExp::getResultsGaussian() const
{
  if (!isCompleted() || !_d->statisticsGaussian)
    NBE_FAIL(QStringLiteral("Can't get variogram results."));
  return _d->resultsGaussian;
}

void NgcVariogramExp::_addRuntimeConstraints()
{
  NgcACalculatorSequential::_addRuntimeConstraints();
  _d->check();
  const int n = _d->request->getNVariables();
  _addRuleCount(Nbd::Dataset::INOUT, Nbd::Role::V, n, n);
  if (_d->filtering != ALL_PAIRS)
    _addVariableRule(Nbd::Dataset::INOUT, Nbd::Role::CODE, Nbd::ACCESS_READ, Nbd::TYPE_INT32, 0, 1);
  if (_d->statisticsGaussian)
    _addVariableRule(Nbd::Dataset::INOUT, Nbd::Role::GAUSSIAN, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE,
                     n, n);
  _setNeedSampleNumber(computeCloud());
  _d->forgetRun();
}

void NgcVariogramExp::_processing(NbdAData &buffer)
{
  _setProgressMessageDetail(QObject::tr("Initializing..."));
  _d->run(buffer);
}

void NgcVariogramExp::_postProcessing()
{
  // Without any selected sample there was nothing to process.
  if (!_d->hasRun())
    throw NbeUserError(QObject::tr("No valid/selected data available for variogram calculation."));
}
