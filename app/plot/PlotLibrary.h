#pragma once

// The plotting library's header speaks Qt's keywords, which the project leaves undefined.
#define signals Q_SIGNALS
#define slots Q_SLOTS
#define foreach Q_FOREACH

#include <qcustomplot.h>

#undef signals
#undef slots
#undef foreach
