#include "geos/stats/NgcVariogram.h"

#include "basic/error/NbeAssertion.h"
#include "geos/stats/NgmMultivariateStatistics.h"
#include "geos/stats/NgmVariogramExp.h"
#include "stats/private/NgcVariogramCurves.h"
#include "stats/private/NgwVariogram.h"

#include <QObject>

NgcVariogram::NgcVariogram(const QString &roleV) : NgcAPairwiseStat(roleV, true) {}

NgcVariogram::~NgcVariogram()
{
  _finish();
}

void NgcVariogram::setVarioExp(const NgmVariogramExp &request)
{
  _request = std::make_unique<NgmVariogramExp>(request);
}

const NgmVariogramExp &NgcVariogram::getVarioExp() const
{
  if (!_request)
    NBE_FAIL(QStringLiteral("Can't get variogram."));
  return *_request;
}

void NgcVariogram::setStatistics(const NgmMultivariateStatistics &statistics)
{
  _statistics = std::make_unique<NgmMultivariateStatistics>(statistics);
}

const NgmMultivariateStatistics &NgcVariogram::getStatistics() const
{
  if (!_statistics)
    NBE_FAIL(QStringLiteral("Multivariate statistics not defined."));
  return *_statistics;
}

const NgmVariogramExpData &NgcVariogram::getResults() const
{
  if (!isCompleted())
    NBE_FAIL(QStringLiteral("Can't get variogram results."));
  return _results;
}

void NgcVariogram::_addRuntimeConstraints()
{
  NgcAPairwiseStat::_addRuntimeConstraints();
  if (_request && _request->getNeedCloud())
    _setNeedSampleNumber(true);
  const QString &input = Nbd::Dataset::INPUT;
  _addVariableRule(input, Nbd::Role::MASK, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 0, 1);
  _addVariableRule(input, Nbd::Role::WEIGHT, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 0, 1);
  if (_filtering != ALL_PAIRS)
    _addVariableRule(input, Nbd::Role::CODE, Nbd::ACCESS_READ, Nbd::TYPE_INT32, 1, 1);
}

void NgcVariogram::_preProcessing()
{
  _setProgressMessageDetail(QObject::tr("Initializing..."));
  const int n = getRoleVCount();
  if (!_request)
    NBE_FAIL(QStringLiteral("Experimental variogram is not set"));
  const NgmMultivariateStatistics &statistics = getStatistics();
  if (statistics.getNVariables() != n)
    NBE_FAIL(QStringLiteral("Statistics with wrong number of variables."));
  if (_request->getNVariables() != n)
    NBE_FAIL(QStringLiteral("NgcVariogram::preProcessing: Invalid number of variables"));
  _setAccumulator(std::make_unique<NgaVarioSumList>(NgwVariogram::makeSums(*this)));
  _setProgressMessageDetail(QObject::tr("Calculating Variogram..."));
}

NgwAThread *NgcVariogram::_createComputingThread(NgwThreadPool *pool)
{
  return new NgwVariogram(pool, *this);
}

void NgcVariogram::_postProcessing()
{
  const NgcVarioTask task = NgwVariogram::makeTask(*this);
  auto &sums = static_cast<NgaVarioSumList &>(_getAccumulator());
  for (int i = 0; i < sums.getCount(); ++i)
    sums.at(i).normalize();
  if (_request->getNDirections() == 0) {
    _results = _request->getData();
    return;
  }
  _results = NgcVariogramCurves::newResults(*_request, task.cross);
  if (task.clouds)
    _results.createCloudTables(task.terms.variogram, task.terms.covariance);
  for (int dir = 0; dir < _request->getNDirections(); ++dir)
    NgcVariogramCurves::fillDirection(_results, *_request, dir, task, 0, sums,
                                      dir * task.getNSums(), *_statistics, -1);
  _results.compressAllTables();
}
