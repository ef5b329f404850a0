#pragma once

#include "app/commands/JobCommand.h"

namespace orvenal {

/// Cross-validates the model and the neighborhood of a job, and nothing else.
class XvalidCommand : public JobCommand
{
public:
  QString getName() const override { return QStringLiteral("xvalid"); }
  QString getSummary() const override;

protected:
  QString _getDescription() const override;
  void _run(const Job &job, Console &console) const override;
};

}  // namespace orvenal
