#include "app/study/ModelFit.h"

#include "app/study/Job.h"
#include "app/study/RunContext.h"
#include "geos/fit/NgmVModelAutoFitting.h"
#include "geos/fit/NgmVModelToBeOptimized.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/stats/NgmVariogramExpData.h"

#include <QObject>

namespace orvenal {

namespace {

NgmVModelToBeOptimized initialModel(const Job &job)
{
  NgmVModelToBeOptimized model(1);
  model.setContextNDim(job.getNDimensions());
  model.setFitNugget(job.fit->nugget);
  model.setAuthAniso(job.fit->anisotropy);
  model.setAuthRotation(job.fit->anisotropy);
  for (const NgmEVStruct &structure : job.fit->structures)
    model.addStructure(structure.getLabel());
  return model;
}

}  // namespace

ModelFit fitModel(const Job &job, const NgmVariogramExpData &data, double variance,
                  const RunContext &context)
{
  NgmVModelAutoFitting fitting;
  fitting.setVariogramExp(data, NgmEVarioExp::VARIOGRAM);
  fitting.setInitialModel(initialModel(job));
  fitting.setVarianceCovarianceMatrix(NgmMatrix(1, &variance));
  context.run(fitting, QObject::tr("Fitting"), 1, QObject::tr("model"), RunContext::SIDE_STEP);
  ModelFit fit;
  fit.model = fitting.getFittedModel();
  fit.hasConverged = fitting.hasConverged();
  fit.score = fitting.getGOF();
  return fit;
}

}  // namespace orvenal
