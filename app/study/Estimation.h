#pragma once

#include "app/study/GridResult.h"
#include "basic/calc/NbcStatMono.h"

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

/// Ordinary kriging of the samples on the selected nodes of the job's grid (flags in rank order).
Estimation krige(const Job &job, const QSharedPointer<NbpMemoryProviderPointsW> &samples,
                 std::vector<unsigned char> selected, const RunContext &context);

}  // namespace orvenal
