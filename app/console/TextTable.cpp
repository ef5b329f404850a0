#include "app/console/TextTable.h"

#include <QRegularExpression>
#include <QVector>

#include <algorithm>
#include <iterator>

namespace orvenal {

namespace {

QStringList filled(const QStringList &words, int width)
{
  QStringList lines;
  for (const QString &word : words) {
    if (!lines.isEmpty() && lines.last().size() + 1 + word.size() <= width)
      lines.last() += ' ' + word;
    else
      lines << word;
  }
  return lines;
}

/// Unicode Standard Annex 11, without its rarer blocks.
bool isWide(uint letter)
{
  constexpr uint blocks[][2] = {{0x1100, 0x115F}, {0x2E80, 0xA4CF},  {0xAC00, 0xD7A3},
                                {0xF900, 0xFAFF}, {0xFE30, 0xFE6F},  {0xFF00, 0xFF60},
                                {0xFFE0, 0xFFE6}, {0x20000, 0x3FFFD}};
  return std::any_of(std::begin(blocks), std::end(blocks), [letter](const uint(&block)[2]) {
    return letter >= block[0] && letter <= block[1];
  });
}

int columnWidth(const QList<QStringList> &rows, int column)
{
  int width = 0;
  for (const QStringList &row : rows)
    width = std::max(width, shownWidth(row[column]));
  return width;
}

QString aligned(const QList<QStringList> &rows, const QVector<int> &columns)
{
  QStringList lines(QVector<QString>(rows.size()).toList());
  for (const int column : columns) {
    const int width = columnWidth(rows, column);
    for (int i = 0; i < rows.size(); ++i) {
      const QString blanks(width - shownWidth(rows[i][column]), ' ');
      lines[i] += column == 0 ? rows[i][column] + blanks : "  " + blanks + rows[i][column];
    }
  }
  return lines.join('\n');
}

}  // namespace

QStringList wrapped(const QString &text, int width)
{
  return filled(text.simplified().split(' '), width);
}

int shownWidth(const QString &text)
{
  int width = 0;
  for (const uint letter : text.toUcs4())
    width += QChar::category(letter) == QChar::Mark_NonSpacing ? 0 : isWide(letter) ? 2 : 1;
  return width;
}

QString shortened(const QString &text, int width)
{
  if (shownWidth(text) <= width)
    return text;
  const QString dots = QStringLiteral("...");
  QVector<uint> left = text.toUcs4();
  QVector<uint> right = left.mid(left.size() / 2);
  left.resize(left.size() / 2);
  const auto joined = [&] {
    return QString::fromUcs4(left.constData(), left.size()) + dots +
           QString::fromUcs4(right.constData(), right.size());
  };
  while (!left.isEmpty() && !right.isEmpty() && shownWidth(joined()) > width) {
    if (left.size() >= right.size())
      left.removeLast();
    else
      right.removeFirst();
  }
  return joined();
}

QStringList commandLines(const QString &command, int width)
{
  static const QRegularExpression beforeOption(QStringLiteral(" (?=--)"));
  return filled(command.split(beforeOption), width);
}

QString alignedColumns(const QList<QStringList> &rows, int nColumns)
{
  QVector<int> columns;
  for (int column = 0; column < nColumns; ++column)
    columns << column;
  return aligned(rows, columns);
}

QString foldedColumns(const QList<QStringList> &rows, int width)
{
  const int nColumns = rows.first().size();
  const int first = columnWidth(rows, 0);
  QStringList tables;
  for (int column = 1; column < nColumns;) {
    QVector<int> columns = {0};
    int used = first;
    do {
      used += 2 + columnWidth(rows, column);
      columns << column++;
    } while (column < nColumns && used + 2 + columnWidth(rows, column) <= width);
    tables << aligned(rows, columns);
  }
  return tables.join(QStringLiteral("\n\n"));
}

}  // namespace orvenal
