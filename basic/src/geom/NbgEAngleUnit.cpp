#include "basic/geom/NbgEAngleUnit.h"

#include <QObject>

const NbgEAngleUnit NbgEAngleUnit::DEGREE(QObject::tr("Degree"), 0, "DEGREE");
const NbgEAngleUnit NbgEAngleUnit::RADIAN(QObject::tr("Radian"), 1, "RADIAN");
