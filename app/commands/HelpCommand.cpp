#include "app/commands/HelpCommand.h"

#include "app/commands/CommandParser.h"
#include "app/commands/ManPage.h"
#include "app/commands/Program.h"
#include "app/console/Console.h"
#include "app/io/UsageError.h"

#include <QObject>

namespace orvenal {

QString HelpCommand::getSummary() const
{
  return QObject::tr("show this list, or the help of a command");
}

QString HelpCommand::getArguments() const
{
  return QObject::tr("[COMMAND]");
}

QString HelpCommand::getDescription() const
{
  return QObject::tr("Lists the commands, or says what one of them does.");
}

CommandOptions HelpCommand::getOptions() const
{
  CommandOption man;
  man.name = QStringLiteral("man");
  man.help = QObject::tr("print the man page instead, in the language of man");
  return {man, helpOption()};
}

QList<QStringList> HelpCommand::getExamples() const
{
  return {{QStringLiteral("orvenal help krige"), QObject::tr("the options of kriging")}};
}

QStringList HelpCommand::getWords() const
{
  QStringList words;
  for (const std::unique_ptr<Command> &command : _program.getCommands())
    words << command->getName();
  return words;
}

void HelpCommand::run(const QStringList &arguments, Console &console) const
{
  QCommandLineParser parser;
  parseArguments(*this, arguments, parser);
  const QStringList words = parser.positionalArguments();
  if (words.size() > 1)
    failUsage(*this, QObject::tr("one command at a time"));
  if (parser.isSet(QStringLiteral("man")))
    console.answer(manPage(_program));
  else if (parser.isSet(QStringLiteral("help")))
    console.answer(getHelp());
  else
    console.answer(words.isEmpty() ? _program.getHelp()
                                   : _program.getCommand(words.first()).getHelp());
}

}  // namespace orvenal
