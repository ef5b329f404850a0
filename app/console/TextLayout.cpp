#include "app/console/TextLayout.h"

#include <QStringList>

namespace orvenal {

namespace {

constexpr int width = 80;

bool isTableRow(const QString &line)
{
  return line.startsWith('|');
}

/// Cells of a table's row; none for the row below the header.
QStringList cellsOf(const QString &row)
{
  QStringList cells;
  if (row.startsWith(QLatin1String("|-")))
    return cells;
  for (const QString &cell : row.mid(1, row.lastIndexOf('|') - 1).split('|'))
    cells << TextLayout::plain(cell.trimmed());
  return cells;
}

/// The first column as wide as its texts, the second one wrapped.
QString table(const QStringList &lines)
{
  QList<QStringList> rows;
  int first = 0;
  for (const QString &line : lines) {
    const QStringList cells = cellsOf(line);
    if (cells.size() < 2)
      continue;
    rows << cells;
    first = std::max(first, cells[0].size());
  }
  QString text;
  for (const QStringList &cells : rows)
    text +=
        TextLayout::wrapped(cells[0].leftJustified(first, QChar(0xA0)) + QChar(0xA0) + QChar(0xA0) +
                                QStringList(cells.mid(1)).join(QStringLiteral(", ")),
                            first + 4, 2) +
        '\n';
  return text;
}

/// Lines of one kind that belong together, as text.
QString block(const QStringList &lines)
{
  const QString &first = lines.first();
  if (isTableRow(first))
    return table(lines);
  if (first.startsWith('#')) {
    const QString title = TextLayout::plain(first.mid(first.indexOf(' ') + 1));
    return title.toUpper() + '\n';
  }
  const QString text = TextLayout::plain(lines.join(' ').simplified());
  return TextLayout::wrapped(text, first.startsWith(QLatin1String("- ")) ? 2 : 0, 0) + '\n';
}

bool beginsBlock(const QString &line, const QStringList &current)
{
  if (current.isEmpty())
    return false;
  return line.startsWith('#') || line.startsWith(QLatin1String("- ")) ||
         current.first().startsWith('#') || isTableRow(line) != isTableRow(current.first());
}

}  // namespace

QString TextLayout::plain(const QString &markdown)
{
  QString text = markdown;
  return text.remove('`').remove(QLatin1String("**"));
}

QString TextLayout::wrapped(const QString &text, int indent, int firstIndent)
{
  QString result(firstIndent, ' ');
  int column = firstIndent;
  bool isFirst = true;
  for (const QString &word : text.split(' ', Qt::SkipEmptyParts)) {
    if (!isFirst && column + 1 + word.size() > width) {
      result += '\n' + QString(indent, ' ');
      column = indent;
      isFirst = true;
    }
    result += (isFirst ? QString() : QStringLiteral(" ")) + word;
    column += word.size() + (isFirst ? 0 : 1);
    isFirst = false;
  }
  return result.replace(QChar(0xA0), ' ');
}

QString TextLayout::page(const QString &markdown)
{
  QString text;
  QStringList current;
  bool isCode = false;
  const auto finish = [&] {
    if (!current.isEmpty())
      text += block(current);
    current.clear();
  };
  for (const QString &line : markdown.split('\n')) {
    if (line.startsWith(QLatin1String("```"))) {
      finish();
      isCode = !isCode;
    } else if (isCode) {
      text += line + '\n';
    } else if (line.trimmed().isEmpty()) {
      finish();
      if (!text.isEmpty() && !text.endsWith(QLatin1String("\n\n")))
        text += '\n';
    } else {
      if (beginsBlock(line, current))
        finish();
      current << line;
    }
  }
  finish();
  return text.trimmed();
}

}  // namespace orvenal
