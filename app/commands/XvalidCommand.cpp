#include "app/commands/XvalidCommand.h"

#include "app/commands/StudyRun.h"
#include "app/io/UsageError.h"

#include <QObject>

namespace orvenal {

QString XvalidCommand::getSummary() const
{
  return QObject::tr("krige every sample of a job from the others");
}

QString XvalidCommand::_getDescription() const
{
  return QObject::tr(
      "Kriges every sample from the others with the model, the neighborhood and the variant of "
      "the\n"
      "job and prints how far the estimates are from the values. \"crossValidation\" in the job "
      "says\n"
      "what is left out around a sample; without it, the sample alone. The table and the picture\n"
      "that the job asks for are written, and no other file.");
}

void XvalidCommand::_run(const Job &job, Console &console) const
{
  if (!job.crossValidation && !job.hasGrid)
    throw UsageError(QObject::tr("%1: crossValidation: missing").arg(job.file));
  Job validated = job;
  if (!validated.crossValidation)
    validated.crossValidation = CrossValidationRequest();
  validated.keepOutputsOf({Step::CROSS_VALIDATION});
  Steps steps = {Step::CROSS_VALIDATION};
  if (job.fit)
    steps.insert({Step::VARIOGRAM, Step::FIT});
  StudyRun(validated, steps, console).run();
}

}  // namespace orvenal
