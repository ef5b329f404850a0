#pragma once

#include "app/commands/Command.h"

namespace orvenal {

class Program;

/// Prints the list of commands, the help of one or of a topic, or the man page.
class HelpCommand : public Command
{
public:
  explicit HelpCommand(const Program &program) : _program(program) {}

  QString getName() const override { return QStringLiteral("help"); }
  QString getSummary() const override;
  QString getArguments() const override;
  QString getDescription() const override;
  CommandOptions getOptions() const override;
  QList<QStringList> getExamples() const override;
  QStringList getWords() const override;
  void run(const QStringList &arguments, Console &console) const override;

private:
  const Command &_findCommand(const QString &name) const;

  const Program &_program;
};

}  // namespace orvenal
