#include "app/commands/InitCommand.h"

#include "app/base/UsageError.h"
#include "app/commands/CommandParser.h"
#include "app/commands/JobDraft.h"
#include "app/commands/JobOptions.h"
#include "app/console/Console.h"
#include "app/io/OutputFiles.h"
#include "app/job/JobReader.h"
#include "app/study/JobProposal.h"

#include <QDir>
#include <QFileInfo>
#include <QObject>

namespace orvenal {

namespace {

QString name(const char *text)
{
  return QLatin1String(text);
}

CommandOptions ownOptions()
{
  CommandOption output;
  output.letter = name("o");
  output.name = name("output");
  output.value = name("FILE");
  output.help = QObject::tr("where to write the job; - prints it");
  output.fallback = name("job.json");
  CommandOption overwrite;
  overwrite.name = name("overwrite");
  overwrite.help = QObject::tr("replace a file that exists");
  return {output, overwrite};
}

/// Options of jobs that say more of the data than can be guessed.
CommandOptions dataOptions()
{
  CommandOptions options;
  for (CommandOption option : jobOptionsOf({JobOption::DATA, JobOption::VARIABLE})) {
    if (!QStringList{name("x"), name("y"), name("z"), name("variable")}.contains(option.name))
      continue;
    option.isRepeatable = false;
    option.fallback = QObject::tr("a guess");
    options << option;
  }
  return options;
}

JobWishes readWishes(const QCommandLineParser &parser)
{
  return {parser.value(name("x")), parser.value(name("y")), parser.value(name("z")),
          parser.value(name("variable"))};
}

/// A job is no data file, although its ending may be one.
void refuseJob(const QString &file)
{
  if (!isJobFile(file) || !QFileInfo(file).isFile())
    return;
  try {
    if (!parseJobRoot(file, readJobText(file)).contains(name("data")))
      return;
  } catch (const UsageError &) {
    return;  // the reader of tables says what it is
  }
  throw UsageError(QObject::tr("%1 is a job already; to run its study: orvenal run %1").arg(file));
}

void write(const QString &path, const QString &text, bool overwrite)
{
  if (QFileInfo(path).isFile() && !overwrite)
    throw NbeUserError(
        QObject::tr("%1 exists; --overwrite replaces it, -o names another file").arg(path));
  OutputFiles files(overwrite ? OutputFiles::REPLACE : OutputFiles::REFUSE);
  const QString file = QDir::current().absoluteFilePath(path);
  files.reserve({file});
  files.write(file, text.toUtf8());
  files.commit();
}

}  // namespace

QString InitCommand::getSummary() const
{
  return QObject::tr("write a job to start with for a data file");
}

QString InitCommand::getArguments() const
{
  return QObject::tr("[OPTIONS] DATA");
}

QString InitCommand::getDescription() const
{
  return QObject::tr(
      "Reads a data file and writes a job for it that can be run at once: coordinates and variable "
      "by their names and values, a grid over the samples, variogram, fit, moving neighborhood, "
      "cross-validation, files and report. Comments in the job say why, and what to look at.");
}

CommandOptions InitCommand::getOptions() const
{
  return dataOptions() + ownOptions() << commonOptions().first() << helpOption();
}

QList<QStringList> InitCommand::getExamples() const
{
  return {{QStringLiteral("orvenal init meuse.csv -o study.json"),
           QObject::tr("a job for the samples of meuse.csv")},
          {QStringLiteral("orvenal init meuse.csv --variable lead -o -"),
           QObject::tr("the job of another variable, printed")}};
}

void InitCommand::run(const QStringList &arguments, Console &console) const
{
  QCommandLineParser parser;
  parseArguments(*this, arguments, parser);
  if (parser.isSet(name("help"))) {
    console.answer(getHelp());
    return;
  }
  const QStringList files = parser.positionalArguments();
  if (files.size() != 1)
    failUsage(*this, files.isEmpty() ? QObject::tr("the data file is missing")
                                     : QObject::tr("one data file at a time"));
  refuseJob(files.first());
  console.setQuiet(parser.isSet(name("quiet")));
  const QString output =
      parser.isSet(name("output")) ? parser.value(name("output")) : name("job.json");
  const bool isPrinted = output == name("-");
  const QDir folder = isPrinted ? QDir::current() : QFileInfo(output).absoluteDir();
  const QString text = proposeJob(files.first(), folder, readWishes(parser), console);
  if (isPrinted) {
    console.answer(text.trimmed());
    return;
  }
  write(output, text, parser.isSet(name("overwrite")));
  const bool isOneWord = !output.contains(' ');
  const QString word = isOneWord ? output : '"' + output + '"';
  console.print(QObject::tr("written: %1\nLook at it, then: orvenal run %2").arg(output, word));
}

}  // namespace orvenal
