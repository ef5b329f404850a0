#pragma once

#include <QString>
#include <QStringList>

namespace orvenal {

class Console;

/// A command of the program: `orvenal NAME ...`.
class Command
{
public:
  virtual ~Command() = default;

  virtual QString getName() const = 0;

  /// One line of the list of commands.
  virtual QString getSummary() const = 0;

  /// The whole help text.
  virtual QString getHelp() const = 0;

  /// Does its work. Wrong arguments are a UsageError, all else that fails another NbeError.
  virtual void run(const QStringList &arguments, Console &console) const = 0;
};

}  // namespace orvenal
