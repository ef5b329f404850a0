#pragma once

#include <QStringList>

namespace orvenal {

struct ColumnSummary;
struct TableSummary;

/// Columns of a table whose names are those of coordinates; -1 where none is.
struct CoordinateColumns
{
  int x = -1;
  int y = -1;
  int z = -1;

  /// They are named longitude and latitude.
  bool isGeographic = false;

  bool isComplete() const { return x >= 0 && y >= 0; }
};

/// Goes by the names alone, upper and lower case alike: x and y, X_UTM, east and north, easting,
/// lon and lat, Rechtswert ..., with a unit behind or not; z, elevation or depth for the third one.
/// X and y always come from one pair of names.
CoordinateColumns guessCoordinates(const QStringList &columns);

/// Whether two columns of coordinates are named longitude and latitude, in either order and in one
/// of several languages; other words may stand beside these: "GPS lat", "lon_wgs84".
bool areNamedLikeDegrees(const QString &x, const QString &y);

/// Numbers, and besides them at most texts that look as if they stood for undefined values.
bool holdsNumbers(const ColumnSummary &column);

/// The column that is most likely the variable of a study: the first one of numbers that is no
/// coordinate (of another system neither, if there is a better one), no running number or code and
/// not constant; -1 when there is none.
int guessVariable(const TableSummary &summary);

/// The column that names the borehole of a sample, by its name; -1 when there is none.
int guessLine(const QStringList &columns);

}  // namespace orvenal
