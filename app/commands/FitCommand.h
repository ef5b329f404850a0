#pragma once

#include "app/commands/StudyCommand.h"

namespace orvenal {

/// Fits a model to experimental variograms, and nothing else.
class FitCommand : public StudyCommand
{
public:
  QString getName() const override { return QStringLiteral("fit"); }
  QString getSummary() const override;
  QString getDescription() const override;
  QList<QStringList> getExamples() const override;

protected:
  QList<JobOption::Group> _getGroups() const override;
  QStringList _getOutputs() const override;
  void _complete(JobDraft &draft) const override;
  Steps _getSteps(const Job &job) const override;
};

}  // namespace orvenal
