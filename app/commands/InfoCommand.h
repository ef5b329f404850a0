#pragma once

#include "app/commands/Command.h"

namespace orvenal {

/// Says what is in a file: a table, a variogram model or a job.
class InfoCommand : public Command
{
public:
  QString getName() const override { return QStringLiteral("info"); }
  Group getGroup() const override { return FILE; }
  QString getSummary() const override;
  QString getArguments() const override;
  QString getDescription() const override;
  CommandOptions getOptions() const override;
  QList<QStringList> getExamples() const override;
  void run(const QStringList &arguments, Console &console) const override;
};

}  // namespace orvenal
