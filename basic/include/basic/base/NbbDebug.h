#pragma once

#include "basic/base/NbbAMessage.h"

/// Messages for the log.
class NbbDebug : public NbbAMessage
{
public:
  static void print(const QString &text);
  static void printWarning(const QString &text);
  static void printError(const QString &text);
};
