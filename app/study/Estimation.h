#pragma once

#include "app/study/GridResult.h"
#include "basic/calc/NbcStatMono.h"

#include <QMap>
#include <QSharedPointer>
#include <QString>

class NbpMemoryProviderPointsW;

namespace orvenal {

struct Job;
struct RunContext;

/// What kriging a grid gave.
struct Estimation
{
  GridResult grid;
  NbcStatMono estimate;   ///< statistics of the estimate
  NbcStatMono deviation;  ///< and of its standard deviation
  qint64 nFailures = 0;   ///< nodes whose system could not be solved
  QString failures;       ///< a text on the first of them
  int threads = 0;        ///< with which it ran
};

/// What is known of the grid before, in rank order.
struct GridInput
{
  std::vector<unsigned char> selected;        ///< the nodes to be estimated
  QMap<QString, std::vector<double>> values;  ///< the columns that kriging needs
};

/// Kriging of the samples on the job's grid as the job says.
Estimation krige(const Job &job, const QSharedPointer<NbpMemoryProviderPointsW> &samples,
                 GridInput input, const RunContext &context);

}  // namespace orvenal
