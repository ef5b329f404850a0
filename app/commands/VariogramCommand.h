#pragma once

#include "app/commands/StudyCommand.h"

namespace orvenal {

/// Computes, prints and draws experimental variograms, and nothing else.
class VariogramCommand : public StudyCommand
{
public:
  QString getName() const override { return QStringLiteral("variogram"); }
  QString getSummary() const override;
  QString getDescription() const override;
  QList<QStringList> getExamples() const override;

protected:
  QList<JobOption::Group> _getGroups() const override;
  QStringList _getOutputs() const override { return {QStringLiteral("variogram")}; }
  void _complete(JobDraft &draft) const override;
  Steps _getSteps(const Job &job) const override;
};

}  // namespace orvenal
