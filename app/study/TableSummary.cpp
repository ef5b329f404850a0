#include "app/study/TableSummary.h"

#include "app/io/FieldParser.h"
#include "app/study/GridFinder.h"

#include <QObject>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace orvenal {

namespace {

/// What a column holds, while it is read.
struct ColumnTally
{
  static constexpr int mostTexts = 5;

  qint64 nNumbers = 0;
  qint64 nTexts = 0;
  qint64 nUndefined = 0;
  bool isWhole = true;
  double mean = 0.;
  double minimum = std::numeric_limits<double>::infinity();
  double second = std::numeric_limits<double>::infinity();  // smallest number above the minimum
  double maximum = -std::numeric_limits<double>::infinity();
  QStringList texts;  // the first different ones

  void add(double number)
  {
    ++nNumbers;
    mean += (number - mean) / double(nNumbers);
    isWhole = isWhole && number == std::floor(number);
    maximum = std::max(maximum, number);
    if (number < minimum) {
      second = minimum;
      minimum = number;
    } else if (number > minimum) {
      second = std::min(second, number);
    }
  }

  void add(const QString &text)
  {
    ++nTexts;
    if (texts.size() < mostTexts && !texts.contains(text))
      texts << text;
  }
};

/// Whether the smallest number stands apart from the others and is one that is customary for "no
/// value".
bool isMark(const ColumnTally &tally)
{
  static const double customary[] = {-9,      -99,      -999,   -9999,  -99999,
                                     -999999, -9999999, -99.99, -999.99};
  constexpr double absurd = -1e20;
  if (tally.nNumbers == 0 || !std::isfinite(tally.second))
    return false;
  const bool isCustomary =
      std::find(std::begin(customary), std::end(customary), tally.minimum) != std::end(customary);
  return tally.minimum < absurd || (isCustomary && tally.second > 0.5 * tally.minimum);
}

bool hasDigits(const QString &text)
{
  static const QRegularExpression digit(QStringLiteral("\\d"));
  return text.contains(digit);
}

/// A text among numbers that holds no digits ("n/a"), or is a number that no value can be.
bool isMark(const QString &text)
{
  bool isNumber = false;
  text.toDouble(&isNumber);
  return isNumber || !hasDigits(text);
}

ColumnSummary summaryOf(const QString &name, const ColumnTally &tally)
{
  ColumnSummary summary;
  summary.name = name;
  summary.nNumbers = tally.nNumbers;
  summary.nTexts = tally.nTexts;
  summary.nUndefined = tally.nUndefined;
  summary.isWhole = tally.isWhole && tally.nNumbers > 0;
  if (tally.nNumbers > 0) {
    summary.minimum = tally.minimum;
    summary.mean = tally.mean;
    summary.maximum = tally.maximum;
  }
  if (!tally.texts.isEmpty())
    summary.example = tally.texts.first();
  if (isMark(tally))
    summary.marks << QString::number(tally.minimum, 'g', 12);
  for (const QString &text : tally.texts) {
    if (tally.nNumbers > 0 && isBelowLimit(text))
      summary.limits << text;
    else if (tally.nNumbers > 0 && isMark(text))
      summary.marks << text;
  }
  return summary;
}

/// Whether all texts that were kept and hold digits are numbers with a decimal comma.
bool hasDecimalCommas(const ColumnTally &tally)
{
  static const QRegularExpression number(QStringLiteral("^[+-]?\\d*,\\d+(?:[eE][+-]?\\d+)?$"));
  int nNumbers = 0;
  for (const QString &text : tally.texts) {
    if (number.match(text).hasMatch())
      ++nNumbers;
    else if (hasDigits(text) && !isBelowLimit(text))
      return false;
  }
  return nNumbers > 0;
}

void tallyRecord(const TableReader &reader, std::vector<ColumnTally> &tallies,
                 std::vector<double> &numbers)
{
  for (std::size_t i = 0; i < tallies.size(); ++i) {
    double number = NbbGlobal::D_FFFF;
    switch (reader.classify(int(i), number)) {
      case TableReader::NUMBER:
        tallies[i].add(number);
        break;
      case TableReader::TEXT:
        if (tallies[i].texts.size() < ColumnTally::mostTexts)
          tallies[i].add(reader.getText(int(i)));
        else
          ++tallies[i].nTexts;
        break;
      case TableReader::UNDEFINED:
        ++tallies[i].nUndefined;
    }
    numbers[i] = number;
  }
}

/// Sorts places and says how many lie at the place of another one, and how many above another one.
struct Coincidences
{
  qint64 nSame = 0;
  qint64 nAbove = 0;
};
Coincidences sortPlaces(std::vector<Place> &places)
{
  std::sort(places.begin(), places.end());
  Coincidences found;
  for (std::size_t i = 1; i < places.size(); ++i) {
    const bool isAbove = places[i][0] == places[i - 1][0] && places[i][1] == places[i - 1][1];
    const bool isSame = isAbove && places[i][2] == places[i - 1][2];
    found.nSame += isSame ? 1 : 0;
    found.nAbove += isAbove && !isSame ? 1 : 0;
  }
  return found;
}

/// More are counted and not kept; there is memory for these.
constexpr qint64 mostPlaces = 20000000;

/// Box, coincidences, third axis and grid.
void summarizePlaces(std::vector<Place> &places, bool isGuess, TableSummary &summary)
{
  if (places.empty() || summary.nPlaces > mostPlaces) {
    summary.nDuplicates = places.empty() ? 0 : -1;
    summary.coordinates.z = -1;
    return;
  }
  constexpr qint64 leastAbove = 10;  // one of so many
  if (isGuess && summary.coordinates.z >= 0 &&
      sortPlaces(places).nAbove * leastAbove < summary.nPlaces)
    summary.coordinates.z = -1;
  if (summary.coordinates.z < 0) {
    for (Place &place : places)
      place[2] = 0.;
  }
  summary.nDuplicates = sortPlaces(places).nSame;
  summary.grid = findGrid(places, summary.nPlaces - summary.nDuplicates);
}

void addPlace(const Place &place, std::vector<Place> &places, TableSummary &summary)
{
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const bool isFirst = summary.nPlaces == 0;
    summary.lower[axis] = isFirst ? place[axis] : std::min(summary.lower[axis], place[axis]);
    summary.upper[axis] = isFirst ? place[axis] : std::max(summary.upper[axis], place[axis]);
  }
  if (++summary.nPlaces <= mostPlaces)
    places.push_back(place);
}

