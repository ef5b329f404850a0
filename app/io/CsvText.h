#pragma once

#include <QByteArray>

class QString;

namespace orvenal {

/// Fields of our own CSV files.
namespace CsvText {

/// Appends as many digits as it takes to read back the same bits; nothing for an undefined value.
void append(QByteArray &line, double value);

/// A text in double quotes.
QByteArray quoted(const QString &text);

}  // namespace CsvText

}  // namespace orvenal
