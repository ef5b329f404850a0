#pragma once

#include "app/study/Estimation.h"
#include "app/study/Job.h"
#include "app/study/Samples.h"

#include <QByteArray>
#include <QPair>
#include <QStringList>
#include <QVector>

namespace orvenal {

/// All that a study has found, for its summary and its report.
struct StudyResult
{
  Job job;
  Samples samples;
  NbcStatMono sampleStatistics;
  qint64 nMaskOutside = 0;  ///< points of the mask's file outside the grid
  Estimation estimation;
  QByteArray estimateMap;  ///< PNG; empty for a grid of three dimensions
  QByteArray deviationMap;
  QStringList warnings;
  QVector<QPair<QString, double>> seconds;  ///< of each step, in order
};

}  // namespace orvenal
