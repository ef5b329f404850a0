#include "geos/base/NgcACalculatorSimple.h"

#include "base/private/NgcStatisticsStore.h"
#include "basic/error/NbeAssertion.h"

NgcACalculatorSimple::NgcACalculatorSimple() : _statistics(std::make_unique<NgcStatisticsStore>())
{
}

NgcACalculatorSimple::~NgcACalculatorSimple()
{
  _finish();
}

void NgcACalculatorSimple::setPerformStatistics(const QString &role)
{
  _statistics->statisticsRoles.append(role);
  _statistics->perform = true;
}

void NgcACalculatorSimple::setPerformProportions(const QString &role)
{
  _statistics->proportionRoles.append(role);
  _statistics->perform = true;
}

void NgcACalculatorSimple::setPerformStatsOrProps(bool perform)
{
  _statistics->perform = perform;
}

bool NgcACalculatorSimple::getPerformStatsorProps() const
{
  return _statistics->perform;
}

NbcStatBasic NgcACalculatorSimple::getStatistics(const QString &role, int index) const
{
  if (!hasStatistics(role, index))
    NBE_FAIL(QStringLiteral("Statistics not available for role %1 #%2!")
                 .arg(role, QString::number(index)));
  return *_statistics->findStatistics({role, index, NbdMacroIndex()});
}

NbcStatBasic NgcACalculatorSimple::getMacroStatistics(const QString &role, int index,
                                                      const NbdMacroIndex &macro) const
{
  if (!hasMacroStatistics(role, index, macro))
    NBE_FAIL(QStringLiteral("Statistics not available for role %1 #%2[index]!")
                 .arg(role, QString::number(index)));
  return *_statistics->findStatistics({role, index, macro});
}

NbcProportions NgcACalculatorSimple::getProportions(const QString &role, int index) const
{
  if (!hasProportions(role, index))
    NBE_FAIL(QStringLiteral("Proportions not available for role %1 #%2!")
                 .arg(role, QString::number(index)));
  return *_statistics->findProportions({role, index, NbdMacroIndex()});
}

NbcProportions NgcACalculatorSimple::getMacroProportions(const QString &role, int index,
                                                         const NbdMacroIndex &macro) const
{
  if (!hasMacroProportions(role, index, macro))
    NBE_FAIL(QStringLiteral("Proportions not available for role %1 #%2[index]!")
                 .arg(role, QString::number(index)));
  return *_statistics->findProportions({role, index, macro});
}

bool NgcACalculatorSimple::hasStatistics(const QString &role, int index) const
{
  return hasMacroStatistics(role, index, NbdMacroIndex());
}

bool NgcACalculatorSimple::hasMacroStatistics(const QString &role, int index,
                                              const NbdMacroIndex &macro) const
{
  if (!_statistics->perform)
    NBE_FAIL(QStringLiteral("Statistics not activated!"));
  return _hasReadableResults() && _statistics->findStatistics({role, index, macro});
}

bool NgcACalculatorSimple::hasProportions(const QString &role, int index) const
{
  return hasMacroProportions(role, index, NbdMacroIndex());
}

bool NgcACalculatorSimple::hasMacroProportions(const QString &role, int index,
                                               const NbdMacroIndex &macro) const
{
  if (!_statistics->perform)
    NBE_FAIL(QStringLiteral("Proportions not activated!"));
  return _hasReadableResults() && _statistics->findProportions({role, index, macro});
}

/// The run itself may read what it has finished.
bool NgcACalculatorSimple::_hasReadableResults() const
{
  const State state = getState();
  return state == COMPLETED || state == RUNNING;
}

void NgcACalculatorSimple::_doFinalChecks()
{
  _statistics->clear();
  NgcACalculator::_doFinalChecks();
}

void NgcACalculatorSimple::_prepareStatistics()
{
  const NgdADataSet *dataSet = _statistics->perform ? _statisticsDataset() : nullptr;
  if (!dataSet)
    return;
  const bool loops = _getRules().getLoopPolicy() != Nbd::LOOP_NONE;
  _statistics->prepare(*dataSet, loops ? _getRules().getNIndicesForLoop() : 1);
}

void NgcACalculatorSimple::_performStatistics(const NbdAData &buffer)
{
  _performStatistics(buffer, -1);
}

void NgcACalculatorSimple::_performStatistics(const NbdAData &buffer, qint64 rank)
{
  if (_statistics->perform)
    _statistics->addBuffer(buffer, rank);
}

void NgcACalculatorSimple::_finalizeStatistics()
{
  if (_statistics->perform)
    _statistics->finish();
}
