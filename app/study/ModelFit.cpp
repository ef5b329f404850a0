#include "app/study/ModelFit.h"

#include "app/study/Job.h"
#include "app/study/RunContext.h"
#include "app/study/Variography.h"
#include "basic/error/NbeUserError.h"
#include "geos/fit/NgmVModelAutoFitting.h"
#include "geos/fit/NgmVModelToBeOptimized.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/stats/NgmVariogramExpData.h"

#include <QObject>

namespace orvenal {

namespace {

NgmVModelToBeOptimized initialModel(const Job &job)
{
  NgmVModelToBeOptimized model(job.getNVariables());
  model.setContextNDim(job.getNDimensions());
  model.setFitNugget(job.fit->nugget);
  model.setAuthAniso(job.fit->anisotropy);
  model.setAuthRotation(job.fit->anisotropy);
  for (const NgmEVStruct &structure : job.fit->structures)
    model.addStructure(structure.getLabel());
  return model;
}

QString noPairs(const Job &job, const VariogramSet &set)
{
  if (!set.isCross())
    return QObject::tr("no lag of the variogram of \"%1\" holds a pair; no model can be fitted")
        .arg(job.getVariable(set.first).name);
  return QObject::tr(
             "no lag holds a pair of samples with both \"%1\" and \"%2\"; no model can be "
             "fitted to their cross variogram")
      .arg(job.getVariable(set.first).name, job.getVariable(set.second).name);
}

void check(const Job &job, const Variography &variography, const NgmMatrix &variances)
{
  for (const VariogramSet &set : variography.sets) {
    if (set.countPairs() == 0)
      throw NbeUserError(noPairs(job, set));
  }
  for (int i = 0; i < job.getNVariables(); ++i) {
    if (!(variances(i, i) > 0.))
      throw NbeUserError(QObject::tr("all values of \"%1\" are equal; there is no model to fit")
                             .arg(job.getVariable(i).name));
  }
}

}  // namespace

ModelFit fitModel(const Job &job, const Variography &variography, const NgmMatrix &variances,
                  const RunContext &context)
{
  check(job, variography, variances);
  NgmVModelAutoFitting fitting;
  fitting.setVariogramExp(*variography.data, NgmEVarioExp::VARIOGRAM);
  fitting.setInitialModel(initialModel(job));
  fitting.setVarianceCovarianceMatrix(variances);
  context.run(fitting, QObject::tr("Fitting"), 1, QObject::tr("model"), RunContext::SIDE_STEP);
  ModelFit fit;
  fit.model = fitting.getFittedModel();
  fit.hasConverged = fitting.hasConverged();
  fit.score = fitting.getGOF();
  return fit;
}

}  // namespace orvenal
