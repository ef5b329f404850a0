#include "app/commands/RunCommand.h"

#include <QObject>

namespace orvenal {

QString RunCommand::getSummary() const
{
  return QObject::tr("run the study that a job file describes");
}

QString RunCommand::getDescription() const
{
  return QObject::tr(
      "Reads the samples that the job names, prints their statistics, does what the job says - "
      "variograms, the fit of a model, cross-validation, kriging of a grid - and writes the "
      "files that it asks for. They are put in place when all of them are ready; a run that "
      "fails or is interrupted leaves nothing behind.\n\n"
      "orvenal help job describes the job; orvenal init makes one for a data file.");
}

QList<QStringList> RunCommand::getExamples() const
{
  return {{QStringLiteral("orvenal run job.json"), QObject::tr("the study of the job")},
          {QStringLiteral("orvenal run job.json --set neighborhood.maximum=32 --report r.html"),
           QObject::tr("with more samples around each node, and a report elsewhere")}};
}

}  // namespace orvenal
