#include "basic/calc/NbcStatRoles.h"

namespace NbcStatRoles {

const QString COUNT = QStringLiteral("COUNT");

const QString HIST_BMIN = QStringLiteral("HIST_BMIN");
const QString HIST_BMAX = QStringLiteral("HIST_BMAX");
const QString HIST_COUNT = QStringLiteral("HIST_COUNT");
const QString HIST_FREQ = QStringLiteral("HIST_FREQ");
const QString HIST_ACCU = QStringLiteral("HIST_ACCU");
const QString HIST_CUM_COUNT = QStringLiteral("HIST_CUM_COUNT");
const QString HIST_CUM_FREQ = QStringLiteral("HIST_CUM_FREQ");
const QString HIST_INV_COUNT = QStringLiteral("HIST_INV_COUNT");
const QString HIST_INV_FREQ = QStringLiteral("HIST_INV_FREQ");
const QString HIST_COUNT_MASK = QStringLiteral("HIST_COUNT_MASK");
const QString HIST_CUM_MASK = QStringLiteral("HIST_CUM_MASK");
const QString HIST_INV_MASK = QStringLiteral("HIST_INV_MASK");
const QString HIST_VOLUME = QStringLiteral("HIST_VOLUME");

const QString CDF_DATA = QStringLiteral("CDF_DATA");
const QString CDF_THEO = QStringLiteral("CDF_THEO");
const QString QUANT_DATA = QStringLiteral("QUANT_DATA");
const QString QUANT_THEO = QStringLiteral("QUANT_THEO");

}  // namespace NbcStatRoles
