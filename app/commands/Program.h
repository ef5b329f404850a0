#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace orvenal {

class Command;
class Console;

/// The program: its commands, and what becomes of their errors.
class Program
{
public:
  enum ExitCode { DONE = 0, FAILED = 1, WRONG_USE = 2 };

  Program();
  ~Program();

  const std::vector<std::unique_ptr<Command>> &getCommands() const { return _commands; }

  /// The command of that name; a UsageError when there is none.
  const Command &getCommand(const QString &name) const;

  /// The list of commands.
  QString getHelp() const;

  /// Runs the command that the arguments name (without the program's own name) and returns the exit
  /// code; an interrupted one has that of the signal. Each failure is one message.
  int run(const QStringList &arguments, Console &console) const;

private:
  void _dispatch(const QStringList &arguments, Console &console) const;

  std::vector<std::unique_ptr<Command>> _commands;
};

}  // namespace orvenal
