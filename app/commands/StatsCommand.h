#pragma once

#include "app/commands/JobCommand.h"

namespace orvenal {

/// Prints statistics of variables.
class StatsCommand : public JobCommand
{
public:
  QString getName() const override { return QStringLiteral("stats"); }
  QString getSummary() const override;
  QString getDescription() const override;
  QList<QStringList> getExamples() const override;

protected:
  QList<JobOption::Group> _getGroups() const override;
  void _prepare(JobDraft &) const override {}
  void _execute(JobDraft &draft, const RunSettings &settings, Console &console) const override;
};

}  // namespace orvenal
