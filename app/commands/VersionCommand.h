#pragma once

#include "app/commands/Command.h"

namespace orvenal {

/// Prints the versions of the program and of what it is built on.
class VersionCommand : public Command
{
public:
  QString getName() const override { return QStringLiteral("version"); }
  QString getSummary() const override;
  QString getArguments() const override { return QString(); }
  QString getDescription() const override;
  void run(const QStringList &arguments, Console &console) const override;
};

}  // namespace orvenal
