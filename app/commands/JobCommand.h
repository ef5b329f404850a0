#pragma once

#include "app/commands/Command.h"
#include "app/commands/JobOptions.h"

namespace orvenal {

class JobDraft;

/// How a command is to work, whatever its job is.
struct RunSettings
{
  int threads = 0;         ///< 0 leaves it to the job
  qint64 memory = 0;       ///< bytes; 0 leaves it to the job
  bool overwrite = false;  ///< files of an earlier run are replaced, whatever the job says
  bool json = false;       ///< results are printed as JSON
};

/// A command that takes a job file or a data file, with options that set members of the job.
class JobCommand : public Command
{
public:
  Group getGroup() const override { return STEP; }
  QString getArguments() const override;
  CommandOptions getOptions() const override;
  void run(const QStringList &arguments, Console &console) const override;

protected:
  /// Whether a data file may stand in place of the job.
  virtual bool _takesData() const { return true; }

  /// Which members of the job have options.
  virtual QList<JobOption::Group> _getGroups() const = 0;

  /// Takes from the job of a file what does not belong to the command, before options are applied.
  virtual void _prepare(JobDraft &draft) const = 0;

  /// Does its work.
  virtual void _execute(JobDraft &draft, const RunSettings &settings, Console &console) const = 0;

private:
  JobDraft _makeDraft(const class QCommandLineParser &parser) const;
};

}  // namespace orvenal
