#include "app/commands/Program.h"

#include "app/base/Suggestion.h"
#include "app/base/UsageError.h"
#include "app/commands/CompletionCommand.h"
#include "app/commands/ConvertCommand.h"
#include "app/commands/FitCommand.h"
#include "app/commands/HelpCommand.h"
#include "app/commands/HelpTopics.h"
#include "app/commands/InfoCommand.h"
#include "app/commands/InitCommand.h"
#include "app/commands/JobDraft.h"
#include "app/commands/KrigeCommand.h"
#include "app/commands/RunCommand.h"
#include "app/commands/StatsCommand.h"
#include "app/commands/VariogramCommand.h"
#include "app/commands/VersionCommand.h"
#include "app/commands/XvalidCommand.h"
#include "app/console/Console.h"
#include "app/console/Interruption.h"
#include "basic/error/NbeException.h"
#include "basic/error/NbeGuard.h"
#include "basic/error/NbeUserError.h"

#include <QFileInfo>
#include <QObject>

namespace orvenal {

namespace {

QString headingOf(Command::Group group)
{
  switch (group) {
    case Command::STUDY:
      return QObject::tr("A whole study");
    case Command::STEP:
      return QObject::tr("Single steps, of a job or of a data file");
    case Command::FILE:
      return QObject::tr("Files");
    case Command::PROGRAM:
      break;
  }
  return QObject::tr("The program");
}

QString groupText(Command::Group group, const std::vector<std::unique_ptr<Command>> &commands)
{
  QString text;
  for (const std::unique_ptr<Command> &command : commands) {
    if (command->getGroup() == group)
      text += QStringLiteral("  %1  %2\n")
                  .arg(command->getName().leftJustified(10), command->getSummary());
  }
  return text.isEmpty() ? text : '\n' + headingOf(group) + QStringLiteral(":\n") + text;
}

}  // namespace

Program::Program()
{
  _commands.push_back(std::make_unique<RunCommand>());
  _commands.push_back(std::make_unique<InitCommand>());
  _commands.push_back(std::make_unique<StatsCommand>());
  _commands.push_back(std::make_unique<VariogramCommand>());
  _commands.push_back(std::make_unique<FitCommand>());
  _commands.push_back(std::make_unique<XvalidCommand>());
  _commands.push_back(std::make_unique<KrigeCommand>());
  _commands.push_back(std::make_unique<InfoCommand>());
  _commands.push_back(std::make_unique<ConvertCommand>());
  _commands.push_back(std::make_unique<HelpCommand>(*this));
  _commands.push_back(std::make_unique<CompletionCommand>(*this));
  _commands.push_back(std::make_unique<VersionCommand>());
}

Program::~Program() = default;

const Command &Program::getCommand(const QString &name) const
{
  QStringList names;
  for (const std::unique_ptr<Command> &command : _commands) {
    if (command->getName() == name)
      return *command;
    names << command->getName();
  }
  if (QFileInfo(name).isFile())
    throw UsageError(
        isJobFile(name)
            ? QObject::tr("\"%1\" is a file; to run the study: orvenal run %1").arg(name)
            : QObject::tr("\"%1\" is a file; for a job to start with: orvenal init %1").arg(name));
  throw UsageError(QObject::tr("there is no command \"%1\"%2\nCommands: %3. See: orvenal help")
                       .arg(name, didYouMean(name, names), names.join(QStringLiteral(", "))));
}

QString Program::getHelp() const
{
  QString text = QObject::tr(
      "Geostatistics: from samples in a file to an estimated grid, maps and a report.\n\n"
      "usage: orvenal COMMAND [OPTIONS] ...\n");
  for (const Command::Group group :
       {Command::STUDY, Command::STEP, Command::FILE, Command::PROGRAM})
    text += groupText(group, _commands);
  QStringList topics;
  for (const HelpTopic &topic : helpTopics())
    topics << topic.name;
  return text + QObject::tr(
                    "\nHelp on one of them: orvenal help COMMAND\n"
                    "Help on a topic: orvenal help %1\n"
                    "Exit codes: 0 done, 1 failed, 2 wrong use, 130 interrupted")
                    .arg(topics.join(QStringLiteral(" | ")));
}

int Program::run(const QStringList &arguments, Console &console) const
{
  try {
    NbeGuard::run([&] { _dispatch(arguments, console); });
    const QString reason = console.getAnswerError();
    if (!reason.isEmpty())
      throw NbeUserError(QObject::tr("the standard output cannot be written: %1").arg(reason));
    return DONE;
  } catch (const NbeException &) {
    console.error(QObject::tr("interrupted; nothing was written"));
    return Interruption::exitCode();
  } catch (const UsageError &error) {
    console.error(error.getMessage());
    return WRONG_USE;
  } catch (const NbeError &error) {
    console.error(error.getMessage());
    return FAILED;
  }
}

void Program::_dispatch(const QStringList &arguments, Console &console) const
{
  if (arguments.isEmpty())
    throw UsageError(QObject::tr("a command is missing\n\n") + getHelp());
  QString name = arguments.first();
  if (name == QLatin1String("--help") || name == QLatin1String("-h"))
    name = QStringLiteral("help");
  else if (name == QLatin1String("--version") || name == QLatin1String("-V"))
    name = QStringLiteral("version");
  getCommand(name).run(arguments.mid(1), console);
}

}  // namespace orvenal
