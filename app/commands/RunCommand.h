#pragma once

#include "app/commands/JobCommand.h"

namespace orvenal {

/// Runs a study as a job file describes it.
class RunCommand : public JobCommand
{
public:
  QString getName() const override { return QStringLiteral("run"); }
  QString getSummary() const override;

protected:
  QString _getDescription() const override;
  void _run(const Job &job, Console &console) const override;
};

}  // namespace orvenal
