#include "app/commands/CompletionCommand.h"

#include "app/commands/CommandParser.h"
#include "app/commands/CompletionScripts.h"
#include "app/console/Console.h"

#include <QObject>

namespace orvenal {

QString CompletionCommand::getSummary() const
{
  return QObject::tr("print a completion script for bash, zsh or fish");
}

QString CompletionCommand::getArguments() const
{
  return QObject::tr("bash|zsh|fish");
}

QString CompletionCommand::getDescription() const
{
  return QObject::tr(
      "Prints the script by which a shell completes commands, options, their values and files. For "
      "bash: source <(orvenal completion bash). For zsh: save it as _orvenal in a folder of "
      "$fpath. For fish: save it as ~/.config/fish/completions/orvenal.fish. An installed program "
      "has them in their places.");
}

QList<QStringList> CompletionCommand::getExamples() const
{
  return {{QStringLiteral("orvenal completion bash"), QObject::tr("the script for bash")}};
}

QStringList CompletionCommand::getWords() const
{
  return {QStringLiteral("bash"), QStringLiteral("zsh"), QStringLiteral("fish")};
}

void CompletionCommand::run(const QStringList &arguments, Console &console) const
{
  const QString shell = arguments.value(0);
  if (shell == QLatin1String("--help") || shell == QLatin1String("-h")) {
    console.answer(getHelp());
    return;
  }
  if (arguments.size() != 1 || !getWords().contains(shell))
    failUsage(*this, QObject::tr("expected the name of a shell: bash, zsh or fish"));
  console.answer(shell == QLatin1String("bash")  ? bashCompletion(_program)
                 : shell == QLatin1String("zsh") ? zshCompletion(_program)
                                                 : fishCompletion(_program));
}

}  // namespace orvenal
