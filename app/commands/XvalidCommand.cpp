#include "app/commands/XvalidCommand.h"

#include "app/commands/DraftCompletion.h"
#include "app/commands/JobDraft.h"

#include <QJsonObject>
#include <QObject>

namespace orvenal {

QString XvalidCommand::getSummary() const
{
  return QObject::tr("krige every sample from the others");
}

QString XvalidCommand::getDescription() const
{
  return QObject::tr(
      "Kriges every sample from the others with the model, the neighborhood and the variant of a "
      "job or of the options, and prints how far the estimates are from the values. Without "
      "\"crossValidation\" in the job or --leave-out the sample alone is left out. Files that the "
      "job asks for besides those of its cross-validation are not written.");
}

QList<QStringList> XvalidCommand::getExamples() const
{
  return {{QStringLiteral("orvenal xvalid job.json --maximum 8"),
           QObject::tr("how good the job is with fewer samples")},
          {QStringLiteral("orvenal xvalid meuse.csv --x x --y y --variable zinc --transform log "
                          "--fit Spherical --unique --xvalid-table errors.csv"),
           QObject::tr("a fitted model with all samples, and the errors as a table")}};
}

QList<JobOption::Group> XvalidCommand::_getGroups() const
{
  return {
      JobOption::DATA,  JobOption::VARIABLE,     JobOption::VARIOGRAM, JobOption::FIT,
      JobOption::MODEL, JobOption::NEIGHBORHOOD, JobOption::KRIGING,   JobOption::CROSS_VALIDATION,
      JobOption::OUTPUT};
}

void XvalidCommand::_complete(JobDraft &draft) const
{
  completeFit(draft);
  draft.setDefault(QStringLiteral("crossValidation"), QJsonObject());
  checkModelAndNeighborhood(draft);
}

Steps XvalidCommand::_getSteps(const Job &job) const
{
  Steps steps = {Step::CROSS_VALIDATION};
  if (job.fit)
    steps.insert({Step::VARIOGRAM, Step::FIT});
  return steps;
}

}  // namespace orvenal
