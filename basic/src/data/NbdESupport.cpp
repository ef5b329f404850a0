#include "basic/data/NbdESupport.h"

#include <QObject>

const NbdESupport NbdESupport::POINTS(QObject::tr("Points"), 1, "POINTS");
const NbdESupport NbdESupport::GRID(QObject::tr("Grid"), 2, "GRID");
const NbdESupport NbdESupport::LINE_HEADS(QObject::tr("Line heads"), 4, "LINE_HEADS");
const NbdESupport NbdESupport::LINE_POINTS(QObject::tr("Points along lines"), 8, "LINE_POINTS");
const NbdESupport NbdESupport::LINE_INTERVAL(QObject::tr("Intervals along lines"), 16,
                                             "LINE_INTERVAL");

NbdESupport::NbdESupport(const QString &label, int value, const char *key)
    : NbbAEnum(label, value, key)
{
}
