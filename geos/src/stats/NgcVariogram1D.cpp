#include "geos/stats/NgcVariogram1D.h"

#include "basic/base/NbbGlobal.h"
#include "basic/base/NbbStringFormat.h"
#include "basic/base/NbbUserStringFormats.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "basic/unit/NbuEUnitClass.h"
#include "geos/data/NgdDataSetLines.h"
#include "geos/stats/NgmVariogramExp.h"
#include "stats/private/NgcVariogramCurves.h"
#include "stats/private/NgwVariogram1D.h"

#include <QMutexLocker>
#include <QObject>

#include <cmath>

namespace {

constexpr double MAXIMUM_LAGS = 1e9;

/// The curves that are computed, as the shared formulas want them.
NgmVariogramExp makeRequest()
{
  NgmVariogramExp request(true);
  request.addVarioCalculation(NgmEVarioExp::EValue::VARIOGRAM);
  request.addVarioCalculation(NgmEVarioExp::EValue::PAIRWISE_RELATIVE_VARIOGRAM);
  return request;
}

int rankOfSimple(int i, int nVariables)
{
  return i * nVariables - i * (i - 1) / 2;
}

}  // namespace

NgcVariogram1D::NgcVariogram1D()
{
  _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::V, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 1, -1);
  _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::WEIGHT, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 0,
                   1);
  _addVariableRule(Nbd::Dataset::INPUT, Nbd::Role::MASK, Nbd::ACCESS_READ, Nbd::TYPE_BOOLEAN, 0, 1);
}

NgcVariogram1D::~NgcVariogram1D()
{
  _finish();
}

void NgcVariogram1D::setLagAndMaximumDistance(double lag, double maxDistance)
{
  if (!(lag > 0.) || !(lag <= maxDistance) || !(maxDistance / lag < MAXIMUM_LAGS))
    throw NbeProgrammingError(
        QStringLiteral("NgcVariogram1D::setLagAndMaximumDistance: invalid arguments"));
  _lag = lag;
  _nLags = int(std::floor(maxDistance / lag)) + 1;
}

void NgcVariogram1D::setStatistics(const NgmMultivariateStatistics &statistics)
{
  _statistics = std::make_unique<NgmMultivariateStatistics>(statistics);
}

int NgcVariogram1D::getNVariables() const
{
  const NgdDataSetLines *input = _getInputLines();
  return input ? input->getRoleCount(Nbd::Role::V) : 0;
}

const NgmVariogramExpData &NgcVariogram1D::getResults() const
{
  if (!isCompleted())
    throw NbeProgrammingError(QStringLiteral("NgcVariogram1D::getResults: not computed."));
  return _results;
}

NbdDataTable NgcVariogram1D::getTableOfResults(int i, int j) const
{
  return getResults().getVariogramData(0, i, j);
}

void NgcVariogram1D::saveStats(NgaVarioSumList &sums, NgaVarioSumList &stats)
{
  const qint64 rank = _getCurrentBufferRank();
  QMutexLocker lock(&_sumsMutex);
  _partialSums.add(rank, std::make_unique<NgaVarioSumList>(std::move(sums)));
  _partialStats.add(rank, std::make_unique<NgaVarioSumList>(std::move(stats)));
}

void NgcVariogram1D::_addRuntimeConstraints()
{
  QStringList roles{Nbd::Role::LINE_S};
  if (_getInputLines()->isDataSupportCore())
    roles = QStringList{Nbd::Role::LINE_S_FROM, Nbd::Role::LINE_S_TO};
  for (const QString &role : roles)
    _addVariableRule(Nbd::Dataset::INPUT, role, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 1, 1);
}

void NgcVariogram1D::_preProcessing()
{
  _setProgressMessageDetail(QObject::tr("Initializing..."));
  if (!(_lag > 0.) || _nLags < 1)
    throw NbeProgrammingError(QStringLiteral("NgcVariogram1D: no lags."));
  if (_statistics && _statistics->getNVariables() != getNVariables())
    throw NbeProgrammingError(
        QStringLiteral("NgcVariogram1D: statistics of another number of variables."));
  _partialSums.clear();
  _partialStats.clear();
  _setProgressMessageDetail(QObject::tr("Calculating Variogram along Drillholes..."));
}

NgwAThread *NgcVariogram1D::_createComputingThread(NgwThreadPool *pool)
{
  return new NgwVariogram1D(pool, this);
}

void NgcVariogram1D::_postProcessing()
{
  const QString name = QStringLiteral("Downhole");
  const NgmVariogramExp request = makeRequest();
  const int n = getNVariables();
  _results = NgmVariogramExpData();
  _results.setNVariables(n);
  _results.addDirectionVector(NbgVector3D(0., 0., -1.), _nLags, name);
  _results.addDirectionGroupName(0, name, NbgRotation());
  _results.setGroupDescription(name, _buildDownholeDescription());
  _results.createTables(request.getVarioCurveTypes(), QList<NgmECovaExp>(), true);
  _results.setMinimumLag(_lag);

  NgaVarioSumList sums = _makeSums();
  NgaVarioSumList stats = _makeStats();
  _partialSums.flushInto(sums);
  _partialStats.flushInto(stats);
  for (int pair = 0; pair < sums.getCount(); ++pair)
    sums.at(pair).normalize();

  const double undefined = NbbGlobal::D_FFFF;
  const NgcVariogramCurves::Globals globals{undefined, undefined, undefined,
                                            undefined, undefined, undefined};
  int pair = 0;
  for (int i = 0; i < n; ++i) {
    for (int j = i; j < n; ++j, ++pair)
      NgcVariogramCurves::fillVario(_results, request, 0, i, j, sums.at(pair),
                                    sums.at(rankOfSimple(i, n)), sums.at(rankOfSimple(j, n)),
                                    globals);
  }
  _setPseudoSills(stats);
  _results.compressAllTables();
}

void NgcVariogram1D::_setPseudoSills(NgaVarioSumList &stats)
{
  const int n = getNVariables();
  for (int i = 0; i < n; ++i) {
    if (_statistics)
      _results.setVarioPseudoSill(NgmEVarioExp::VARIOGRAM, rankOfSimple(i, n),
                                  _statistics->getVarianceCovarianceMatrix()(i, i));
    stats.at(i).normalize();
    _results.setVarioPseudoSill(NgmEVarioExp::PAIRWISE_RELATIVE_VARIOGRAM, rankOfSimple(i, n),
                                stats.at(i).get(NgaVarioSum::PAIRWISE)[0]);
  }
}

QString NgcVariogram1D::_buildDownholeDescription() const
{
  const NbbStringFormat format = NbbUserStringFormats::getStringFormat(NbuEUnitClass::LENGTH);
  return QObject::tr("   Lag Value = %1\n").arg(format.valueToString(_lag)) +
         QObject::tr("   Maximum Distance = %1\n").arg(format.valueToString(_lag * _nLags));
}

NgaVarioSumList NgcVariogram1D::_makeSums() const
{
  const int n = getNVariables();
  NgaVarioSumList sums;
  for (int pair = 0; pair < n * (n + 1) / 2; ++pair)
    sums.append(NgaVarioSum(_nLags));
  return sums;
}

NgaVarioSumList NgcVariogram1D::_makeStats() const
{
  NgaVarioSumList stats;
  for (int i = 0; i < getNVariables(); ++i)
    stats.append(NgaVarioSum(1));
  return stats;
}
