#pragma once

#include "app/commands/JobCommand.h"
#include "app/study/Job.h"

namespace orvenal {

/// A command that runs a study, or one step of it.
class StudyCommand : public JobCommand
{
protected:
  /// What the command does of the job. Missing parts of the job are UsageErrors.
  virtual Steps _getSteps(const Job &job) const = 0;

  /// Keys of the job's "output" that belong to it.
  virtual QStringList _getOutputs() const = 0;

  /// Gives the job what the step needs and nobody has to say.
  virtual void _complete(JobDraft &draft) const = 0;

  void _prepare(JobDraft &draft) const override;
  void _execute(JobDraft &draft, const RunSettings &settings, Console &console) const override;
};

}  // namespace orvenal
