#pragma once

#include "app/commands/Command.h"

namespace orvenal {

/// Writes a job to start with for a data file that nobody has described.
class InitCommand : public Command
{
public:
  QString getName() const override { return QStringLiteral("init"); }
  Group getGroup() const override { return STUDY; }
  QString getSummary() const override;
  QString getArguments() const override;
  QString getDescription() const override;
  CommandOptions getOptions() const override;
  QList<QStringList> getExamples() const override;
  void run(const QStringList &arguments, Console &console) const override;
};

}  // namespace orvenal
