#include "app/commands/FitCommand.h"

#include "app/commands/StudyRun.h"
#include "app/io/UsageError.h"

#include <QObject>

namespace orvenal {

QString FitCommand::getSummary() const
{
  return QObject::tr("fit a variogram model to the variograms of a job");
}

QString FitCommand::_getDescription() const
{
  return QObject::tr(
      "Computes the experimental variograms of the job and fits a model of the structures\n"
      "that its \"fit\" names, with a nugget and, where there are several directions,\n"
      "anisotropy. The model is printed; table, pictures and the model's file that the job\n"
      "asks for are written, and no other file.");
}

void FitCommand::_run(const Job &job, Console &console) const
{
  if (!job.fit)
    throw UsageError(QObject::tr("%1: fit: missing").arg(job.file));
  StudyRun(job, {Step::VARIOGRAM, Step::FIT}, console).run();
}

}  // namespace orvenal