bool isNumeric(const TableSummary &summary, int column)
{
  return column >= 0 && summary.columns[column].getType() == ColumnSummary::NUMBERS;
}

CoordinateColumns findCoordinates(const TableReader &reader, const QStringList &axes)
{
  if (axes.isEmpty())
    return guessCoordinates(reader.getColumns());
  CoordinateColumns columns;
  columns.x = reader.findColumn(axes[0], QObject::tr("coordinate"));
  columns.y = reader.findColumn(axes[1], QObject::tr("coordinate"));
  columns.z = axes.size() > 2 ? reader.findColumn(axes[2], QObject::tr("coordinate")) : -1;
  return columns;
}

TableSummary summarize(TableReader &reader, const QStringList &axes, bool &hasCommas)
{
  TableSummary summary;
  summary.format = reader.getFormat();
  summary.formatName = reader.getFormatName();
  summary.reference = reader.getReference();
  const QStringList &names = reader.getColumns();
  CoordinateColumns guess = findCoordinates(reader, axes);
  std::vector<ColumnTally> tallies(std::size_t(names.size()));
  std::vector<double> numbers(tallies.size());
  std::vector<Place> places;
  const auto number = [&](int column) { return column < 0 ? 0. : numbers[std::size_t(column)]; };
  while (reader.next()) {
    ++summary.nRecords;
    tallyRecord(reader, tallies, numbers);
    const Place place = {number(guess.x), number(guess.y), number(guess.z)};
    if (guess.isComplete() && NbbGlobal::isDefined(place[0]) && NbbGlobal::isDefined(place[1]))
      addPlace(place, places, summary);
  }
  for (int i = 0; i < names.size(); ++i)
    summary.columns << summaryOf(names[i], tallies[std::size_t(i)]);
  hasCommas = std::any_of(tallies.begin(), tallies.end(), hasDecimalCommas);
  if (!isNumeric(summary, guess.x) || !isNumeric(summary, guess.y)) {
    summary.nPlaces = 0;
    return summary;
  }
  if (!isNumeric(summary, guess.z) || summary.columns[guess.z].nUndefined > 0)
    guess.z = -1;
  summary.coordinates = guess;
  summarizePlaces(places, axes.isEmpty(), summary);
  return summary;
}

}  // namespace

ColumnSummary::Type ColumnSummary::getType() const
{
  if (nTexts == 0)
    return nNumbers > 0 ? NUMBERS : NOTHING;
  return nNumbers > 0 ? MIXED : TEXTS;
}

int TableSummary::findColumn(const QString &name) const
{
  for (int i = 0; i < columns.size(); ++i) {
    if (columns[i].name == name)
      return i;
  }
  return -1;
}

TableSummary summarizeTable(const QString &path, const QString &shownName,
                            const TableFormat &format, const QStringList &axes)
{
  bool hasCommas = false;
  const std::unique_ptr<TableReader> reader = TableReader::open(path, shownName, format);
  const TableSummary summary = summarize(*reader, axes, hasCommas);
  TableFormat withCommas = reader->getFormat();
  if (!hasCommas || withCommas.decimal == ',' || withCommas.separator == ',')
    return summary;
  withCommas.decimal = ',';
  return summarize(*TableReader::open(path, shownName, withCommas), axes, hasCommas);
}

}  // namespace orvenal
