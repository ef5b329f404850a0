#include "basic/geom/NbgEAxisType.h"

#include <QObject>

const NbgEAxisType NbgEAxisType::AXIS_U(QObject::tr("U"), 0, "AXIS_U");
const NbgEAxisType NbgEAxisType::AXIS_V(QObject::tr("V"), 1, "AXIS_V");
const NbgEAxisType NbgEAxisType::AXIS_W(QObject::tr("W"), 2, "AXIS_W");
