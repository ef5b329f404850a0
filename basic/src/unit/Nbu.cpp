#include "basic/unit/Nbu.h"

const QString Nbu::ANGLE_DEGREE = QStringLiteral("deg");
const QString Nbu::PER_RAW = QStringLiteral("raw");
