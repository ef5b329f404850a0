#pragma once

#include "basic/calc/NbcAProgress.h"
#include "geos/data/NgdVariableRules.h"

#include <QMap>
#include <QString>

class NgdADataSet;

/// A computation that can be launched: a thread with data sets, each under a role name, and the
/// rules that say which variables it needs in them.
///
/// It keeps copies of the data sets it is given. A run checks them against the rules, creates
/// missing and temporary variables, opens all variables, and at its end, however it ends, closes
/// them and deletes the temporaries. A calculator may be run again: rules added for one run
/// (_addRuntimeConstraints()) are forgotten at its end.
///
/// The destructor of every calculator that can be run calls _finish() first.
class NgcACalculator : public NbcAProgress
{
public:
  ~NgcACalculator() override;

  /// Makes the numeric library run on the calling thread only and give reproducible results, so
  /// that parallelism comes from the workers. To be called once, before the first calculator.
  static void initMKLThreading();
  static void setMKLThreading(int nThreads);

protected:
  NgcACalculator();

  /// Closes all variables and deletes the temporaries.
  void _cleanup() override;

  /// First step of every run: _checkRules(), then opens all variables.
  void _doFinalChecks() override;

  /// Checks that the data sets are there. Nothing by default.
  virtual void _checkDatasets();

  /// Adds the rules that depend on parameters set after construction. Nothing by default.
  virtual void _addRuntimeConstraints();

  /// Checks the data sets against the rules and creates missing and temporary variables.
  virtual void _checkConstraints();

  /// The three checks above, without opening anything.
  void _checkRules();

  /// Keeps a copy of `dataSet` under `role`, in place of the one held before.
  void _setDataset(const QString &role, const NgdADataSet &dataSet);

  /// The data set held under `role`, or null.
  NgdADataSet *_getDataset(const QString &role) const { return _dataSets.value(role); }

  NgdVariableRules &_getRules() { return _rules; }
  const NgdVariableRules &_getRules() const { return _rules; }

  /// Declare a variable role that takes plain variables, macro variables, or either; between `min`
  /// and `max` of them. A negative `max` is unbounded, one below `min` counts as `min`; a negative
  /// `min` leaves the number free.
  void _addVariableRule(const QString &dsRole, const QString &varRole, Nbd::EAccessType access,
                        Nbd::EVariableType type, int min, int max);
  void _addMacroRule(const QString &dsRole, const QString &varRole, Nbd::EAccessType access,
                     Nbd::EVariableType type, int min, int max);
  void _addVariableOrMacroRule(const QString &dsRole, const QString &varRole,
                               Nbd::EAccessType access, Nbd::EVariableType type, int min, int max);
  void _addRuleCount(const QString &dsRole, const QString &varRole, int min, int max);

  /// Both roles must hold the same number of variables.
  void _addRuleCountMatch(const QString &dsRole1, const QString &varRole1, const QString &dsRole2,
                          const QString &varRole2);

private:
  QMap<QString, NgdADataSet *> _dataSets;
  NgdVariableRules _rules;
  NgdVariableRules _configuredRules;  // as they were before the run's own constraints
  bool _hasRuntimeRules = false;
};
