#pragma once

#include "basic/calc/NbcStatMono.h"

#include <QList>

class NgdADataSet;
class NgmMultivariateStatistics;

namespace orvenal {

struct RunContext;

/// Statistics of the variables that a data set binds to the role V, with their correlations.
NgmMultivariateStatistics computeMultivariateStatistics(const NgdADataSet &dataSet,
                                                        const RunContext &context);

/// Statistics of the variables that a data set binds to the role V, skewness and kurtosis included.
QList<NbcStatMono> computeStatistics(const NgdADataSet &dataSet, const RunContext &context);

}  // namespace orvenal
