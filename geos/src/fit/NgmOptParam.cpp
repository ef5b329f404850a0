#include "geos/fit/NgmOptParam.h"

#include <QObject>

NgmOptParam::NgmOptParam() : _label(QObject::tr("Optimizable parameter")) {}

NgmOptParam::NgmOptParam(const NgmOptParamId &id, double value, const NbiIntervalData &bounds,
                         const QString &label)
    : _id(id), _value(value), _bounds(bounds), _label(label)
{
}

QString NgmOptParam::toString() const
{
  return QStringLiteral("%1 = %2 in %3").arg(_label, QString::number(_value), _bounds.toString());
}
