#include "app/commands/HelpCommand.h"

#include "app/commands/HelpTopics.h"
#include "app/commands/Program.h"
#include "app/console/Console.h"
#include "app/io/UsageError.h"

#include <QObject>

namespace orvenal {

QString HelpCommand::getSummary() const
{
  return QObject::tr("show this list, or the help of a command or a topic");
}

QString HelpCommand::getHelp() const
{
  QString text = QObject::tr("usage: orvenal help [--markdown] [COMMAND | TOPIC]\n\nTopics:\n");
  for (const HelpTopic &topic : helpTopics())
    text += QStringLiteral("  %1  %2\n").arg(topic.name.leftJustified(11), topic.summary);
  return text +
         QObject::tr("\n  --markdown        print a topic as it stands in the documentation");
}

void HelpCommand::run(const QStringList &arguments, Console &console) const
{
  QStringList names = arguments;
  const bool isMarkdown = names.removeAll(QStringLiteral("--markdown")) > 0;
  if (names.size() > 1 || (isMarkdown && (names.isEmpty() || !isHelpTopic(names.first()))))
    throw UsageError(getHelp());
  if (names.isEmpty())
    console.answer(_program.getHelp());
  else if (!isHelpTopic(names.first()))
    console.answer(_program.getCommand(names.first()).getHelp());
  else
    console.answer(isMarkdown ? helpMarkdown(names.first()) : helpText(names.first()));
}

}  // namespace orvenal
