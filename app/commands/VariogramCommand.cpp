#include "app/commands/VariogramCommand.h"

#include "app/commands/JobDraft.h"

#include <QJsonObject>
#include <QObject>

namespace orvenal {

QString VariogramCommand::getSummary() const
{
  return QObject::tr("compute experimental variograms");
}

QString VariogramCommand::getDescription() const
{
  return QObject::tr(
      "Reads samples and prints their experimental variograms, as a job or the options say, or in "
      "all directions together. Files that the job asks for besides those of its variograms are "
      "not written.");
}

QList<QStringList> VariogramCommand::getExamples() const
{
  return {
      {QStringLiteral("orvenal variogram meuse.csv --x x --y y --variable zinc --transform log"),
       QObject::tr("of all pairs, with lags that suit the samples")},
      {QStringLiteral("orvenal variogram meuse.csv --x x --y y --variable zinc --transform log "
                      "--lag 100 --lags 15 --directions 4 --variogram-picture variogram.png"),
       QObject::tr("in four directions, with a picture")}};
}

QList<JobOption::Group> VariogramCommand::_getGroups() const
{
  return {JobOption::DATA, JobOption::VARIABLE, JobOption::VARIOGRAM, JobOption::MODEL,
          JobOption::OUTPUT};
}

void VariogramCommand::_complete(JobDraft &draft) const
{
  draft.setDefault(QStringLiteral("variogram"), QJsonObject());
}

Steps VariogramCommand::_getSteps(const Job &) const
{
  return {Step::VARIOGRAM};
}

}  // namespace orvenal
