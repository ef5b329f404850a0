#include "app/commands/JobCommand.h"

#include "app/base/UsageError.h"
#include "app/commands/CommandParser.h"
#include "app/commands/JobDraft.h"
#include "app/console/Console.h"
#include "app/job/JobReader.h"
#include "geos/base/NgcACalculator.h"

#include <QObject>

namespace orvenal {

namespace {

QString name(const char *text)
{
  return QLatin1String(text);
}

CommandOptions ownOptions()
{
  CommandOption set;
  set.name = name("set");
  set.value = name("PATH=VALUE");
  set.help = QObject::tr("sets any member of the job, such as neighborhood.maximum=32");
  set.isRepeatable = true;
  CommandOption overwrite;
  overwrite.name = name("overwrite");
  overwrite.help = QObject::tr("replace files of an earlier run");
  CommandOption json;
  json.name = name("json");
  json.help = QObject::tr("print the results as JSON, see: orvenal help results");
  return {set, overwrite, json};
}

int readThreads(const QString &text)
{
  bool isNumber = false;
  const int threads = text.toInt(&isNumber);
  if (!isNumber || threads < 1 || threads > 1024)
    throw UsageError(
        QObject::tr("--threads: expected a whole number from 1 to 1024, found \"%1\"").arg(text));
  return threads;
}

qint64 readMemory(const QString &text)
{
  const qint64 memory = parseMemorySize(text);
  if (memory <= 0)
    throw UsageError(
        QObject::tr("--memory: expected a size such as \"500 MB\" or 2GB (KB to TB), found \"%1\"")
            .arg(text));
  return memory;
}

RunSettings readSettings(const QCommandLineParser &parser)
{
  RunSettings settings;
  if (parser.isSet(name("threads")))
    settings.threads = readThreads(parser.value(name("threads")));
  if (parser.isSet(name("memory")))
    settings.memory = readMemory(parser.value(name("memory")));
  settings.overwrite = parser.isSet(name("overwrite"));
  settings.json = parser.isSet(name("json"));
  return settings;
}

}  // namespace

QString JobCommand::getArguments() const
{
  return _takesData() ? QObject::tr("[OPTIONS] JOB.json|DATA") : QObject::tr("[OPTIONS] JOB.json");
}

CommandOptions JobCommand::getOptions() const
{
  return jobOptionsOf(_getGroups()) + ownOptions() + commonOptions();
}

JobDraft JobCommand::_makeDraft(const QCommandLineParser &parser) const
{
  const QStringList files = parser.positionalArguments();
  if (files.isEmpty())
    failUsage(*this, _takesData() ? QObject::tr("the job file or the data file is missing")
                                  : QObject::tr("the job file is missing"));
  if (files.size() > 1)
    failUsage(*this, QObject::tr("one file at a time, found \"%1\"")
                         .arg(files.join(QStringLiteral("\" and \""))));
  const bool isOfData = _takesData() && !isJobFile(files.first());
  JobDraft draft = isOfData ? JobDraft::ofData(files.first()) : JobDraft::ofJob(files.first());
  _prepare(draft);
  applyJobOptions(parser, _getGroups(), draft);
  for (const QString &assignment : parser.values(name("set")))
    draft.assign(assignment);
  return draft;
}

void JobCommand::run(const QStringList &arguments, Console &console) const
{
  QCommandLineParser parser;
  parseArguments(*this, arguments, parser);
  if (parser.isSet(name("help"))) {
    console.answer(getHelp());
    return;
  }
  const RunSettings settings = readSettings(parser);
  console.setQuiet(parser.isSet(name("quiet")));
  console.setResultsOnly(settings.json);
  JobDraft draft = _makeDraft(parser);
  NgcACalculator::initMKLThreading();
  _execute(draft, settings, console);
}

}  // namespace orvenal
