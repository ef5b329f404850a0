#pragma once

#include "app/commands/Command.h"

namespace orvenal {

class Program;

/// Prints the script by which a shell completes the program's commands and options.
class CompletionCommand : public Command
{
public:
  explicit CompletionCommand(const Program &program) : _program(program) {}

  QString getName() const override { return QStringLiteral("completion"); }
  QString getSummary() const override;
  QString getArguments() const override;
  QString getDescription() const override;
  QList<QStringList> getExamples() const override;
  QStringList getWords() const override;
  void run(const QStringList &arguments, Console &console) const override;

private:
  const Program &_program;
};

}  // namespace orvenal
