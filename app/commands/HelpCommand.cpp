#include "app/commands/HelpCommand.h"

#include "app/commands/Program.h"
#include "app/console/Console.h"
#include "app/io/UsageError.h"

#include <QObject>

namespace orvenal {

QString HelpCommand::getSummary() const
{
  return QObject::tr("show this list, or the help of a command");
}

QString HelpCommand::getHelp() const
{
  return QObject::tr("usage: orvenal help [COMMAND]");
}

void HelpCommand::run(const QStringList &arguments, Console &console) const
{
  if (arguments.size() > 1)
    throw UsageError(getHelp());
  console.answer(arguments.isEmpty() ? _program.getHelp()
                                     : _program.getCommand(arguments.first()).getHelp());
}

}  // namespace orvenal
