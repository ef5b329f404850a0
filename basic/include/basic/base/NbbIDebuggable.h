#pragma once

#include <QString>

/// Objects that can describe themselves in a text of several lines, for logs and diagnostics.
class NbbIDebuggable
{
public:
  virtual ~NbbIDebuggable() = default;

  /// `level` is an indentation or detail level, as each class says.
  virtual QString debug(int level) const = 0;
};
