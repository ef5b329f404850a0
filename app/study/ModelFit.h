#pragma once

#include "geos/NgmEnumGlobal.h"
#include "geos/vmodel/NgmVModel.h"

#include <QList>
#include <QString>

class NgmVariogramExpData;

namespace orvenal {

struct Job;
struct RunContext;

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

/// Fits the model of the job's request to experimental variograms.
ModelFit fitModel(const Job &job, const NgmVariogramExpData &data, double variance,
                  const RunContext &context);

}  // namespace orvenal
