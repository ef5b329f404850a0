#pragma once

#include <QString>

/// Role names of the outputs of statistics. The value of each name is its own text.
namespace NbcStatRoles {

extern const QString COUNT;

// Histogram: bounds of the classes, then simple, cumulated and inverse cumulated values.
extern const QString HIST_BMIN;
extern const QString HIST_BMAX;
extern const QString HIST_COUNT;
extern const QString HIST_FREQ;
extern const QString HIST_ACCU;
extern const QString HIST_CUM_COUNT;
extern const QString HIST_CUM_FREQ;
extern const QString HIST_INV_COUNT;
extern const QString HIST_INV_FREQ;
extern const QString HIST_COUNT_MASK;
extern const QString HIST_CUM_MASK;
extern const QString HIST_INV_MASK;
extern const QString HIST_VOLUME;

// Experimental and theoretical distribution functions and quantiles.
extern const QString CDF_DATA;
extern const QString CDF_THEO;
extern const QString QUANT_DATA;
extern const QString QUANT_THEO;

}  // namespace NbcStatRoles
