#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

namespace orvenal {

/// How a table of points is written in its file.
struct TableFormat
{
  /// AUTO goes by the ending of the file and what it begins with. GDAL: layers of points and
  /// rasters in one of the formats that the library of this name reads.
  enum Kind { AUTO, CSV, GEO_EAS, GDAL };
  Kind kind = AUTO;

  /// Of files with several: the layer (or the variable of a raster file) that is the table.
  QString layer;

  /// Of text tables: ',', ';', tab or ' ' (any number of blanks); 0 finds out from the header.
  char separator = 0;

  /// Of text tables: '.' or ','.
  char decimal = '.';

  /// Texts that stand for an undefined value. One that is a number stands for all its spellings
  /// ("-999" for -999.0).
  QStringList undefined = {QString(), QStringLiteral("NA")};
};

/// One of the tables in a file.
struct TableLayer
{
  QString name;
  QString geometry;      ///< "Point", "Polygon", "Raster" ...
  qint64 nRecords = -1;  ///< -1: not known without reading it
};

/// Reads a table of points record by record, whatever the format of its file.
///
/// Errors are NbeUserErrors that name the file and the place in it.
class TableReader
{
public:
  /// Opens a file. `shownName` stands for it in messages.
  static std::unique_ptr<TableReader> open(const QString &path, const QString &shownName,
                                           const TableFormat &format);

  /// The layers of a file; none when its format has no layers.
  static QList<TableLayer> listLayers(const QString &path, const QString &shownName,
                                      const TableFormat &format);

  /// The files that make up a table, absolute: that of the path first, then those beside it that
  /// belong to its format (.shx, .dbf and .prj of a Shapefile).
  static QStringList listFiles(const QString &path, const QString &shownName,
                               const TableFormat &format);

  virtual ~TableReader();
  TableReader(const TableReader &) = delete;
  TableReader &operator=(const TableReader &) = delete;

  /// The format as found, nothing left open.
  virtual TableFormat getFormat() const = 0;

  /// "CSV", "GEO-EAS", "GPKG (GeoPackage)"
  virtual QString getFormatName() const = 0;

  const QStringList &getColumns() const { return _columns; }

  /// The index of a column. When it is missing, the message lists those that exist; `wantedBy` says
  /// who asked.
  int findColumn(const QString &name, const QString &wantedBy) const;

  /// Where the current record stands, such as "line 12".
  QString getPlace() const { return _getPlace(); }

  /// Goes to the next record; false at the end of the file.
  virtual bool next() = 0;

  /// What a field of the current record holds; the number is set when it is one that `getNumber`
  /// would give. TEXT is all else that is not undefined.
  enum Field { NUMBER, UNDEFINED, TEXT };
  virtual Field classify(int column, double &number) const = 0;

  /// The number in a field of the current record, NbbGlobal::D_FFFF when it is undefined. Text that
  /// is no number, and numbers that are not finite or not below 1e30 in size are errors.
  virtual double getNumber(int column) const = 0;

  /// A field of the current record as text.
  virtual QString getText(int column) const = 0;

  /// The coordinate reference system that the file names, as WKT; empty when it names none.
  virtual QString getReference() const;

  /// Throws the error of a table without records.
  [[noreturn]] static void failEmpty(const QString &shownName);

  /// Throws the error of a field of the current record, or of the record.
  [[noreturn]] void fail(int column, const QString &message) const;
  [[noreturn]] void fail(const QString &message) const;

protected:
  explicit TableReader(const QString &shownName);

  const QString &_getShownName() const { return _shownName; }
  void _setColumns(const QStringList &columns) { _columns = columns; }

  virtual QString _getPlace() const = 0;

  /// Where the names of the columns stand.
  virtual QString _getHeaderPlace() const = 0;

  /// The name of a field in a table that has columns of its own, the coordinates: "x (field)" when
  /// it is one of theirs.
  static QString fieldName(const QString &name, const QStringList &taken);

  /// Why a column may be missing, for the message; empty without a reason.
  virtual QString _getMissingHint() const;

  [[noreturn]] void _failAt(const QString &place, const QString &message) const;

private:
  QString _shownName;
  QStringList _columns;
};

}  // namespace orvenal
