#pragma once

#include "basic/base/NbbAMessage.h"

/// Messages for the user's message window.
class NbbMessage : public NbbAMessage
{
public:
  /// A line in the warning colour.
  static void printWarning(const QString &text);

  /// A line in the error colour.
  static void printError(const QString &text);
};
