#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace orvenal {

/// What a table of points consists of.
struct TableLayout
{
  struct Column
  {
    QString name;
    bool isText = false;
  };

  QList<Column> columns;
  int x = 0;   ///< columns of the coordinates; they hold numbers
  int y = 1;   ///< -1 when there are none
  int z = -1;  ///< -1 in two dimensions
  QString title;
  QString crs;                  ///< as a user names it, or WKT; may be empty
  double undefinedMark = -999;  ///< stands for undefined numbers where the format has no other way

  /// A mark that is below `minimum`, the smallest number of a table: -999, -9999 ...
  static double markBelow(double minimum);
};

/// One point: a number or a text for each column of the layout. Undefined numbers are
/// NbbGlobal::D_FFFF.
struct TableRecord
{
  std::vector<double> numbers;
  std::vector<QString> texts;

  explicit TableRecord(int nColumns) : numbers(std::size_t(nColumns)), texts(std::size_t(nColumns))
  {
  }
};

/// Writes a table of points record by record, in constant memory.
///
/// CSV: `x,y,...` with a header line; as many digits as it takes to read back the same bits; an
/// undefined number is an empty field. GEO-EAS: title, number and names of columns, then the rows,
/// numbers only. GeoPackage: a layer of points, the other columns as fields of type real and text,
/// NULL for what is undefined.
///
/// A file that cannot be written is an NbeUserError that names it; a stop request is thrown as
/// NbeException.
class TableWriter
{
public:
  /// The endings by which create() knows the formats, without dot.
  static QStringList endings();

  /// Opens a file for writing; the ending of `shownName`, which stands for the file in messages,
  /// says in what format.
  static std::unique_ptr<TableWriter> create(const QString &path, const QString &shownName,
                                             const TableLayout &layout);

  virtual ~TableWriter() = default;

  virtual void add(const TableRecord &record) = 0;

  /// To be called after the last record: without it the file is not complete.
  virtual void finish() = 0;
};

}  // namespace orvenal
