#pragma once

#include "app/commands/StudyCommand.h"

namespace orvenal {

/// Kriges a grid, and nothing else.
class KrigeCommand : public StudyCommand
{
public:
  QString getName() const override { return QStringLiteral("krige"); }
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
