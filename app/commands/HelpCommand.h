#pragma once

#include "app/commands/Command.h"

namespace orvenal {

class Program;

/// Prints the list of commands, or the help of one or of a topic.
class HelpCommand : public Command
{
public:
  explicit HelpCommand(const Program &program) : _program(program) {}

  QString getName() const override { return QStringLiteral("help"); }
  QString getSummary() const override;
  QString getHelp() const override;
  void run(const QStringList &arguments, Console &console) const override;

private:
  const Program &_program;
};

}  // namespace orvenal
