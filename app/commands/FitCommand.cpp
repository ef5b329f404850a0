#include "app/commands/FitCommand.h"

#include "app/commands/JobDraft.h"
#include "app/job/JobError.h"

#include <QJsonObject>
#include <QObject>

namespace orvenal {

QString FitCommand::getSummary() const
{
  return QObject::tr("fit a variogram model to experimental variograms");
}

QString FitCommand::getDescription() const
{
  return QObject::tr(
      "Computes experimental variograms and fits a model to them: the structures of --fit or of "
      "the job's \"fit\", a nugget and, where there are several directions, anisotropy. The model "
      "is printed. Files that the job asks for besides those of variograms and fit are not "
      "written.");
}

QList<QStringList> FitCommand::getExamples() const
{
  return {{QStringLiteral("orvenal fit meuse.csv --x x --y y --variable zinc --transform log "
                          "--lag 100 --lags 15 --fitted-model model.json"),
           QObject::tr("a spherical structure and a nugget, written as a file of its own")},
          {QStringLiteral("orvenal fit meuse.csv --x x --y y --variable zinc --transform log "
                          "--fit Exponential,Spherical"),
           QObject::tr("two structures, of which the fit keeps those that help")}};
}

QList<JobOption::Group> FitCommand::_getGroups() const
{
  return {JobOption::DATA, JobOption::VARIABLE, JobOption::VARIOGRAM, JobOption::FIT,
          JobOption::OUTPUT};
}

QStringList FitCommand::_getOutputs() const
{
  return {QStringLiteral("variogram"), QStringLiteral("fit")};
}

void FitCommand::_complete(JobDraft &draft) const
{
  if (draft.isOfData())
    draft.setDefault(QStringLiteral("fit"), QJsonObject());
  if (draft.isGiven(QStringLiteral("fit")) || draft.isOfData())
    draft.setDefault(QStringLiteral("variogram"), QJsonObject());
}

Steps FitCommand::_getSteps(const Job &job) const
{
  if (!job.fit)
    throw JobError(job.file, QStringLiteral("fit"), QObject::tr("missing"));
  return {Step::VARIOGRAM, Step::FIT};
}

}  // namespace orvenal
