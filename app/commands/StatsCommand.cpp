#include "app/commands/StatsCommand.h"

#include "app/base/NumberText.h"
#include "app/base/UsageError.h"
#include "app/commands/DraftCompletion.h"
#include "app/commands/JobDraft.h"
#include "app/console/Console.h"
#include "app/report/ResultJson.h"
#include "app/report/StatisticsText.h"
#include "app/study/RunContext.h"
#include "app/study/TableStatistics.h"
#include "app/study/TableSummary.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QObject>

namespace orvenal {

namespace {

void warnOfTexts(const ColumnSummary &column, Console &console)
{
  console.warn(QObject::tr("\"%1\" is left out, as %2 of its values are texts, such as \"%3\"; "
                           "--undefined takes a text for an undefined value")
                   .arg(column.name, groupedText(column.nTexts), column.example.simplified()));
}

/// All columns of numbers but those that are named as coordinates.
QList<JobVariable> numericColumns(JobTable &table, Console &console)
{
  const TableSummary summary = summarizeTable(table.file, table.shown, table.format);
  if (summary.nRecords == 0)
    TableReader::failEmpty(table.shown);
  table.format = summary.format;
  QList<JobVariable> variables;
  for (const ColumnSummary &column : summary.columns) {
    const bool isCoordinate = QStringList{table.x, table.y, table.z}.contains(column.name);
    if (column.getType() == ColumnSummary::MIXED && !isCoordinate)
      warnOfTexts(column, console);
    if (column.getType() != ColumnSummary::NUMBERS || isCoordinate)
      continue;
    JobVariable variable;
    variable.column = column.name;
    variable.name = column.name;
    variables << variable;
  }
  if (variables.isEmpty())
    throw NbeUserError(QObject::tr("%1: there is no column of numbers").arg(table.shown));
  return variables;
}

QJsonObject toJson(const TableStatistics &statistics, const Job &job, const Console &console)
{
  QJsonObject object = tableStatisticsToJson(statistics);
  object.insert(QStringLiteral("data"),
                QJsonObject({{QStringLiteral("file"), job.data.file},
                             {QStringLiteral("samples"), statistics.nRecords}}));
  object.insert(QStringLiteral("warnings"), QJsonArray::fromStringList(console.getWarnings()));
  object.insert(QStringLiteral("versions"), versionsToJson());
  return object;
}

}  // namespace

QString StatsCommand::getSummary() const
{
  return QObject::tr("print statistics of variables, and their correlations");
}

QString StatsCommand::getDescription() const
{
  return QObject::tr(
      "Prints counts, quartiles, mean, standard deviation (of the population, divided by n) and "
      "skewness of the variables of a job, of those that --variable names, or of all columns of "
      "numbers besides the coordinates, and the correlations between them.");
}

QList<QStringList> StatsCommand::getExamples() const
{
  return {
      {QStringLiteral("orvenal stats meuse.csv"), QObject::tr("of all columns of numbers")},
      {QStringLiteral("orvenal stats meuse.csv --variable zinc --variable lead --transform log"),
       QObject::tr("of two logarithms")}};
}

QList<JobOption::Group> StatsCommand::_getGroups() const
{
  return {JobOption::DATA, JobOption::VARIABLE};
}

void StatsCommand::_execute(JobDraft &draft, const RunSettings &settings, Console &console) const
{
  chooseCoordinates(draft);
  Job job = draft.isOfData() ? draft.readData() : draft.read();
  const QList<JobVariable> variables = job.variable.column.isEmpty()
                                           ? numericColumns(job.data, console)
                                           : QList<JobVariable>{job.variable} + job.covariates;
  const RunContext context{console, settings.threads > 0 ? settings.threads : job.threads,
                           settings.memory > 0 ? settings.memory : job.memory};
  const TableStatistics statistics = computeTableStatistics(job.data, variables, context);
  console.print(
      QObject::tr("%1: %2 samples\n").arg(job.data.shown, groupedText(statistics.nRecords)));
  console.print(statisticsText(statistics, Console::getWidth()));
  if (settings.json)
    console.answer(
        QString::fromUtf8(QJsonDocument(toJson(statistics, job, console)).toJson()).trimmed());
}

}  // namespace orvenal
