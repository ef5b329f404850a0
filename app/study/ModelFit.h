#pragma once

#include "geos/NgmEnumGlobal.h"
#include "geos/vmodel/NgmVModel.h"

#include <QList>
#include <QString>

class NgmMultivariateStatistics;

namespace orvenal {

struct Job;
struct RunContext;
struct Variography;

/// What a job asks of an automatic fit.
struct FitRequest
{
  QList<NgmEVStruct> structures;  ///< to be tried; those that do not help are left out
  bool nugget = true;
  bool anisotropy = true;  ///< where several directions were computed
};

/// What the fit gave.
struct ModelFit
{
  NgmVModel model{1};
  bool hasConverged = false;
  double score = 0.;  ///< of the misfit, 0 for a perfect fit
};

/// Fits the model of the job's request to experimental variograms: a linear model of
/// coregionalization for several variables, whose matrices of sills are positive semi-definite.
/// Variograms without pairs, and a variable that does not vary or whose
/// variance is out of the range of numbers, are errors.
ModelFit fitModel(const Job &job, const Variography &variography,
                  const NgmMultivariateStatistics &statistics, const RunContext &context);

}  // namespace orvenal
