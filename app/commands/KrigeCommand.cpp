#include "app/commands/KrigeCommand.h"

#include "app/commands/DraftCompletion.h"
#include "app/commands/JobDraft.h"
#include "app/job/JobError.h"

#include <QObject>

namespace orvenal {

QString KrigeCommand::getSummary() const
{
  return QObject::tr("krige a grid");
}

QString KrigeCommand::getDescription() const
{
  return QObject::tr(
      "Estimates the grid of a job or of the options from the samples, and writes it. A model "
      "that is to be fitted is fitted before. With --cell alone the grid is laid over the samples, "
      "and printed. Files that the job asks for besides those of the grid are not written.");
}

QList<QStringList> KrigeCommand::getExamples() const
{
  return {{QStringLiteral("orvenal krige job.json --maximum 32"),
           QObject::tr("the grid of the job with more samples around each node")},
          {QStringLiteral("orvenal krige meuse.csv --x x --y y --variable zinc --transform log "
                          "--fit Spherical --radius 5000 --maximum 16 --cell 40 --out zinc.csv "
                          "--map zinc.png"),
           QObject::tr("a grid over the samples with a fitted model")},
          {QStringLiteral("orvenal krige meuse.csv --x x --y y --variable zinc --transform log "
                          "--structure \"Spherical 0.59 897\" --nugget 0.05 --unique "
                          "--grid-origin 178460,329620 --cell 40 --nodes 78,104 "
                          "--mask meuse_grid.csv --out zinc.csv --report zinc.html"),
           QObject::tr("with a given model and grid, all samples, and a report")}};
}

QList<JobOption::Group> KrigeCommand::_getGroups() const
{
  return {JobOption::DATA,    JobOption::VARIABLE, JobOption::VARIOGRAM,
          JobOption::FIT,     JobOption::MODEL,    JobOption::NEIGHBORHOOD,
          JobOption::KRIGING, JobOption::GRID,     JobOption::OUTPUT};
}

QStringList KrigeCommand::_getOutputs() const
{
  return {QStringLiteral("grid"), QStringLiteral("maps")};
}

void KrigeCommand::_complete(JobDraft &draft) const
{
  completeFit(draft);
  if (draft.isOfData() && !draft.has(QStringLiteral("grid.cell")))
    throw UsageError(QObject::tr("--cell is missing; it is the size of the grid's cells"));
  checkModelAndNeighborhood(draft);
}

Steps KrigeCommand::_getSteps(const Job &job) const
{
  if (!job.hasGrid)
    throw JobError(job.file, QStringLiteral("grid"), QObject::tr("missing"));
  Steps steps = {Step::KRIGING};
  if (job.fit)
    steps.insert({Step::VARIOGRAM, Step::FIT});
  return steps;
}

}  // namespace orvenal
