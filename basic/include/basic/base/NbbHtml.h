#pragma once

#include <QString>

/// Pieces of HTML for reports. Operations that wrap (bold, color, ...) take HTML, so they nest; use
/// toHtml() for plain text.
namespace NbbHtml {

extern const QString WarningColor;
extern const QString ErrorColor;

namespace Table {
extern const QString HeaderColor;
}

/// Plain text as HTML: special characters escaped, line breaks kept.
QString toHtml(const QString &text);

/// HTML as plain text: tags dropped, line breaks and the usual entities resolved.
QString toPlainText(const QString &html);

/// A title of level 1 to 6, from plain text.
QString title(const QString &text, int level = 1);

QString bold(const QString &html);
QString color(const QString &html, const QString &color);
QString textGreen(const QString &html);
QString textWarning(const QString &html);
QString emptyLine();

/// "label: value" on a line of its own, from a plain label.
QString reportInteger(const QString &label, qint64 value);

}  // namespace NbbHtml
