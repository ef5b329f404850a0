#pragma once

#include "app/commands/StudyCommand.h"

namespace orvenal {

/// Cross-validates a model and a neighborhood, and nothing else.
class XvalidCommand : public StudyCommand
{
public:
  QString getName() const override { return QStringLiteral("xvalid"); }
  QString getSummary() const override;
  QString getDescription() const override;
  QList<QStringList> getExamples() const override;

protected:
  QList<JobOption::Group> _getGroups() const override;
  QStringList _getOutputs() const override { return {QStringLiteral("crossValidation")}; }
  void _complete(JobDraft &draft) const override;
  Steps _getSteps(const Job &job) const override;
};

}  // namespace orvenal
