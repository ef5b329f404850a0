#pragma once

#include "app/study/Estimation.h"
#include "app/study/Job.h"
#include "app/study/Samples.h"
#include "app/study/Variography.h"
#include "geos/stats/NgmMultivariateStatistics.h"

#include <QByteArray>
#include <QPair>
#include <QStringList>
#include <QVector>

#include <optional>

namespace orvenal {

/// All that a study has found, for its summary and its report.
struct StudyResult
{
  Job job;
  Samples samples;
  NbcStatMono sampleStatistics;                  ///< of the variable to estimate
  NgmMultivariateStatistics variableStatistics;  ///< of it and its covariates
  QByteArray dataMap;                            ///< PNG, as all pictures
  QByteArray dataHistogram;
  qint64 nMaskOutside = 0;  ///< points of the mask's file outside the grid
  Variography variography;  ///< empty without that step
  std::optional<ModelFit> fit;
  QByteArray variogramPicture;
  QByteArray variogramMap;  ///< where they were asked for
  QByteArray variogramCloud;
  CrossValidation crossValidation;  ///< empty without that step
  QByteArray crossValidationPicture;
  QByteArray crossValidationMap;
  std::optional<Estimation> estimation;
  QByteArray estimateMap;  ///< of sections, for a grid of three dimensions
  QByteArray deviationMap;
  QStringList warnings;
  QVector<QPair<QString, double>> seconds;  ///< of each step, in order
};

}  // namespace orvenal
