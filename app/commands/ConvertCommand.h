#pragma once

#include "app/commands/Command.h"

namespace orvenal {

/// Writes a table of points, a grid or a variogram model in another format.
class ConvertCommand : public Command
{
public:
  QString getName() const override { return QStringLiteral("convert"); }
  Group getGroup() const override { return FILE; }
  QString getSummary() const override;
  QString getArguments() const override;
  QString getDescription() const override;
  CommandOptions getOptions() const override;
  QList<QStringList> getExamples() const override;
  void run(const QStringList &arguments, Console &console) const override;
};

}  // namespace orvenal
