#pragma once

#include <QString>

namespace orvenal {

/// Texts for a terminal of 80 columns.
namespace TextLayout {

/// A text without the marks of Markdown inside a line: `code` and **strong** words.
QString plain(const QString &markdown);

/// Broken into lines between words, each but the first one indented.
QString wrapped(const QString &text, int indent, int firstIndent);

/// A page of Markdown: headings, paragraphs, lists, code and tables of two columns.
QString page(const QString &markdown);

}  // namespace TextLayout

}  // namespace orvenal
