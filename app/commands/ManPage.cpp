#include "app/commands/ManPage.h"

#include "app/base/ProgramVersion.h"
#include "app/commands/Command.h"
#include "app/commands/Program.h"
#include "app/console/TextTable.h"

#include <QDateTime>
#include <QObject>
#include <QRegularExpression>

namespace orvenal {

namespace {

/// Text in which roff finds nothing of its own: hyphens and quotes as they are typed, and no line
/// that begins with a control character.
QString escaped(const QString &text)
{
  QString result = text;
  result.replace('\\', QLatin1String("\\e"));
  result.replace('-', QLatin1String("\\-"));
  result.replace('\'', QLatin1String("\\(aq"));
  result.replace('~', QLatin1String("\\(ti"));
  result.replace('^', QLatin1String("\\(ha"));
  result.replace(QRegularExpression(QStringLiteral("(?m)^\\.")), QStringLiteral("\\&."));
  return result;
}

/// Running text: short lines, and a new sentence on a new one.
QString prose(const QString &text)
{
  constexpr int lineWidth = 64;  // escapes make it longer
  static const QRegularExpression endOfSentence(QStringLiteral("(?<=[a-z)\"][.;:]) (?=[A-Z])"));
  QStringList lines;
  for (const QString &sentence : text.simplified().split(endOfSentence))
    lines << wrapped(sentence, lineWidth);
  return escaped(lines.join('\n'));
}

/// A command that goes on over several lines.
QString commandText(const QString &command)
{
  constexpr int lineWidth = 60;
  return escaped(commandLines(command, lineWidth).join(QStringLiteral(" \\\n  ")));
}

QString paragraphs(const QString &text)
{
  QStringList parts;
  for (const QString &part : text.split(QStringLiteral("\n\n")))
    parts << prose(part);
  return parts.join(QStringLiteral("\n.PP\n")) + '\n';
}

QString optionEntry(const CommandOption &option)
{
  QString names = option.letter.isEmpty()
                      ? QString()
                      : QStringLiteral("\\fB\\-%1\\fR, ").arg(escaped(option.letter));
  names += QStringLiteral("\\fB\\-\\-%1\\fR").arg(escaped(option.name));
  if (!option.value.isEmpty())
    names += QStringLiteral(" \\fI%1\\fR").arg(escaped(option.value));
  QString help = option.help;
  help[0] = help[0].toUpper();
  if (!option.choices.isEmpty())
    help += QObject::tr("; one of %1").arg(option.choices.join(QStringLiteral(", ")));
  if (!option.fallback.isEmpty())
    help += QObject::tr(" (default: %1)").arg(option.fallback);
  if (option.isRepeatable)
    help += QObject::tr(" (may be repeated)");
  return QStringLiteral(".TP\n%1\n%2.\n").arg(names, prose(help));
}

QString options(const CommandOptions &list)
{
  QString text;
  QString group;
  for (const CommandOption &option : list) {
    if (text.isEmpty() || option.group != group)
      text += QStringLiteral(".PP\n%1:\n")
                  .arg(escaped(option.group.isEmpty() ? QObject::tr("Options") : option.group));
    group = option.group;
    text += optionEntry(option);
  }
  return text;
}

QString examples(const QList<QStringList> &list)
{
  QString text;
  for (const QStringList &example : list)
    text +=
        QStringLiteral(".PP\n%1:\n.PP\n.RS 4\n.EX\n%2\n.EE\n.RE\n")
            .arg(prose(example[1].left(1).toUpper() + example[1].mid(1)), commandText(example[0]));
  return text;
}

/// The date of the page; builds that have to give the same bytes again set SOURCE_DATE_EPOCH.
QString today()
{
  bool isSet = false;
  const qint64 seconds = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong(&isSet);
  return (isSet ? QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC) : QDateTime::currentDateTimeUtc())
      .date()
      .toString(Qt::ISODate);
}

QString commandPart(const Command &command)
{
  return QStringLiteral(".SS \"orvenal %1 %2\"\n")
             .arg(command.getName(), command.getArguments())
             .replace(QStringLiteral(" \"\n"), QStringLiteral("\"\n")) +
         paragraphs(command.getDescription()) + options(command.getOptions()) +
         examples(command.getExamples());
}

}  // namespace

QString manPage(const Program &program)
{
  QString text = QStringLiteral(".TH ORVENAL 1 \"%1\" \"Orvenal %2\" \"%3\"\n")
                     .arg(today(), programVersion(), QObject::tr("User Commands"));
  text += QObject::tr(
      ".SH NAME\norvenal \\- geostatistics from samples in a file to an estimated grid\n"
      ".SH SYNOPSIS\n.B orvenal\n.I COMMAND\n.RI [ OPTIONS ]\n.RI [ FILE ]\n"
      ".SH DESCRIPTION\n");
  text += paragraphs(QObject::tr(
      "Reads samples from a table, computes their statistics and experimental variograms, fits "
      "models, cross-validates them, kriges grids, and writes tables, grids, pictures and a "
      "report. A study is described by a job, a JSON file, or by options; each option sets a "
      "member of the job."));
  text += QObject::tr(".SH COMMANDS\n");
  for (const std::unique_ptr<Command> &command : program.getCommands())
    text += commandPart(*command);
  text += QObject::tr(
      ".SH EXIT STATUS\n.TP\n0\nDone.\n.TP\n1\nFailed: the data, a file that cannot be written, "
      "the estimation.\n.TP\n2\nWrong use: the command line, or a job that is wrong in itself.\n"
      ".TP\n130\nInterrupted by Ctrl\\-C; 143 by SIGTERM, 129 by SIGHUP.\n"
      ".SH ENVIRONMENT\n.TP\nNO_COLOR\nNo colors on the terminal when it is set.\n");
  return text.trimmed();
}

}  // namespace orvenal
