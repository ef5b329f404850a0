#include "geos/fit/NgmAOptimizable.h"

#include "basic/error/NbeProgrammingError.h"

#include <QObject>

NgmAOptimizable::~NgmAOptimizable() = default;

QString NgmAOptimizable::debug(int level) const
{
  const QString indent(qMax(level, 0) * 2, QLatin1Char(' '));
  QString text;
  for (const NgmOptParam &param : _params)
    text += indent + param.toString() + QLatin1Char('\n');
  return text;
}

QString NgmAOptimizable::startMessage(bool) const
{
  if (_params.isEmpty())
    return QObject::tr("List of parameters is empty");
  QStringList lines{QObject::tr("List of all parameters:")};
  int rank = 0;
  for (const NgmOptParam &param : _params)
    lines << QObject::tr("%1 - %2").arg(QString::number(++rank), param.toString());
  return lines.join(QLatin1Char('\n'));
}

QString NgmAOptimizable::endMessage(bool verbose) const
{
  return startMessage(verbose);
}

void NgmAOptimizable::acceptParams(const NgmOptParamList &params)
{
  if (params.size() != _params.size())
    throw NbeProgrammingError(QStringLiteral("NgmAOptimizable::acceptParams: Wrong size"));
  for (const NgmOptParam &param : params) {
    if (!param.getBounds().isIncluded(param.getValue()))
      throw NbeProgrammingError(
          QStringLiteral("NgmAOptimizable::acceptParams: Parameter out of bound:") +
          param.toString());
  }
  _params = params;
  _updateOptimizable(_params);
}

void NgmAOptimizable::_initialize()
{
  checkConsistency();
  _initPreProcess();
  _experience.clear();
  _weights.clear();
  _initExperience();
  _params.clear();
  _initParams();
  _updateOptimizable(_params);
}

int NgmAOptimizable::_getParamsCount(const QVector<NgmOptParamId> &ids) const
{
  if (ids.isEmpty())
    return _params.size();
  int count = 0;
  for (const NgmOptParamId &id : ids)
    count += _params.contains(id) ? 1 : 0;
  return count;
}

void NgmAOptimizable::_setExperience(const QVector<double> &values, const QVector<double> &weights)
{
  if (!weights.isEmpty() && weights.size() != values.size())
    throw NbeProgrammingError(
        QStringLiteral("NgmAOptimizable::_setExperience: Wrong weight array size"));
  _experience = values;
  _weights = weights;
}
