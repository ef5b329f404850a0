#pragma once

#include "basic/base/NbbStringFormat.h"

class NbuEUnitClass;

/// The user's choice of display unit and number format per class of units. Without a choice the
/// conversion is the identity. May be used from any thread.
namespace NbbUserStringFormats {

NbuUnitTransfo getDisplayTransfo(const NbuEUnitClass &unitClass);
NbbStringFormat getStringFormat(const NbuEUnitClass &unitClass);

/// Sets format, display unit and conversion of a class.
void setStringFormat(const NbuEUnitClass &unitClass, const NbbStringFormat &format);

/// Back to the formats without a choice.
void reset();

}  // namespace NbbUserStringFormats
