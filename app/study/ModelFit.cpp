#include "app/study/ModelFit.h"

#include "app/study/Coregionalization.h"
#include "app/study/Job.h"
#include "app/study/RunContext.h"
#include "app/study/Variography.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"
#include "geos/fit/NgmVModelAutoFitting.h"
#include "geos/fit/NgmVModelToBeOptimized.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/stats/NgmMultivariateStatistics.h"
#include "geos/stats/NgmVariogramExpData.h"
#include "geos/vmodel/NgmAVStruct.h"

#include <QObject>

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

NgmVModelToBeOptimized initialModel(const Job &job, int nDimensions)
{
  NgmVModelToBeOptimized model(job.getNVariables());
  model.setContextNDim(nDimensions);
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

void checkVariance(const Job &job, int variable, const NbcStatMono &statistics)
{
  const QString name = job.getVariable(variable).name;
  if (!(statistics.getMinimum() < statistics.getMaximum()))
    throw NbeUserError(
        QObject::tr("all values of \"%1\" are equal; there is no model to fit").arg(name));
  const double variance = statistics.getVariance();
  if (!(variance > 0.) || !NbbGlobal::isDefined(variance))
    throw NbeUserError(
        QObject::tr("the values of \"%1\" are too large or too small for a variance; "
                    "give them in another unit")
            .arg(name));
}

void check(const Job &job, const Variography &variography,
           const NgmMultivariateStatistics &statistics)
{
  for (const bool isCross : {false, true}) {
    for (const VariogramSet &set : variography.sets) {
      if (set.isCross() == isCross && set.countPairs() == 0)
        throw NbeUserError(noPairs(job, set));
    }
  }
  for (int i = 0; i < job.getNVariables(); ++i)
    checkVariance(job, i, statistics.getConstUnivariateStats(i));
}

QVector<double> deviationsOf(const NgmMultivariateStatistics &statistics)
{
  QVector<double> deviations;
  for (int i = 0; i < statistics.getNVariables(); ++i)
    deviations << statistics.getConstUnivariateStats(i).getStandardDeviation();
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

/// Horizontal directions, and all together, say nothing of the third axis: the model of a plane
/// becomes one of space whose range along W is the shorter one of the two others.
void addThirdAxis(NgmVModel &model)
{
  model.setContextNDim(3);
  for (int index = 0; index < model.getNStructures(); ++index) {
    const NbgVector3D ranges = model.getStructure(index).getPracticalRanges();
    const double shorter = std::min(ranges.x(), ranges.y());
    model.setRanges(index, NbgVector3D(ranges.x(), ranges.y(), shorter));
  }
}

NgmMatrix identity(int n)
{
  NgmMatrix matrix(n, n, true);
  for (int i = 0; i < n; ++i)
    matrix.setElement(i, i, 1.);
  return matrix;
}

}  // namespace

ModelFit fitModel(const Job &job, const Variography &variography,
                  const NgmMultivariateStatistics &statistics, const RunContext &context)
{
  check(job, variography, statistics);
  const QVector<double> units = deviationsOf(statistics);
  NgmVModelAutoFitting fitting;
  fitting.setVariogramExp(withoutUnits(variography, units), NgmEVarioExp::VARIOGRAM);
  fitting.setInitialModel(initialModel(job, variography.data->getNDimensions()));
  fitting.setVarianceCovarianceMatrix(identity(job.getNVariables()));
  context.run(fitting, QObject::tr("Fitting"), 1, QObject::tr("model"), RunContext::SIDE_STEP);
  ModelFit fit;
  fit.model = fitting.getFittedModel();
  if (fit.model.getContext().getNDimensions() < job.getNDimensions())
    addThirdAxis(fit.model);
  Coregionalization::stabilize(fit.model);
  Coregionalization::rescale(fit.model, units);
  fit.hasConverged = fitting.hasConverged();
  fit.score = fitting.getGOF();
  return fit;
}

}  // namespace orvenal
