#pragma once

#include "app/commands/JobCommand.h"

namespace orvenal {

/// Fits the model of a job to its experimental variograms, and nothing else.
class FitCommand : public JobCommand
{
public:
  QString getName() const override { return QStringLiteral("fit"); }
  QString getSummary() const override;

protected:
  QString _getDescription() const override;
  void _run(const Job &job, Console &console) const override;
};

}  // namespace orvenal
