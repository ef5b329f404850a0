#include "app/commands/VariogramCommand.h"

#include "app/commands/StudyRun.h"

#include <QObject>

namespace orvenal {

QString VariogramCommand::getSummary() const
{
  return QObject::tr("compute the experimental variograms of a job");
}

QString VariogramCommand::_getDescription() const
{
  return QObject::tr(
      "Reads the samples that the job names and prints their experimental variograms as the job's\n"
      "\"variogram\" says, or in all directions together when it says nothing. The table and the\n"
      "picture that the job asks for are written, and no other file.");
}

void VariogramCommand::_run(const Job &job, Console &console) const
{
  StudyRun(job, {Step::VARIOGRAM}, console).run();
}

}  // namespace orvenal
