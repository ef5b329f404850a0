#include "app/study/ColumnGuess.h"

#include "app/study/TableSummary.h"

#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace orvenal {

namespace {

/// A name in the form in which names are compared: lower case, letters and digits only, without a
/// unit in brackets and without what says "coordinate" or names a projection.
QString bareName(const QString &name)
{
  static const QRegularExpression unit(QStringLiteral("[\\(\\[].*$"));
  static const QRegularExpression filler(
      QStringLiteral("(coordinates?|coords?|utm|wgs84|mid|collar|point)"));
  static const QRegularExpression other(QStringLiteral("[^\\p{L}\\p{N}]"));
  QString bare = name.toLower();
  bare.remove(unit).remove(other);
  const QString stripped = QString(bare).remove(filler);
  return stripped.isEmpty() ? bare : stripped;
}

/// Pairs of names in order of preference: a table with x, y, lon and lat is placed by x and y.
struct Pair
{
  const char *const x;
  const char *const y;
  bool isGeographic;
};
const Pair pairs[] = {{"x", "y", false},
                      {"easting", "northing", false},
                      {"eastings", "northings", false},
                      {"east", "north", false},
                      {"e", "n", false},
                      {"xcentre", "ycentre", false},
                      {"xcenter", "ycenter", false},
                      {"xc", "yc", false},
                      {"xm", "ym", false},
                      {"rechtswert", "hochwert", false},
                      {"rechts", "hoch", false},
                      {"este", "norte", false},
                      {"est", "nord", false},
                      {"xlocation", "ylocation", false},
                      {"longitude", "latitude", true},
                      {"long", "lat", true},
                      {"lon", "lat", true},
                      {"lng", "lat", true},
                      {"decimallongitude", "decimallatitude", true},
                      {"l\u00E4nge", "breite", true},
                      {"laenge", "breite", true},
                      {"longitud", "latitud", true},
                      {"longitudine", "latitudine", true},
                      {"l\u00E4ngengrad", "breitengrad", true},
                      {"lengtegraad", "breedtegraad", true}};
const char *const heights[] = {"z",       "elevation", "elev",      "altitude", "alt", "height",
                               "rl",      "zcentre",   "zcenter",   "zc",       "zm",  "cota",
                               "hauteur", "hoehe",     "h\u00F6he", "depth"};

int indexOf(const QStringList &bareNames, const char *name)
{
  return bareNames.indexOf(QString::fromUtf8(name));
}

/// Whether one of the words of a name is that of longitudes (or latitudes): "lon_dd", "GPS lat".
bool hasGeographicWord(const QString &name, const char *const(Pair::*side))
{
  static const QRegularExpression other(QStringLiteral("[^\\p{L}]+"));
  const QStringList words = name.toLower().split(other);
  return std::any_of(std::begin(pairs), std::end(pairs), [&](const Pair &pair) {
    return pair.isGeographic && words.contains(QString::fromUtf8(pair.*side));
  });
}

/// Running numbers, codes and the like, by their names.
bool isIdentifier(const QString &name)
{
  static const QRegularExpression pattern(
      QStringLiteral(
          "(^|[^\\p{L}])(id|fid|oid|no|nr|num|number|code|index|gid|objectid|row|rownames|"
          "sample|station|hole|holeid|bhid|line|year|date|time|from|to)($|[^\\p{L}])"),
      QRegularExpression::CaseInsensitiveOption);
  return pattern.match(name).hasMatch();
}

/// A coordinate by its name, of another system than the one that is used. Letters alone, but those
/// of the fields of a layer, may be elements (N).
bool isPlace(const QString &name)
{
  static const QRegularExpression field(QStringLiteral("^[xyz] \\(field\\)$"));
  const QString bare = bareName(name);
  const auto isThis = [&bare](const char *known) { return bare == QString::fromUtf8(known); };
  // "elevation_m"
  const auto isHeight = [&](const char *known) {
    constexpr int shortestWord = 4;
    const QString height = QString::fromUtf8(known);
    return bare == height || (height.size() >= shortestWord && bare.startsWith(height));
  };
  if (field.match(name).hasMatch() || std::any_of(std::begin(heights), std::end(heights), isHeight))
    return true;
  return bare.size() > 1 && std::any_of(std::begin(pairs), std::end(pairs), [&](const Pair &pair) {
           return isThis(pair.x) || isThis(pair.y);
         });
}

}  // namespace

CoordinateColumns guessCoordinates(const QStringList &columns)
{
  QStringList bareNames;
  for (const QString &column : columns)
    bareNames << bareName(column);
  CoordinateColumns found;
  for (const Pair &pair : pairs) {
    const int x = indexOf(bareNames, pair.x);
    const int y = indexOf(bareNames, pair.y);
    if (x < 0 || y < 0)
      continue;
    found = {x, y, -1, pair.isGeographic};
    break;
  }
  for (const char *height : heights) {
    if (found.isComplete() && found.z < 0)
      found.z = indexOf(bareNames, height);
  }
  return found;
}

bool areNamedLikeDegrees(const QString &x, const QString &y)
{
  return (hasGeographicWord(x, &Pair::x) && hasGeographicWord(y, &Pair::y)) ||
         (hasGeographicWord(x, &Pair::y) && hasGeographicWord(y, &Pair::x));
}

bool holdsNumbers(const ColumnSummary &column)
{
  return column.getType() == ColumnSummary::NUMBERS ||
         (column.getType() == ColumnSummary::MIXED && !(column.marks + column.limits).isEmpty() &&
          column.nNumbers > column.nTexts);
}

int guessVariable(const TableSummary &summary)
{
  enum Rank { MEASURED, PLACE, IDENTIFIER, NOTHING };
  const CoordinateColumns &taken = summary.coordinates;
  int best = -1;
  Rank bestRank = NOTHING;
  for (int i = 0; i < summary.columns.size(); ++i) {
    const ColumnSummary &column = summary.columns[i];
    const bool isTaken = i == taken.x || i == taken.y || i == taken.z;
    if (isTaken || !holdsNumbers(column) || column.minimum == column.maximum)
      continue;
    const Rank rank = isIdentifier(column.name) ? IDENTIFIER
                      : isPlace(column.name)    ? PLACE
                                                : MEASURED;
    if (rank >= bestRank)
      continue;
    best = i;
    bestRank = rank;
  }
  return best;
}

int guessLine(const QStringList &columns)
{
  static const QRegularExpression pattern(
      QStringLiteral("^(hole|bh|dh|ddh|borehole|drillhole|drill|well|sondage|forage|bohrung|sondeo)"
                     "(id|no|nr|num|number|name|code)?$"));
  for (int i = 0; i < columns.size(); ++i) {
    if (pattern.match(bareName(columns[i])).hasMatch())
      return i;
  }
  return -1;
}

}  // namespace orvenal
