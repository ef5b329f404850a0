#pragma once

#include "basic/base/NbbAMessage.h"

/// Messages that the user shall not miss.
class NbbError : public NbbAMessage
{
public:
  static void printError(const QString &text);

  /// A warning that the program shows at once.
  static void popupWarning(const QString &text);
};
