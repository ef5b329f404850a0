#include "app/commands/JobCommand.h"

#include "app/console/Console.h"
#include "app/io/JobReader.h"
#include "app/io/UsageError.h"
#include "app/study/Job.h"
#include "geos/base/NgcACalculator.h"

#include <QCommandLineParser>
#include <QObject>

namespace orvenal {

namespace {

/// The arguments of the command, taken apart; wrong ones are a UsageError.
void parse(QCommandLineParser &parser, const QStringList &arguments, const QString &name)
{
  parser.addOptions({{{QStringLiteral("q"), QStringLiteral("quiet")}, QString()},
                     {QStringLiteral("threads"), QString(), QStringLiteral("N")},
                     {QStringLiteral("memory"), QString(), QStringLiteral("SIZE")},
                     {{QStringLiteral("h"), QStringLiteral("help")}, QString()}});
  if (!parser.parse(QStringList(QStringLiteral("orvenal")) + arguments))
    throw UsageError(parser.errorText() + QObject::tr("\nSee: orvenal help %1").arg(name));
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

QString JobCommand::getHelp() const
{
  return QObject::tr(
             "usage: orvenal %1 [OPTIONS] JOB.json\n\n%2\nThe job is described by: orvenal help job\n\n"
             "  -q, --quiet       print nothing but errors\n"
             "  --threads N       number of threads (default: all processors)\n"
             "  --memory SIZE     memory for the work, such as \"500 MB\" or 2GB (default: half of "
             "it)\n"
             "  -h, --help        show this text")
      .arg(getName(), _getDescription());
}

void JobCommand::run(const QStringList &arguments, Console &console) const
{
  QCommandLineParser parser;
  parse(parser, arguments, getName());
  if (parser.isSet(QStringLiteral("help"))) {
    console.answer(getHelp());
    return;
  }
  const QStringList files = parser.positionalArguments();
  if (files.size() != 1)
    throw UsageError((files.isEmpty() ? QObject::tr("the job file is missing")
                                      : QObject::tr("one job file at a time")) +
                     QObject::tr("\nSee: orvenal help %1").arg(getName()));
  console.setQuiet(parser.isSet(QStringLiteral("quiet")));
  Job job = readJob(files.first());
  applyOptions(parser, job);
  NgcACalculator::initMKLThreading();
  _run(job, console);
}

}  // namespace orvenal
