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

/// A text, in double quotes where they are needed: it is read back as it is.
QByteArray field(const QString &text);

}  // namespace CsvText

}  // namespace orvenal
