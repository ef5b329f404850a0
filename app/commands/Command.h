#pragma once

#include "app/commands/CommandOption.h"

#include <QString>
#include <QStringList>

namespace orvenal {

class Console;

/// A command of the program: `orvenal NAME ...`.
class Command
{
public:
  /// Under which heading of the list of commands it stands.
  enum Group { STUDY, STEP, FILE, PROGRAM };

  virtual ~Command() = default;

  virtual QString getName() const = 0;

  virtual Group getGroup() const { return PROGRAM; }

  /// One line of the list of commands.
  virtual QString getSummary() const = 0;

  /// What follows the name: "[OPTIONS] JOB.json".
  virtual QString getArguments() const { return QString(); }

  /// What it does; paragraphs are separated by empty lines.
  virtual QString getDescription() const { return QString(); }

  virtual CommandOptions getOptions() const { return CommandOptions(); }

  /// Command lines with what they do, such as {"orvenal run job.json", "the whole study"}. They can
  /// be run in the folder of the Meuse example.
  virtual QList<QStringList> getExamples() const { return QList<QStringList>(); }

  /// Words that may be its first argument, for the completion of shells; none where it is a file.
  virtual QStringList getWords() const { return QStringList(); }

  /// The whole help text, made of the above.
  virtual QString getHelp() const;

  /// Does its work. Wrong arguments are a UsageError, all else that fails another NbeError.
  virtual void run(const QStringList &arguments, Console &console) const = 0;
};

}  // namespace orvenal
