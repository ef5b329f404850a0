#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace orvenal {

/// A text in lines of at most `width` characters; words that are longer stay whole.
QStringList wrapped(const QString &text, int width);

/// A command line cut before its options, for lines of about `width` characters.
QStringList commandLines(const QString &command, int width);

/// Columns that a terminal takes for a text: two for a letter of Chinese, Japanese or Korean.
int shownWidth(const QString &text);

/// A text with dots in place of its middle when it is wider than that.
QString shortened(const QString &text, int width);

/// Rows of texts: the first column to the left, the next ones to the right. Only the first
/// `nColumns` are shown.
QString alignedColumns(const QList<QStringList> &rows, int nColumns);

/// The same with all columns, those that do not fit the width in further tables below, each with
/// the first column.
QString foldedColumns(const QList<QStringList> &rows, int width);

}  // namespace orvenal
