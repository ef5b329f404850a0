#pragma once

#include "basic/calc/NbcProportions.h"
#include "basic/calc/NbcStatBasic.h"
#include "basic/data/NbdMacroIndex.h"
#include "geos/base/NgcACalculator.h"

#include <memory>

class NbdAData;
class NgcStatisticsStore;

/// A calculator that can gather statistics and proportions of the variables of a data set while it
/// handles its buffers, usually of the variables that it writes.
///
/// Results are keyed by role, index within the role and, for a macro variable, macro index. A
/// variable bound to several roles is counted under the first of them that is covered.
class NgcACalculatorSimple : public NgcACalculator
{
public:
  ~NgcACalculatorSimple() override;

  /// Asks for statistics (proportions) of the variables of a role. Without any such call, and
  /// statistics switched on by setPerformStatsOrProps(), all roles are covered but coordinates and
  /// sample numbers.
  void setPerformStatistics(const QString &role);
  void setPerformProportions(const QString &role);
  void setPerformStatsOrProps(bool perform);
  bool getPerformStatsorProps() const;

  /// The result of the last run; an error when statistics are not activated or there is none. A run
  /// that failed or was stopped leaves none.
  NbcStatBasic getStatistics(const QString &role, int index) const;
  NbcStatBasic getMacroStatistics(const QString &role, int index, const NbdMacroIndex &macro) const;
  NbcProportions getProportions(const QString &role, int index) const;
  NbcProportions getMacroProportions(const QString &role, int index,
                                     const NbdMacroIndex &macro) const;

  /// Whether there is a result; an error when statistics are not activated.
  bool hasStatistics(const QString &role, int index) const;
  bool hasMacroStatistics(const QString &role, int index, const NbdMacroIndex &macro) const;
  bool hasProportions(const QString &role, int index) const;
  bool hasMacroProportions(const QString &role, int index, const NbdMacroIndex &macro) const;

protected:
  NgcACalculatorSimple();

  /// Forgets the results of the last run first.
  void _doFinalChecks() override;

  /// The data set whose variables statistics are made of; may be null.
  virtual const NgdADataSet *_statisticsDataset() const = 0;

  /// Forgets the previous results and prepares those asked for.
  void _prepareStatistics();

  /// Gathers the statistics of one buffer, the next in order.
  void _performStatistics(const NbdAData &buffer);

  /// The same for the buffer of rank `rank` (from 0, each once), from any thread: whatever the
  /// order of the calls, sums are merged in the order of ranks.
  void _performStatistics(const NbdAData &buffer, qint64 rank);

  /// Makes the results.
  void _finalizeStatistics();

private:
  bool _hasReadableResults() const;

  std::unique_ptr<NgcStatisticsStore> _statistics;
};
