#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace orvenal {

/// An option of a command, for its parser, its help, the man page and the completion of shells.
struct CommandOption
{
  QString name;         ///< without the dashes
  QString value;        ///< what follows, such as "FILE"; empty for a switch
  QString help;         ///< one sentence without capital and full stop
  QString group;        ///< heading under which it stands; empty for the options of all commands
  QString fallback;     ///< what holds without it; empty when there is nothing to say
  QStringList choices;  ///< all values, where they can be listed
  QString letter;       ///< short form, if it has one
  bool isRepeatable = false;

  bool isFile() const { return value == QLatin1String("FILE"); }
};
using CommandOptions = QList<CommandOption>;

}  // namespace orvenal
