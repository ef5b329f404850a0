#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

/// A table of a report: texts in rows, with headers of columns, rows and groups of columns.
///
/// Texts are plain and are escaped, unless the cell's properties say that they are HTML. Rows may
/// have different lengths; short ones are filled with empty cells.
class NbbHtmlTable
{
public:
  enum Alignment { ALIGN_LEFT, ALIGN_CENTER, ALIGN_RIGHT };

  /// How a cell differs from the others.
  struct CellProperties
  {
    CellProperties() {}

    bool isHtml = false;
    bool isBold = false;
    QString color;            ///< of the text; empty for the usual one
    QString backgroundColor;  ///< empty for none
    int columnSpan = 1;
  };

  explicit NbbHtmlTable(const QString &caption = QString());

  void setColumnHeader(const QStringList &headers) { _columnHeaders = headers; }
  void setRowHeader(const QStringList &headers) { _rowHeaders = headers; }

  /// A header above the column headers: texts, each over `spans[i]` columns.
  void setSuperColumnHeader(const QStringList &headers, const QVector<int> &spans);

  /// Alignment of all cells (left by default), or of those of one column.
  void setAlignCell(Alignment alignment) { _cellAlignment = alignment; }
  void setAlignCell(int column, Alignment alignment);

  /// Alignment of the column headers (centred by default).
  void setAlignHeader(Alignment alignment) { _headerAlignment = alignment; }

  void addRow(const QStringList &texts, const CellProperties &properties = CellProperties());

  /// A row with properties of its own for each cell.
  void addRow(const QStringList &texts, const QVector<CellProperties> &properties);

  /// Puts one cell at the end of every row, and adds rows as needed.
  void addColumn(const QString &header, const QStringList &texts,
                 const CellProperties &properties = CellProperties());

  /// A row of one cell over the whole width.
  void addSpanRow(const QString &text, const CellProperties &properties = CellProperties());

  /// Removes rows and headers.
  void emptyTable();

  bool isEmpty() const { return _rows.isEmpty(); }
  int getNRows() const { return _rows.size(); }

  /// Number of columns without the row header.
  int getNColumns() const;

  QString toHtml() const;

private:
  struct Cell
  {
    QString text;
    CellProperties properties;
    bool spansRow = false;
  };
  using Row = QVector<Cell>;

  QString _headToHtml(int nColumns) const;
  QString _rowToHtml(int rank, int nColumns) const;
  QString _cellToHtml(const Cell &cell, int column, int span) const;

  QString _caption;
  QStringList _columnHeaders;
  QStringList _rowHeaders;
  QStringList _superHeaders;
  QVector<int> _superSpans;
  QList<Row> _rows;
  Alignment _cellAlignment = ALIGN_LEFT;
  Alignment _headerAlignment = ALIGN_CENTER;
  QVector<int> _columnAlignments;
};
