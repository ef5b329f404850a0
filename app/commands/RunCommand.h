#pragma once

#include "app/commands/Command.h"

namespace orvenal {

/// Runs a study as a job file describes it.
class RunCommand : public Command
{
public:
  QString getName() const override { return QStringLiteral("run"); }
  QString getSummary() const override;
  QString getHelp() const override;
  void run(const QStringList &arguments, Console &console) const override;
};

}  // namespace orvenal
