#include "app/commands/VersionCommand.h"

#include "app/console/Console.h"
#include "app/io/UsageError.h"
#include "app/report/Versions.h"

#include <QObject>

namespace orvenal {

QString VersionCommand::getSummary() const
{
  return QObject::tr("show the version of the program and of its libraries");
}

QString VersionCommand::getHelp() const
{
  return QObject::tr("usage: orvenal version");
}

void VersionCommand::run(const QStringList &arguments, Console &console) const
{
  if (!arguments.isEmpty())
    throw UsageError(getHelp());
  QStringList lines;
  for (const auto &version : allVersions())
    lines << version.first + ' ' + version.second;
  console.answer(lines.join('\n'));
}

}  // namespace orvenal
