#pragma once

#include "app/commands/JobCommand.h"

namespace orvenal {

/// Computes, prints and draws the experimental variograms of a job, and nothing else.
class VariogramCommand : public JobCommand
{
public:
  QString getName() const override { return QStringLiteral("variogram"); }
  QString getSummary() const override;

protected:
  QString _getDescription() const override;
  void _run(const Job &job, Console &console) const override;
};

}  // namespace orvenal
