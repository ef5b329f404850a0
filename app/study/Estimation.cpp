#include "app/study/Estimation.h"

#include "app/study/Job.h"
#include "app/study/RunContext.h"
#include "app/study/Samples.h"
#include "app/study/Statistics.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeUserError.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/interval/NbiIntervalIntSmall.h"
#include "basic/provider/NbpMemoryProviderGridW.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/interpol/NgcKriging.h"

#include <QObject>

namespace orvenal {

namespace {

struct GridFile
{
  QSharedPointer<NbpMemoryProviderGridW> provider;
  QString estimate;
  QString deviation;
  QString variance;

  QString addOutput(const char *name)
  {
    return provider->addEmptyVariableSimple(QString::fromLatin1(name), Nbd::TYPE_DOUBLE);
  }
};

GridFile makeGridFile(const NbgGeomGrid &geometry, const std::vector<unsigned char> &selected)
{
  GridFile file;
  file.provider = QSharedPointer<NbpMemoryProviderGridW>::create(geometry);
  file.estimate = file.addOutput("estimate");
  file.deviation = file.addOutput("deviation");
  file.variance = file.addOutput("variance");
  NbdVariableSelection selection;
  selection.setVector(selected);
  if (!file.provider->setSelection(selection))
    throw NbeUserError(file.provider->getLastError());
  return file;
}

void configure(NgcKriging &kriging, const Job &job,
               const QSharedPointer<NbpMemoryProviderPointsW> &samples, const GridFile &file)
{
  NgdDataSetPoints input;
  input.setDataProvider(samples);
  input.assignVariable(Nbd::Role::V, samples->getIdFromName(sampleValueName()));
  NgdDataSetGrid output;
  output.setDataProvider(file.provider);
  output.assignVariable(Nbd::Role::V, file.estimate);
  output.assignVariable(Nbd::Role::STDEV, file.deviation);
  output.assignVariable(Nbd::Role::VARIANCE, file.variance);
  kriging.setInputDataSet(input);
  kriging.setOutputDataSet(output);
  kriging.setVarioModel(job.model);
  if (job.neighborhood)
    kriging.setUsingMovingNeighborhood(*job.neighborhood);
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
                 std::vector<unsigned char> selected, const RunContext &context)
{
  const GridFile file = makeGridFile(job.grid, selected);
  NgcKriging kriging(QStringLiteral("KRIGING"));
  configure(kriging, job, samples, file);
  Estimation estimation;
  estimation.grid.geometry = job.grid;
  estimation.grid.selected = std::move(selected);
  context.run(kriging, QObject::tr("Kriging"), estimation.grid.getNSelected(),
              QObject::tr("nodes"));
  estimation.threads = kriging.getNThread();
  estimation.nFailures = kriging.getNumberOfInterpolErrors();
  estimation.failures = kriging.getInterpolErrorsMessage().trimmed();
  estimation.grid.estimate = readAll(*file.provider, file.estimate);
  estimation.grid.deviation = readAll(*file.provider, file.deviation);
  estimation.grid.variance = readAll(*file.provider, file.variance);
  addStatistics(file, context, estimation);
  return estimation;
}

}  // namespace orvenal
