#pragma once

#include "app/io/TableReader.h"
#include "app/study/ColumnGuess.h"
#include "basic/base/NbbGlobal.h"
#include "basic/geom/NbgGeomGrid.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>

namespace orvenal {

/// What a column of a table holds.
struct ColumnSummary
{
  /// MIXED: numbers and texts. NOTHING: all undefined.
  enum Type { NUMBERS, TEXTS, MIXED, NOTHING };

  QString name;
  qint64 nNumbers = 0;
  qint64 nTexts = 0;  ///< fields that are neither numbers nor undefined
  qint64 nUndefined = 0;
  bool isWhole = true;  ///< all its numbers are whole ones

  /// Of its numbers; undefined when it has none.
  double minimum = NbbGlobal::D_FFFF;
  double mean = NbbGlobal::D_FFFF;
  double maximum = NbbGlobal::D_FFFF;

  /// The first text; empty when it has none.
  QString example;

  /// Texts and numbers ("-999") that look as if they stood for undefined values, and are not listed
  /// in the format as such. Numbers among them take part in minimum and mean.
  QStringList marks;

  /// Texts that say that a value is below a limit of detection: "<0.5".
  QStringList limits;

  Type getType() const;
};

/// What a table of points holds.
struct TableSummary
{
  /// As found: kind, separator, decimal mark and layer are never left open.
  TableFormat format;

  /// "CSV", "GEO-EAS", "GPKG (GeoPackage)"
  QString formatName;

  QString reference;  ///< coordinate reference system of the file, WKT; empty without one
  qint64 nRecords = 0;
  QList<ColumnSummary> columns;

  /// A guess by names; only columns of numbers. A third one is taken when a tenth of the places at
  /// least lie above others, as along boreholes: else heights are a value of points on a surface.
  CoordinateColumns coordinates;
  qint64 nPlaces = 0;             ///< records whose coordinates are all defined
  qint64 nDuplicates = 0;         ///< at the place of an earlier one; -1: too many places to tell
  std::array<double, 3> lower{};  ///< corner of the box around the places; without any meaningless
  std::array<double, 3> upper{};

  /// The grid on whose nodes all places lie, when there is one: see findGrid().
  std::optional<NbgGeomGrid> grid;

  int findColumn(const QString &name) const;
};

/// Reads a table from end to end. A text table that has its numbers with decimal commas is read as
/// such when the format says decimal points. Memory: some 60 bytes per record for the places of at
/// most 20 million records, and nothing else that grows. Damaged tables are NbeUserErrors.
///
/// `axes` are the columns of the coordinates, two or three of them; without it they are guessed.
TableSummary summarizeTable(const QString &path, const QString &shownName,
                            const TableFormat &format, const QStringList &axes = QStringList());

}  // namespace orvenal
