#include "app/console/TextTable.h"

#include <QRegularExpression>
#include <QVector>

#include <algorithm>

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

int columnWidth(const QList<QStringList> &rows, int column)
{
  int width = 0;
  for (const QStringList &row : rows)
    width = std::max(width, row[column].size());
  return width;
}

QString aligned(const QList<QStringList> &rows, const QVector<int> &columns)
{
  QStringList lines(QVector<QString>(rows.size()).toList());
  for (const int column : columns) {
    const int width = columnWidth(rows, column);
    for (int i = 0; i < rows.size(); ++i)
      lines[i] += column == 0 ? rows[i][column].leftJustified(width)
                              : "  " + rows[i][column].rightJustified(width);
  }
  return lines.join('\n');
}

}  // namespace

QStringList wrapped(const QString &text, int width)
{
  return filled(text.simplified().split(' '), width);
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
