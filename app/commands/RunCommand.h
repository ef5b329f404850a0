#pragma once

#include "app/commands/StudyCommand.h"

namespace orvenal {

/// Runs a study as a job file describes it.
class RunCommand : public StudyCommand
{
public:
  QString getName() const override { return QStringLiteral("run"); }
  Group getGroup() const override { return STUDY; }
  QString getSummary() const override;
  QString getDescription() const override;
  QList<QStringList> getExamples() const override;

protected:
  bool _takesData() const override { return false; }
  QList<JobOption::Group> _getGroups() const override { return {JobOption::OUTPUT}; }
  QStringList _getOutputs() const override { return QStringList(); }
  void _prepare(JobDraft &) const override {}
  void _complete(JobDraft &) const override {}
  Steps _getSteps(const Job &job) const override { return job.getSteps(); }
};

}  // namespace orvenal
