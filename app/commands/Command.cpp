#include "app/commands/Command.h"

#include "app/console/TextTable.h"

#include <QObject>

namespace orvenal {

namespace {

constexpr int helpWidth = 80;
constexpr int optionColumn = 27;

QString optionLabel(const CommandOption &option)
{
  QString label =
      option.letter.isEmpty() ? QStringLiteral("  ") : QStringLiteral("  -%1, ").arg(option.letter);
  label += QStringLiteral("--") + option.name;
  return option.value.isEmpty() ? label : label + ' ' + option.value;
}

/// The option with its explanation beside it, or below where the option is too long.
QString optionLines(const CommandOption &option)
{
  QString help = option.help;
  if (!option.choices.isEmpty())
    help += QObject::tr("; one of %1").arg(option.choices.join(QStringLiteral(", ")));
  if (!option.fallback.isEmpty())
    help += QObject::tr(" (default: %1)").arg(option.fallback);
  if (option.isRepeatable)
    help += QObject::tr(" (may be repeated)");
  const QString label = optionLabel(option);
  QString text;
  for (const QString &line : wrapped(help, helpWidth - optionColumn)) {
    const QString start = text.isEmpty() ? label : QString();
    if (start.size() > optionColumn - 2)
      text += start + '\n' + QString(optionColumn, ' ') + line + '\n';
    else
      text += start.leftJustified(optionColumn) + line + '\n';
  }
  return text;
}

QString optionsText(const CommandOptions &options)
{
  QString text;
  QString group;
  for (const CommandOption &option : options) {
    if (text.isEmpty() || option.group != group)
      text += QStringLiteral("\n%1:\n").arg(option.group.isEmpty() ? QObject::tr("Options")
                                                                   : option.group);
    group = option.group;
    text += optionLines(option);
  }
  return text;
}

QString examplesText(const QList<QStringList> &examples)
{
  QString text;
  for (const QStringList &example : examples)
    text +=
        QStringLiteral("  %1\n      %2\n")
            .arg(example[1],
                 commandLines(example[0], helpWidth - 10).join(QStringLiteral(" \\\n        ")));
  return text.isEmpty() ? text : QObject::tr("\nExamples:\n") + text;
}

}  // namespace

QString Command::getHelp() const
{
  QString text =
      QObject::tr("usage: orvenal %1 %2").arg(getName(), getArguments()).trimmed() + '\n';
  for (const QString &paragraph : getDescription().split(QStringLiteral("\n\n")))
    text += '\n' + wrapped(paragraph, helpWidth).join('\n') + '\n';
  return (text + optionsText(getOptions()) + examplesText(getExamples())).trimmed();
}

}  // namespace orvenal
