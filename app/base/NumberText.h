#pragma once

#include <QString>

namespace orvenal {

/// Six significant digits, all digits before the point for sizes up to 1e10 (coordinates), or the
/// text for an undefined value.
QString numberText(double value);

/// Like numberText(), with the unit behind it when there is one.
QString lengthText(double value, const QString &unit);

/// 1234567 as "1,234,567".
QString groupedText(qint64 number);

/// "0.045 s", "12 s", "2:05" (minutes and seconds), "1:02:05".
QString durationText(double seconds);

}  // namespace orvenal
