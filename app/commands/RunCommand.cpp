#include "app/commands/RunCommand.h"

#include "app/commands/StudyRun.h"
#include "app/console/Console.h"
#include "app/io/JobReader.h"
#include "app/io/UsageError.h"
#include "geos/base/NgcACalculator.h"

#include <QCommandLineParser>
#include <QObject>

namespace orvenal {

namespace {

/// The arguments of the command, taken apart; wrong ones are a UsageError.
void parse(QCommandLineParser &parser, const QStringList &arguments)
{
  parser.addOptions({{{QStringLiteral("q"), QStringLiteral("quiet")}, QString()},
                     {QStringLiteral("threads"), QString(), QStringLiteral("N")},
                     {QStringLiteral("memory"), QString(), QStringLiteral("SIZE")},
                     {{QStringLiteral("h"), QStringLiteral("help")}, QString()}});
  if (!parser.parse(QStringList(QStringLiteral("orvenal")) + arguments))
    throw UsageError(parser.errorText() + QObject::tr("\nSee: orvenal help run"));
}

void applyOptions(const QCommandLineParser &parser, Job &job)
{
  if (parser.isSet(QStringLiteral("threads"))) {
    bool isNumber = false;
    job.threads = parser.value(QStringLiteral("threads")).toInt(&isNumber);
    if (!isNumber || job.threads < 1 || job.threads > 1024)
      throw UsageError(
          QObject::tr("--threads: expected a whole number from 1 to 1024, found \"%1\"")
              .arg(parser.value(QStringLiteral("threads"))));
  }
  if (parser.isSet(QStringLiteral("memory"))) {
    job.memory = parseMemorySize(parser.value(QStringLiteral("memory")));
    if (job.memory <= 0)
      throw UsageError(
          QObject::tr("--memory: expected a size such as \"500 MB\" or 2GB, found \"%1\"")
              .arg(parser.value(QStringLiteral("memory"))));
  }
}

}  // namespace

QString RunCommand::getSummary() const
{
  return QObject::tr("run the study that a job file describes");
}

QString RunCommand::getHelp() const
{
  return QObject::tr(
      "usage: orvenal run [OPTIONS] JOB.json\n\n"
      "Reads the samples that the job names, prints their statistics, kriges the grid and writes\n"
      "the files that the job asks for. They are put in place when all of them are ready; a run\n"
      "that fails or is interrupted leaves nothing behind. docs/job.md describes the job.\n\n"
      "  -q, --quiet       print nothing but errors\n"
      "  --threads N       number of threads (default: all processors)\n"
      "  --memory SIZE     memory for the work, such as \"500 MB\" or 2GB (default: half of it)\n"
      "  -h, --help        show this text");
}

void RunCommand::run(const QStringList &arguments, Console &console) const
{
  QCommandLineParser parser;
  parse(parser, arguments);
  if (parser.isSet(QStringLiteral("help"))) {
    console.answer(getHelp());
    return;
  }
  const QStringList files = parser.positionalArguments();
  if (files.size() != 1)
    throw UsageError(files.isEmpty()
                         ? QObject::tr("the job file is missing\nSee: orvenal help run")
                         : QObject::tr("one job file at a time\nSee: orvenal help run"));
  console.setQuiet(parser.isSet(QStringLiteral("quiet")));
  Job job = readJob(files.first());
  applyOptions(parser, job);
  NgcACalculator::initMKLThreading();
  StudyRun(job, console).run();
}

}  // namespace orvenal
