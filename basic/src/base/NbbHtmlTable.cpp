#include "basic/base/NbbHtmlTable.h"

#include "basic/base/NbbHtml.h"

#include <algorithm>

namespace {

const char *alignmentName(int alignment)
{
  switch (alignment) {
    case NbbHtmlTable::ALIGN_CENTER:
      return "center";
    case NbbHtmlTable::ALIGN_RIGHT:
      return "right";
    default:
      return "left";
  }
}

QString styleOf(int alignment, const QString &color, const QString &background)
{
  QString style = QStringLiteral("text-align:") + QLatin1String(alignmentName(alignment));
  if (!color.isEmpty())
    style += QStringLiteral(";color:") + color.toHtmlEscaped();
  if (!background.isEmpty())
    style += QStringLiteral(";background-color:") + background.toHtmlEscaped();
  return style;
}

QString element(const QString &tag, const QString &scope, int span, const QString &style,
                const QString &content)
{
  QString html = '<' + tag;
  if (!scope.isEmpty())
    html += QStringLiteral(" scope=\"") + scope + '"';
  if (span > 1)
    html += QStringLiteral(" colspan=\"%1\"").arg(span);
  html += QStringLiteral(" style=\"") + style + QStringLiteral("\">");
  return html + content + QStringLiteral("</") + tag + '>';
}

QString headerElement(const QString &text, const QString &scope, int span, int alignment)
{
  return element(QStringLiteral("th"), scope, span,
                 styleOf(alignment, QString(), NbbHtml::Table::HeaderColor), NbbHtml::toHtml(text));
}

}  // namespace

NbbHtmlTable::NbbHtmlTable(const QString &caption) : _caption(caption) {}

void NbbHtmlTable::setSuperColumnHeader(const QStringList &headers, const QVector<int> &spans)
{
  _superHeaders = headers;
  _superSpans = spans;
}

void NbbHtmlTable::setAlignCell(int column, Alignment alignment)
{
  if (column < 0)
    return;
  while (_columnAlignments.size() <= column)
    _columnAlignments.append(-1);
  _columnAlignments[column] = alignment;
}

void NbbHtmlTable::addRow(const QStringList &texts, const CellProperties &properties)
{
  addRow(texts, QVector<CellProperties>(texts.size(), properties));
}

void NbbHtmlTable::addRow(const QStringList &texts, const QVector<CellProperties> &properties)
{
  Row row;
  for (int i = 0; i < texts.size(); ++i)
    row.append({texts[i], properties.value(i), false});
  _rows.append(row);
}

void NbbHtmlTable::addColumn(const QString &header, const QStringList &texts,
                             const CellProperties &properties)
{
  const int column = getNColumns();
  while (_columnHeaders.size() < column)
    _columnHeaders.append(QString());
  _columnHeaders.append(header);
  while (_rows.size() < texts.size())
    _rows.append(Row());
  for (int i = 0; i < texts.size(); ++i) {
    int width = 0;
    for (const Cell &cell : qAsConst(_rows[i]))
      width += std::max(1, cell.properties.columnSpan);
    for (; width < column; ++width)
      _rows[i].append(Cell());
    _rows[i].append({texts[i], properties, false});
  }
}

void NbbHtmlTable::addSpanRow(const QString &text, const CellProperties &properties)
{
  _rows.append(Row{{text, properties, true}});
}

void NbbHtmlTable::emptyTable()
{
  _columnHeaders.clear();
  _rowHeaders.clear();
  _superHeaders.clear();
  _superSpans.clear();
  _rows.clear();
}

int NbbHtmlTable::getNColumns() const
{
  int nColumns = _columnHeaders.size();
  for (const Row &row : _rows) {
    int width = 0;
    for (const Cell &cell : row)
      width += cell.spansRow ? 1 : std::max(1, cell.properties.columnSpan);
    nColumns = std::max(nColumns, width);
  }
  return nColumns;
}

QString NbbHtmlTable::toHtml() const
{
  const int nColumns = getNColumns();
  QString html = QStringLiteral("<table>\n");
  if (!_caption.isEmpty())
    html +=
        QStringLiteral("<caption>") + NbbHtml::toHtml(_caption) + QStringLiteral("</caption>\n");
  html += _headToHtml(nColumns);
  html += QStringLiteral("<tbody>\n");
  for (int rank = 0; rank < _rows.size(); ++rank)
    html += _rowToHtml(rank, nColumns);
  return html + QStringLiteral("</tbody>\n</table>\n");
}

QString NbbHtmlTable::_headToHtml(int nColumns) const
{
  if (_columnHeaders.isEmpty() && _superHeaders.isEmpty())
    return QString();
  const QString corner = _rowHeaders.isEmpty() ? QString()
                                               : element(QStringLiteral("td"), QString(), 1,
                                                         styleOf(ALIGN_LEFT, {}, {}), QString());
  QString html = QStringLiteral("<thead>\n");
  if (!_superHeaders.isEmpty()) {
    html += QStringLiteral("<tr>") + corner;
    for (int i = 0; i < _superHeaders.size(); ++i)
      html += headerElement(_superHeaders[i], QStringLiteral("colgroup"), _superSpans.value(i, 1),
                            ALIGN_CENTER);
    html += QStringLiteral("</tr>\n");
  }
  if (!_columnHeaders.isEmpty()) {
    html += QStringLiteral("<tr>") + corner;
    for (int column = 0; column < nColumns; ++column)
      html +=
          headerElement(_columnHeaders.value(column), QStringLiteral("col"), 1, _headerAlignment);
    html += QStringLiteral("</tr>\n");
  }
  return html + QStringLiteral("</thead>\n");
}

QString NbbHtmlTable::_rowToHtml(int rank, int nColumns) const
{
  const Row &row = _rows[rank];
  QString html = QStringLiteral("<tr>");
  if (row.size() == 1 && row[0].spansRow) {
    const int width = nColumns + (_rowHeaders.isEmpty() ? 0 : 1);
    return html + _cellToHtml(row[0], 0, width) + QStringLiteral("</tr>\n");
  }
  if (!_rowHeaders.isEmpty())
    html += headerElement(_rowHeaders.value(rank), QStringLiteral("row"), 1, ALIGN_LEFT);
  int column = 0;
  for (const Cell &cell : row) {
    const int span = std::max(1, cell.properties.columnSpan);
    html += _cellToHtml(cell, column, span);
    column += span;
  }
  for (; column < nColumns; ++column)
    html += _cellToHtml(Cell(), column, 1);
  return html + QStringLiteral("</tr>\n");
}

QString NbbHtmlTable::_cellToHtml(const Cell &cell, int column, int span) const
{
  const CellProperties &properties = cell.properties;
  const int ofColumn = cell.spansRow ? -1 : _columnAlignments.value(column, -1);
  const int alignment = ofColumn >= 0 ? ofColumn : int(_cellAlignment);
  QString content = properties.isHtml ? cell.text : NbbHtml::toHtml(cell.text);
  if (properties.isBold)
    content = NbbHtml::bold(content);
  return element(QStringLiteral("td"), QString(), span,
                 styleOf(alignment, properties.color, properties.backgroundColor), content);
}
