#include "app/study/KrigingSetup.h"

#include "app/study/Job.h"
#include "app/study/Samples.h"
#include "basic/geom/NbgGeomPolylineSet.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/interpol/NgcAKriging.h"
#include "geos/interpol/NgmFaultSetPolylines.h"
#include "geos/vmodel/NgmDriftModel.h"
#include "geos/vmodel/NgmExtDriftModel.h"

namespace orvenal {

namespace {

/// Empty without measurement errors.
QString measurementErrorName(const KrigingRequest &request)
{
  if (request.constantError)
    return auxiliaryName(constantErrorName());
  return request.measurementError ? auxiliaryName(*request.measurementError) : QString();
}

NgcEKrigingMode modeOf(const KrigingRequest &request)
{
  switch (request.mode) {
    case KrigingRequest::SIMPLE:
      return NgcEKrigingMode::SIMPLE_KRIGING;
    case KrigingRequest::DRIFT:
      return NgcEKrigingMode::UNIVERSAL_KRIGING;
    case KrigingRequest::RESCALED:
      return NgcEKrigingMode::RESCALED_COKRIGING;
    default:
      return NgcEKrigingMode::ORDINARY_KRIGING;
  }
}

void configureMeans(NgcAKriging &kriging, const KrigingRequest &request)
{
  if (!request.localMeans.isEmpty())
    kriging.setSimpleKrigingOption(Ngc::SIMPLE_KRIGING_LOCAL_MEAN);
  for (std::size_t i = 0; i < request.means.size(); ++i)
    kriging.setSimpleKrigingMean(int(i), request.means[i]);
}

/// Every variable has the same drift.
void configureDrifts(NgcAKriging &kriging, const Job &job)
{
  const KrigingRequest &request = job.kriging;
  NgmDriftModel drift;
  NgmExtDriftModel externalDrift;
  for (int variable = 0; variable < job.getNVariables(); ++variable) {
    if (request.driftDegree > 0)
      drift.addDrifts(variable, request.driftDegree, true, true, job.getNDimensions() > 2);
    for (int i = 0; i < request.externalDrifts.size(); ++i)
      externalDrift.addDrift(variable, i);
  }
  kriging.setDriftModel(drift);
  kriging.setExtDriftModel(externalDrift);
}

void configureFaults(NgcAKriging &kriging, const Job &job)
{
  if (!job.faults)
    return;
  kriging.setFaultsData(
      NgmNeighborhoodFaultSet(std::make_unique<NgmFaultSetPolylines>(readFaults(job))),
      job.estimatesInsideFaults ? NgcEFaultsMode::CALCULATE_INSIDE
                                : NgcEFaultsMode::DO_NOT_CALCULATE_INSIDE);
}

/// What the rules of a neighborhood look at.
void assignRules(NgdDataSetPoints &input, const NeighborhoodRequest &request,
                 const NbpIProviderR &samples)
{
  if (!request.line.isEmpty())
    input.assignVariable(Nbd::Role::CODE, samples.getIdFromName(lineName(request.line)));
  if (request.moving.isRuleCutLarge())
    input.assignVariable(Nbd::Role::LARGE_CUTOFF, samples.getIdFromName(sampleValueName()));
  if (request.moving.isRuleCutSmall())
    input.assignVariable(Nbd::Role::SMALL_CUTOFF, samples.getIdFromName(sampleValueName()));
}

}  // namespace

NgdDataSetPoints makeSampleDataSet(const Job &job,
                                   const QSharedPointer<NbpMemoryProviderPointsW> &samples)
{
  NgdDataSetPoints input = makeVariableDataSet(job, samples);
  assignColumns(input, Nbd::Role::EXTDRIFT, *samples, job.kriging.externalDrifts);
  assignColumns(input, Nbd::Role::LOCAL_MEAN, *samples, job.kriging.localMeans);
  if (const QString error = measurementErrorName(job.kriging); !error.isEmpty())
    input.assignVariable(Nbd::Role::STDEV_MEAS_ERR, samples->getIdFromName(error));
  if (job.neighborhood)
    assignRules(input, *job.neighborhood, *samples);
  return input;
}

void assignColumns(NgdADataSet &dataSet, const QString &role, const NbpIProviderR &file,
                   const QList<Column> &columns)
{
  for (const Column &column : columns)
    dataSet.assignVariable(role, file.getIdFromName(auxiliaryName(column)));
}

void configureKriging(NgcAKriging &kriging, const Job &job)
{
  kriging.setVarioModel(job.model);
  kriging.setKrigingMode(modeOf(job.kriging));
  configureMeans(kriging, job.kriging);
  configureDrifts(kriging, job);
  for (int i = 0; i < job.covariates.size(); ++i)
    kriging.addExcludedOutputVar(i + 1);
  if (const QString error = measurementErrorName(job.kriging); !error.isEmpty())
    kriging.setStDevMeasError(0, error);
  configureFaults(kriging, job);
}

void configureNeighborhood(NgcAKriging &kriging, const NeighborhoodRequest &request)
{
  kriging.setUsingMovingNeighborhood(request.moving);
  for (const NgmNeighborhoodNestedParam &pass : request.passes)
    kriging.addMovingAlternativeParameters(pass);
}

}  // namespace orvenal
