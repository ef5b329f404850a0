#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/calc/NbcAProgress.h"
#include "geos/fit/NgmOptParamList.h"

#include <QStringList>

class NgmAOptimizable;

/// Moves the parameters of an optimizable until its function meets its experience: base of the
/// optimizers, each on a thread of its own.
///
/// A run initializes the optimizable, optimizes, and leaves the result in it. The optimizable is
/// used by that run alone.
class NgmAOptimizer : public NbcAProgress, public NbbIDebuggable
{
public:
  explicit NgmAOptimizer(const QString &name);

  /// Copies take the settings; they share an optimizable that the other owns.
  NgmAOptimizer(const NgmAOptimizer &other);
  NgmAOptimizer &operator=(const NgmAOptimizer &other);
  ~NgmAOptimizer() override;

  const QString &getName() const { return _name; }

  /// The verbose flag logs the way of the parameters, the other one every evaluation too.
  void setVerboseFlag(bool verbose) { _verbose = verbose; }
  void setSuperVerboseFlag(bool verbose) { _superVerbose = verbose; }
  void setNbMaxIteration(int n) { _nbMaxIteration = n; }

  /// What to optimize; deleted with the optimizer when it is `owned`.
  void setOptimizable(NgmAOptimizable *optimizable, bool owned);

  /// The parameters that may move; empty for all.
  void setFilters(const QVector<NgmOptParamId> &filters) { _filters = filters; }
  const QVector<NgmOptParamId> &getFilters() const { return _filters; }

  bool hasConverged() const { return _converged; }
  double getScore() const { return _score; }
  int getDataCount() const { return _dataCount; }
  int getParamsCount() const { return _paramsCount; }

  /// Runs to the end, or starts a run and returns at once (wait() joins). A programming error while
  /// a run is under way. Errors of the run are found as in NbcAProgress.
  void runOptimizer(bool blocking);

  QString debug(int level) const override;

  /// The log of the last run.
  const QStringList &getLogs() const { return _logs; }

protected:
  void _doRun() override;

  /// The optimization; true when it went well. It may be called by another optimizer for an
  /// optimizable that is initialized already.
  virtual bool _doOptimization(int nbMaxIteration) = 0;
  virtual void _resetLogs();

  QVector<double> _evaluateFunction(NgmOptParamList &params);

  QString _paramsHeaderString() const;
  QString _paramsValuesString(const NgmOptParamList &params, bool withBounds) const;
  NgmOptParamListIterator _paramsConstIterator(const NgmOptParamList &params) const;
  NgmOptParamListMutableIterator _paramsMutableIterator(NgmOptParamList &params) const;
  void _printStartMessage();
  void _printEndMessage();
  void _printLogger(const QStringList &lines) const;

  /// Counts parameters and experience values of the optimizable.
  void _countAll();

  QString _name;
  NgmAOptimizable *_optimizable = nullptr;
  bool _verbose = false;
  bool _superVerbose = false;
  int _nbMaxIteration = 1000;
  QVector<NgmOptParamId> _filters;
  int _paramsCount = 0;
  int _dataCount = 0;
  double _score = 0.;
  bool _converged = false;
  QStringList _logs;

private:
  bool _owned = false;
};
