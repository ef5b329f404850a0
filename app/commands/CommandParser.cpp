#include "app/commands/CommandParser.h"

#include "app/base/Suggestion.h"
#include "app/base/UsageError.h"
#include "app/commands/Command.h"

#include <QObject>

namespace orvenal {

namespace {

CommandOption makeOption(const char *letter, const char *name, const char *value,
                         const QString &help, const QString &fallback = QString())
{
  CommandOption option;
  option.letter = QLatin1String(letter);
  option.name = QLatin1String(name);
  option.value = QLatin1String(value);
  option.help = help;
  option.fallback = fallback;
  return option;
}

QCommandLineOption toParserOption(const CommandOption &option)
{
  QStringList names;
  if (!option.letter.isEmpty())
    names << option.letter;
  return QCommandLineOption(names << option.name, QString(), option.value);
}

QString dashed(const QString &name)
{
  return (name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name;
}

void refuseUnknown(const Command &command, const QString &name)
{
  QStringList names;
  for (const CommandOption &option : command.getOptions())
    names << dashed(option.name);
  failUsage(
      command,
      QObject::tr("there is no option %1%2").arg(dashed(name), didYouMean(dashed(name), names)));
}

}  // namespace

void parseArguments(const Command &command, const QStringList &arguments,
                    QCommandLineParser &parser)
{
  for (const CommandOption &option : command.getOptions())
    parser.addOption(toParserOption(option));
  parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
  const bool isRight = parser.parse(QStringList(QStringLiteral("orvenal")) + arguments);
  if (!parser.unknownOptionNames().isEmpty())
    refuseUnknown(command, parser.unknownOptionNames().first());
  if (!isRight)
    failUsage(command, parser.errorText());
}

void failUsage(const Command &command, const QString &message)
{
  throw UsageError(message + QObject::tr("\nSee: orvenal help %1").arg(command.getName()));
}

CommandOptions commonOptions()
{
  return {makeOption("q", "quiet", "", QObject::tr("print nothing but errors; no warnings either")),
          makeOption("", "threads", "N", QObject::tr("number of threads"),
                     QObject::tr("all processors")),
          makeOption("", "memory", "SIZE",
                     QObject::tr("memory for the work, such as \"500 MB\" or 2GB"),
                     QObject::tr("half of what there is")),
          helpOption()};
}

CommandOption helpOption()
{
  return makeOption("h", "help", "", QObject::tr("show this text"));
}

}  // namespace orvenal
