#include "app/commands/CompletionScripts.h"

#include "app/commands/Command.h"
#include "app/commands/Program.h"

namespace orvenal {

namespace {

/// A text in single quotes, for any of the shells.
QString quoted(QString text)
{
  return '\'' + text.replace('\'', QLatin1String("'\\''")) + '\'';
}

QStringList namesOf(const Program &program)
{
  QStringList names;
  for (const std::unique_ptr<Command> &command : program.getCommands())
    names << command->getName();
  return names;
}

QStringList optionNames(const Command &command)
{
  QStringList names;
  for (const CommandOption &option : command.getOptions())
    names << QStringLiteral("--") + option.name;
  return names;
}

/// Values of an option for bash: a list of lines, files, or nothing to be said.
QString bashValues(const CommandOption &option)
{
  const QString label = QStringLiteral("      --%1) ").arg(option.name);
  if (!option.choices.isEmpty())
    return label +
           QStringLiteral("_orvenal_lines %1; return ;;\n").arg(quoted(option.choices.join('\n')));
  if (option.isFile())
    return label + QStringLiteral("_orvenal_files; return ;;\n");
  return option.value.isEmpty() ? QString() : label + QStringLiteral("return ;;\n");
}

QString bashCase(const Command &command)
{
  QString text = QStringLiteral("    %1)\n      case $previous in\n").arg(command.getName());
  for (const CommandOption &option : command.getOptions())
    text += bashValues(option);
  text += QStringLiteral("      esac\n      options=%1\n      words=%2\n      ;;\n")
              .arg(quoted(optionNames(command).join('\n')), quoted(command.getWords().join('\n')));
  return text;
}

/// One option for zsh's _arguments.
QString zshOption(const CommandOption &option)
{
  QString help = option.help;
  help.replace(QLatin1String("["), QLatin1String("\\["))
      .replace(QLatin1String("]"), QLatin1String("\\]"))
      .replace(':', QLatin1String("\\:"));
  QString entry = QStringLiteral("%1--%2%3[%4]")
                      .arg(option.isRepeatable ? QStringLiteral("*") : QString(), option.name,
                           option.value.isEmpty() ? QString() : QStringLiteral("="), help);
  if (option.value.isEmpty())
    return quoted(entry);
  QStringList choices;
  for (QString choice : option.choices)
    choices << choice.replace(' ', QLatin1String("\\ "))
                   .replace('(', QLatin1String("\\("))
                   .replace(')', QLatin1String("\\)"));
  const QString action = option.isFile()     ? QStringLiteral("_files")
                         : choices.isEmpty() ? QStringLiteral(" ")
                                             : '(' + choices.join(' ') + ')';
  return quoted(QStringLiteral("%1:%2:%3").arg(entry, option.value.toLower(), action));
}

QString zshCase(const Command &command)
{
  QString text = QStringLiteral("    %1)\n      _arguments").arg(command.getName());
  for (const CommandOption &option : command.getOptions())
    text += QStringLiteral(" \\\n        ") + zshOption(option);
  const QString action =
      command.getWords().isEmpty()
          ? QStringLiteral("'*:file:_files'")
          : quoted(QStringLiteral("1:word:(%1)").arg(command.getWords().join(' ')));
  return text + QStringLiteral(" \\\n        ") + action + QStringLiteral("\n      ;;\n");
}

QString fishOption(const Command &command, const CommandOption &option)
{
  QString line = QStringLiteral("complete -c orvenal -n '__fish_seen_subcommand_from %1' -l %2")
                     .arg(command.getName(), option.name);
  if (!option.letter.isEmpty())
    line += QStringLiteral(" -s ") + option.letter;
  if (option.isFile())
    line += QStringLiteral(" -r -F");
  else if (!option.value.isEmpty())
    line += QStringLiteral(" -x");
  if (!option.choices.isEmpty()) {
    QStringList choices;
    for (QString choice : option.choices)
      choices << choice.replace(' ', QLatin1String("\\ "))
                     .replace('(', QLatin1String("\\("))
                     .replace(')', QLatin1String("\\)"));
    line += QStringLiteral(" -a ") + quoted(choices.join(' '));
  }
  QString help = option.help;
  return line + QStringLiteral(" -d ") + '\'' +
         help.replace('\\', QLatin1String("\\\\")).replace('\'', QLatin1String("\\'")) +
         QStringLiteral("'\n");
}

}  // namespace

QString bashCompletion(const Program &program)
{
  QString text = QStringLiteral(R"(# Completion of orvenal for bash.

_orvenal_lines() {
  local IFS=$'\n'
  COMPREPLY=($(compgen -W "$1" -- "$current"))
  local i
  for i in "${!COMPREPLY[@]}"; do
    COMPREPLY[i]=$(printf '%q' "${COMPREPLY[i]}")
  done
}

_orvenal_files() {
  compopt -o filenames 2>/dev/null
  local IFS=$'\n'
  COMPREPLY=($(compgen -f -- "$current"))
}

_orvenal() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
  local command=${COMP_WORDS[1]} options words
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    _orvenal_lines )") +
                 quoted(namesOf(program).join('\n')) +
                 QStringLiteral("\n    return\n  fi\n  case $command in\n");
  for (const std::unique_ptr<Command> &command : program.getCommands())
    text += bashCase(*command);
  return text + QStringLiteral(R"(  esac
  case $current in
    -*) _orvenal_lines "$options" ;;
    *)
      if [ -n "$words" ]; then
        _orvenal_lines "$words"
      else
        _orvenal_files
      fi
      ;;
  esac
}

complete -F _orvenal orvenal)");
}

QString zshCompletion(const Program &program)
{
  QString text = QStringLiteral(
      "#compdef orvenal\n# Completion of orvenal for zsh.\n\n_orvenal() {\n"
      "  local -a commands\n  commands=(\n");
  for (const std::unique_ptr<Command> &command : program.getCommands())
    text +=
        QStringLiteral("    %1\n").arg(quoted(command->getName() + ':' + command->getSummary()));
  text += QStringLiteral(
      "  )\n  if (( CURRENT == 2 )); then\n    _describe command commands\n    return\n  fi\n"
      "  local command=$words[2]\n  shift words\n  (( CURRENT-- ))\n  case $command in\n");
  for (const std::unique_ptr<Command> &command : program.getCommands())
    text += zshCase(*command);
  return text + QStringLiteral(
                    "  esac\n}\n\nif [ \"$funcstack[1]\" = _orvenal ]; then\n  _orvenal \"$@\"\n"
                    "else\n  compdef _orvenal orvenal\nfi");
}

QString fishCompletion(const Program &program)
{
  QString text = QStringLiteral("# Completion of orvenal for fish.\n\n");
  for (const std::unique_ptr<Command> &command : program.getCommands()) {
    text += QStringLiteral("complete -c orvenal -n __fish_use_subcommand -f -a %1 -d %2\n")
                .arg(command->getName(), quoted(command->getSummary()));
    if (!command->getWords().isEmpty())
      text += QStringLiteral("complete -c orvenal -n '__fish_seen_subcommand_from %1' -f -a %2\n")
                  .arg(command->getName(), quoted(command->getWords().join(' ')));
    for (const CommandOption &option : command->getOptions())
      text += fishOption(*command, option);
  }
  return text.trimmed();
}

}  // namespace orvenal
