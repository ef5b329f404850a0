#include "geos/fit/NgmAOptimizer.h"

#include "basic/base/NbbDebug.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/fit/NgmAOptimizable.h"

#include <QObject>

namespace {

constexpr int FIELD_WIDTH = 11;

}  // namespace

NgmAOptimizer::NgmAOptimizer(const QString &name) : _name(name)
{
  setProgressMessage(name);
}

NgmAOptimizer::NgmAOptimizer(const NgmAOptimizer &other) : NgmAOptimizer(other._name)
{
  *this = other;
}

NgmAOptimizer &NgmAOptimizer::operator=(const NgmAOptimizer &other)
{
  if (this == &other)
    return *this;
  setOptimizable(other._optimizable, false);
  _name = other._name;
  _verbose = other._verbose;
  _superVerbose = other._superVerbose;
  _nbMaxIteration = other._nbMaxIteration;
  _filters = other._filters;
  return *this;
}

NgmAOptimizer::~NgmAOptimizer()
{
  _finish();
  setOptimizable(nullptr, false);
}

void NgmAOptimizer::setOptimizable(NgmAOptimizable *optimizable, bool owned)
{
  if (_owned && _optimizable != optimizable)
    delete _optimizable;
  _optimizable = optimizable;
  _owned = owned;
}

void NgmAOptimizer::runOptimizer(bool blocking)
{
  if (isRunning())
    throw NbeProgrammingError(
        QStringLiteral("Optimizer is already running ! Use wait() method in non blocking mode !"));
  if (blocking)
    execute();
  else
    start();
}

void NgmAOptimizer::_doRun()
{
  if (!_optimizable)
    throw NbeProgrammingError(QStringLiteral(
        "NgmAOptimizer::_doRun: No optimizable object defined, call setOptimizable() before"));
  if (_nbMaxIteration <= 0)
    throw NbeProgrammingError(
        QStringLiteral("NgmAOptimizer::_doRun: Maximum number of iteration must be positive"));
  _converged = false;
  _score = 0.;
  _optimizable->_initialize();
  _countAll();
  _initCounter(_nbMaxIteration);
  _resetLogs();
  _printStartMessage();
  _doOptimization(_nbMaxIteration);
  if (_verbose)
    _printLogger(_logs);
  _checkForProgressStop();
  _printEndMessage();
}

void NgmAOptimizer::_countAll()
{
  _paramsCount = _optimizable->_getParamsCount(_filters);
  _dataCount = _optimizable->_getDataCount();
}

void NgmAOptimizer::_resetLogs()
{
  _logs.clear();
  if (!_verbose)
    return;
  _logs << QObject::tr("Trajectory of parameters in %1 Algorithm:").arg(_name)
        << _paramsHeaderString();
}

QVector<double> NgmAOptimizer::_evaluateFunction(NgmOptParamList &params)
{
  return _optimizable->evaluateFunction(params, _superVerbose);
}

QString NgmAOptimizer::_paramsHeaderString() const
{
  QString text;
  const auto add = [&text](const QString &field) {
    text += QStringLiteral("%1 ").arg(field, FIELD_WIDTH);
  };
  add(QObject::tr("Iteration"));
  add(QObject::tr(" Score Stop"));
  add(QObject::tr("  Move Stop"));
  NgmOptParamListIterator it = _paramsConstIterator(_optimizable->_getParamsRef());
  while (it.hasNext())
    add(it.next().getLabel());
  return text;
}

QString NgmAOptimizer::_paramsValuesString(const NgmOptParamList &params, bool withBounds) const
{
  QString text;
  NgmOptParamListIterator it = _paramsConstIterator(params);
  while (it.hasNext()) {
    const NgmOptParam &param = it.next();
    text += QStringLiteral("%1 ").arg(QString::number(param.getValue(), 'g', 5), FIELD_WIDTH);
    if (withBounds)
      text += param.getBounds().toString() + QLatin1Char(' ');
  }
  return text;
}

NgmOptParamListIterator NgmAOptimizer::_paramsConstIterator(const NgmOptParamList &params) const
{
  return NgmOptParamListIterator(params, _filters);
}

NgmOptParamListMutableIterator NgmAOptimizer::_paramsMutableIterator(NgmOptParamList &params) const
{
  return NgmOptParamListMutableIterator(params, _filters);
}

void NgmAOptimizer::_printStartMessage()
{
  NbbDebug::print(QStringLiteral("**************************************"));
  NbbDebug::print(QObject::tr("%1 optimizer starting...").arg(_name));
  NbbDebug::print(QObject::tr("Number of (filtered) parameters = %1").arg(_paramsCount));
  NbbDebug::print(QObject::tr("Number of experimental values   = %1").arg(_dataCount));
  NbbDebug::print(_optimizable->startMessage(_verbose));
}

void NgmAOptimizer::_printEndMessage()
{
  NbbDebug::print(QObject::tr("%1 optimizer ending with score: %2").arg(_name).arg(_score));
  NbbDebug::print(_converged ? QObject::tr("Convergence reached!")
                             : QObject::tr("Convergence has not been reached!"));
  const QString text = _optimizable->endMessage(_verbose);
  if (!text.isEmpty())
    NbbDebug::print(text);
}

void NgmAOptimizer::_printLogger(const QStringList &lines) const
{
  QStringList escaped;
  for (const QString &line : lines)
    escaped << line.toHtmlEscaped();
  NbbDebug::printHtml(QStringLiteral("<pre>%1</pre>").arg(escaped.join(QStringLiteral("<br/>"))));
}

QString NgmAOptimizer::debug(int level) const
{
  const QString indent(qMax(level, 0) * 2, QLatin1Char(' '));
  QString text = indent + QStringLiteral("Optimizer %1\n").arg(_name) + indent +
                 QStringLiteral("Maximum number of iterations = %1\n").arg(_nbMaxIteration) +
                 indent + QStringLiteral("Score = %1\n").arg(_score);
  return _optimizable ? text + _optimizable->debug(level + 1) : text;
}
