#include "app/commands/RunCommand.h"

#include "app/commands/StudyRun.h"

#include <QObject>

namespace orvenal {

QString RunCommand::getSummary() const
{
  return QObject::tr("run the study that a job file describes");
}

QString RunCommand::_getDescription() const
{
  return QObject::tr(
      "Reads the samples that the job names, prints their statistics, does what the job says -\n"
      "variograms, the fit of a model, cross-validation, kriging of a grid - and writes the\n"
      "files that it asks for. They are put in place when all of them are ready; a run that\n"
      "fails or is interrupted leaves nothing behind.");
}

void RunCommand::_run(const Job &job, Console &console) const
{
  StudyRun(job, job.getSteps(), console).run();
}

}  // namespace orvenal
