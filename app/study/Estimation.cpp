#include "app/study/Estimation.h"

#include "app/study/Job.h"
#include "app/study/KrigingSetup.h"
#include "app/study/RunContext.h"
#include "app/study/Samples.h"
#include "app/study/Statistics.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgRotationConventionDefault.h"
#include "basic/geom/NbgRotationConventionGeologist.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/interval/NbiIntervalIntSmall.h"
#include "basic/provider/NbpMemoryProviderGridW.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/interpol/NgcKriging.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/interpol/NgmLgsNeighborhoodMoving.h"
#include "geos/vmodel/NgmLgsVModel.h"

#include <QObject>

namespace orvenal {

namespace {

struct GridFile
{
  QSharedPointer<NbpMemoryProviderGridW> provider;
  QString estimate;
  QString deviation;
  QString variance;
  QStringList extras;

  QString addOutput(const QString &name)
  {
    return provider->addEmptyVariableSimple(name, Nbd::TYPE_DOUBLE);
  }
};

GridFile makeGridFile(const Job &job, const GridInput &input)
{
  GridFile file;
  file.provider = QSharedPointer<NbpMemoryProviderGridW>::create(job.grid);
  file.estimate = file.addOutput(QStringLiteral("estimate"));
  file.deviation = file.addOutput(QStringLiteral("deviation"));
  file.variance = file.addOutput(QStringLiteral("variance"));
  for (const ExtraOutput &extra : job.kriging.extras)
    file.extras << file.addOutput(extra.key);
  for (auto column = input.values.begin(); column != input.values.end(); ++column)
    file.provider->addVariable(auxiliaryName(column.key()), column.value());
  NbdVariableSelection selection;
  selection.setVector(input.selected);
  if (!file.provider->setSelection(selection))
    throw NbeUserError(file.provider->getLastError());
  return file;
}

/// Model and ellipsoid vary alike.
void assignLocal(NgdDataSetGrid &output, const GridFile &file, const KrigingRequest &request)
{
  if (request.localAzimuth) {
    assignColumns(output, NgmLgsNeighborhoodMoving::getRoleRot1(), *file.provider,
                  {*request.localAzimuth});
    assignColumns(output, NgmLgsVModel::getRoleRot1(), *file.provider, {*request.localAzimuth});
  }
  if (request.localFactor) {
    assignColumns(output, NgmLgsNeighborhoodMoving::getRoleRadiusFactor(), *file.provider,
                  {*request.localFactor});
    assignColumns(output, NgmLgsVModel::getRoleRangeFactor(), *file.provider,
                  {*request.localFactor});
  }
}

NgdDataSetGrid makeOutput(const Job &job, const GridFile &file)
{
  NgdDataSetGrid output;
  output.setDataProvider(file.provider);
  output.assignVariable(Nbd::Role::V, file.estimate);
  output.assignVariable(Nbd::Role::STDEV, file.deviation);
  output.assignVariable(Nbd::Role::VARIANCE, file.variance);
  for (int i = 0; i < file.extras.size(); ++i)
    output.assignVariable(job.kriging.extras[i].role, file.extras[i]);
  assignColumns(output, Nbd::Role::EXTDRIFT, *file.provider, job.kriging.externalDrifts);
  assignColumns(output, Nbd::Role::LOCAL_MEAN, *file.provider, job.kriging.localMeans);
  assignColumns(output, Nbd::Role::COLLOCATED, *file.provider, job.kriging.collocated);
  assignLocal(output, file, job.kriging);
  return output;
}

void configureBlock(NgcKriging &kriging, const Job &job)
{
  if (!job.kriging.block)
    return;
  NgmBlock block(job.getNDimensions() > 2);
  block.setFromGridCell(job.grid);
  block.setDiscretizationPointsNumber(*job.kriging.block);
  kriging.setSupportBlock(block);
}

void configureFilter(NgcKriging &kriging, const KrigingRequest &request)
{
  kriging.setFilterNugget(request.filterNugget);
  kriging.setFilterDrifts(request.filterDrift);
  for (const int structure : request.filteredStructures)
    kriging.addFilterStructure(structure);
}

void configureSuperKriging(NgcKriging &kriging, const KrigingRequest &request)
{
  if (request.productionVolume == 0.)
    return;
  kriging.setSuperKriging(true);
  kriging.setProductionVolume(request.productionVolume);
  kriging.setTheoreticalMean(request.theoreticalMean);
}

void configureLocal(NgcKriging &kriging, const KrigingRequest &request)
{
  if (!request.localAzimuth && !request.localFactor)
    return;
  kriging.setEnableLGS(true);
  const int convention = request.localAngles == AngleConvention::MATHEMATICAL
                             ? NbgRotationConventionDefault::ID
                             : NbgRotationConventionGeologist::ID;
  kriging.setLGSNeighRotationConvention(true, convention);
  kriging.setLGSModelRotationConvention(true, convention);
}

void configureCollocated(NgcKriging &kriging, const KrigingRequest &request)
{
  for (int i = 0; i < request.collocated.size(); ++i)
    kriging.setCollocated(i + 1, auxiliaryName(request.collocated[i]));
}

void configure(NgcKriging &kriging, const Job &job,
               const QSharedPointer<NbpMemoryProviderPointsW> &samples, const GridFile &file)
{
  kriging.setInputDataSet(makeSampleDataSet(job, samples));
  kriging.setOutputDataSet(makeOutput(job, file));
  configureKriging(kriging, job);
  configureBlock(kriging, job);
  configureFilter(kriging, job.kriging);
  configureCollocated(kriging, job.kriging);
  configureSuperKriging(kriging, job.kriging);
  configureLocal(kriging, job.kriging);
  if (job.neighborhood)
    configureNeighborhood(kriging, *job.neighborhood);
  else
    kriging.setUsingUniqueNeighborhood();
}

std::vector<double> readAll(const NbpMemoryProviderGridW &provider, const QString &id)
{
  const NbgIntVector3D n = provider.getGridGeometry().getNodesNumber();
  NbdVariableDouble values;
  values.resizeAndFill(int(provider.getSampleCount()));
  if (!provider.readGrid(id, NbiIntervalIntSmall::fromLength(n.x()),
                         NbiIntervalIntSmall::fromLength(n.y()),
                         NbiIntervalIntSmall::fromLength(n.z()), values))
    throw NbeUserError(provider.getLastError());
  return values.getVector();
}

void addStatistics(const GridFile &file, const RunContext &context, Estimation &estimation)
{
  NgdDataSetGrid results;
  results.setDataProvider(file.provider);
  results.assignVariable(Nbd::Role::V, file.estimate);
  results.assignVariable(Nbd::Role::V, file.deviation);
  const QList<NbcStatMono> statistics = computeStatistics(results, context);
  estimation.estimate = statistics[0];
  estimation.deviation = statistics[1];
}

}  // namespace

Estimation krige(const Job &job, const QSharedPointer<NbpMemoryProviderPointsW> &samples,
                 GridInput input, const RunContext &context)
{
  const GridFile file = makeGridFile(job, input);
  NgcKriging kriging(QStringLiteral("KRIGING"));
  configure(kriging, job, samples, file);
  Estimation estimation;
  estimation.grid.geometry = job.grid;
  estimation.grid.selected = std::move(input.selected);
  context.run(kriging, QObject::tr("Kriging"), estimation.grid.getNSelected(),
              QObject::tr("nodes"));
  estimation.threads = kriging.getNThread();
  estimation.nFailures = kriging.getNumberOfInterpolErrors();
  estimation.failures = kriging.getInterpolErrorsMessage().trimmed();
  estimation.grid.estimate = readAll(*file.provider, file.estimate);
  estimation.grid.deviation = readAll(*file.provider, file.deviation);
  estimation.grid.variance = readAll(*file.provider, file.variance);
  for (int i = 0; i < file.extras.size(); ++i)
    estimation.grid.extras.push_back({job.kriging.extras[i].key, job.kriging.extras[i].label,
                                      readAll(*file.provider, file.extras[i])});
  addStatistics(file, context, estimation);
  return estimation;
}

}  // namespace orvenal
