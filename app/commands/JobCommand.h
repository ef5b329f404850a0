#pragma once

#include "app/commands/Command.h"

namespace orvenal {

struct Job;

/// A command that takes a job file, with the options that all of them have: quiet, threads, memory.
class JobCommand : public Command
{
public:
  QString getHelp() const override;
  void run(const QStringList &arguments, Console &console) const override;

protected:
  /// What the command does with the job, for its help.
  virtual QString _getDescription() const = 0;

  /// Does it. The options are in the job.
  virtual void _run(const Job &job, Console &console) const = 0;
};

}  // namespace orvenal
