#include "app/commands/HelpCommand.h"

#include "app/base/Suggestion.h"
#include "app/base/UsageError.h"
#include "app/commands/CommandParser.h"
#include "app/commands/HelpTopics.h"
#include "app/commands/ManPage.h"
#include "app/commands/Program.h"
#include "app/console/Console.h"

#include <QObject>

namespace orvenal {

QString HelpCommand::getSummary() const
{
  return QObject::tr("show this list, or the help of a command or a topic");
}

QString HelpCommand::getArguments() const
{
  return QObject::tr("[COMMAND | TOPIC]");
}

QString HelpCommand::getDescription() const
{
  QString text = QObject::tr("Lists the commands, says what one of them does, or explains:");
  for (const HelpTopic &topic : helpTopics())
    text += QStringLiteral("\n\n%1 - %2").arg(topic.name, topic.summary);
  return text;
}

CommandOptions HelpCommand::getOptions() const
{
  CommandOption man;
  man.name = QStringLiteral("man");
  man.help = QObject::tr("print the man page instead, in the language of man");
  CommandOption markdown;
  markdown.name = QStringLiteral("markdown");
  markdown.help = QObject::tr("print a topic as it stands in the documentation");
  return {markdown, man, helpOption()};
}

QList<QStringList> HelpCommand::getExamples() const
{
  return {{QStringLiteral("orvenal help krige"), QObject::tr("the options of kriging")},
          {QStringLiteral("orvenal help job.kriging"), QObject::tr("a part of the job")}};
}

QStringList HelpCommand::getWords() const
{
  QStringList words;
  for (const std::unique_ptr<Command> &command : _program.getCommands())
    words << command->getName();
  for (const HelpTopic &topic : helpTopics())
    words << topic.name;
  return words;
}

const Command &HelpCommand::_findCommand(const QString &name) const
{
  const QStringList words = getWords();
  if (words.contains(name))
    return _program.getCommand(name);
  throw UsageError(QObject::tr("there is no command or topic \"%1\"%2\nSee: orvenal help")
                       .arg(name, didYouMean(name, words)));
}

void HelpCommand::run(const QStringList &arguments, Console &console) const
{
  QCommandLineParser parser;
  parseArguments(*this, arguments, parser);
  const QStringList names = parser.positionalArguments();
  const bool isTopic = names.size() == 1 && isHelpTopic(names.first());
  const bool isMarkdown = parser.isSet(QStringLiteral("markdown"));
  if (names.size() > 1 || (isMarkdown && !isTopic))
    failUsage(*this, QObject::tr("one command or topic at a time"));
  if (parser.isSet(QStringLiteral("man")))
    console.answer(manPage(_program));
  else if (parser.isSet(QStringLiteral("help")))
    console.answer(getHelp());
  else if (names.isEmpty())
    console.answer(_program.getHelp());
  else if (!isTopic)
    console.answer(_findCommand(names.first()).getHelp());
  else
    console.answer(isMarkdown ? helpMarkdown(names.first()) : helpText(names.first()));
}

}  // namespace orvenal
