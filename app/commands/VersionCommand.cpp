#include "app/commands/VersionCommand.h"

#include "app/commands/CommandParser.h"
#include "app/console/Console.h"
#include "app/report/Versions.h"

#include <QObject>

namespace orvenal {

QString VersionCommand::getSummary() const
{
  return QObject::tr("show the version of the program and of its libraries");
}

QString VersionCommand::getDescription() const
{
  return QObject::tr(
      "Prints the versions of the program and of the libraries that it is built on.");
}

void VersionCommand::run(const QStringList &arguments, Console &console) const
{
  if (arguments == QStringList{QStringLiteral("--help")} ||
      arguments == QStringList{QStringLiteral("-h")}) {
    console.answer(getHelp());
    return;
  }
  if (!arguments.isEmpty())
    failUsage(*this, QObject::tr("no argument is expected"));
  QStringList lines;
  for (const auto &version : allVersions())
    lines << version.first + ' ' + version.second;
  console.answer(lines.join('\n'));
}

}  // namespace orvenal
