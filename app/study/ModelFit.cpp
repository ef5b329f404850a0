#include "app/study/ModelFit.h"

#include "app/study/Coregionalization.h"
#include "app/study/Job.h"
#include "app/study/RunContext.h"
#include "app/study/Variography.h"
#include "basic/error/NbeUserError.h"
#include "geos/fit/NgmVModelAutoFitting.h"
#include "geos/fit/NgmVModelToBeOptimized.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/stats/NgmVariogramExpData.h"

#include <QObject>

#include <cmath>

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
  for (const bool isCross : {false, true}) {
    for (const VariogramSet &set : variography.sets) {
      if (set.isCross() == isCross && set.countPairs() == 0)
        throw NbeUserError(noPairs(job, set));
    }
  }
  for (int i = 0; i < job.getNVariables(); ++i) {
    if (!(variances(i, i) > 0.))
      throw NbeUserError(QObject::tr("all values of \"%1\" are equal; there is no model to fit")
                             .arg(job.getVariable(i).name));
  }
}

QVector<double> deviationsOf(const NgmMatrix &variances)
{
  QVector<double> deviations;
  for (int i = 0; i < variances.getNRows(); ++i)
    deviations << std::sqrt(variances(i, i));
  return deviations;
}

/// The variograms of the variables divided by their units.
NgmVariogramExpData withoutUnits(const Variography &variography, const QVector<double> &units)
{
  constexpr auto curve = NgmEVarioExp::EValue::VARIOGRAM;
  NgmVariogramExpData data = *variography.data;
  for (int direction = 0; direction < data.getNDirections(); ++direction) {
    for (const VariogramSet &set : variography.sets) {
      QVector<double> values = data.getVarioColumn(direction, curve, set.first, set.second);
      for (double &value : values)
        value /= units[set.first] * units[set.second];
      data.setVarioValues(direction, curve, set.first, set.second, values.size(),
                          values.constData());
    }
  }
  return data;
}

NgmMatrix identity(int n)
{
  NgmMatrix matrix(n, n, true);
  for (int i = 0; i < n; ++i)
    matrix.setElement(i, i, 1.);
  return matrix;
}

}  // namespace

ModelFit fitModel(const Job &job, const Variography &variography, const NgmMatrix &variances,
                  const RunContext &context)
{
  check(job, variography, variances);
  const QVector<double> units = deviationsOf(variances);
  NgmVModelAutoFitting fitting;
  fitting.setVariogramExp(withoutUnits(variography, units), NgmEVarioExp::VARIOGRAM);
  fitting.setInitialModel(initialModel(job));
  fitting.setVarianceCovarianceMatrix(identity(job.getNVariables()));
  context.run(fitting, QObject::tr("Fitting"), 1, QObject::tr("model"), RunContext::SIDE_STEP);
  ModelFit fit;
  fit.model = fitting.getFittedModel();
  Coregionalization::stabilize(fit.model);
  Coregionalization::rescale(fit.model, units);
  fit.hasConverged = fitting.hasConverged();
  fit.score = fitting.getGOF();
  return fit;
}

}  // namespace orvenal
