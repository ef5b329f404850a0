#include "app/commands/DraftCompletion.h"

#include "app/base/Suggestion.h"
#include "app/base/UsageError.h"
#include "app/commands/JobDraft.h"
#include "app/io/TableReader.h"
#include "app/job/JobObject.h"
#include "app/study/ColumnGuess.h"
#include "app/study/GridLayout.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QObject>

#include <utility>

namespace orvenal {

namespace {

/// A column that has to be named, unless the table has one of the usual name.
void requireColumn(const JobDraft &draft, const char *path, const char *option,
                   const TableReader &reader, const QString &usualName = QString())
{
  if (draft.has(key(path)) || reader.getColumns().contains(usualName))
    return;
  throw UsageError(QObject::tr("%1 is missing; columns of %2: %3")
                       .arg(key(option), draft.get(key("data.file")).toString(),
                            quotedList(reader.getColumns())));
}

std::unique_ptr<TableReader> openData(const JobDraft &draft)
{
  const JobTable table = draft.readData().data;
  return TableReader::open(table.file, table.shown, table.format);
}

QJsonArray toArray(const std::vector<double> &values)
{
  QJsonArray array;
  for (const double value : values)
    array.append(value);
  return array;
}

std::vector<double> toNumbers(const QJsonValue &value)
{
  std::vector<double> numbers;
  for (const QJsonValue &number : value.toArray())
    numbers.push_back(number.toDouble());
  return numbers;
}

QString joined(const std::vector<double> &values)
{
  QStringList texts;
  for (const double value : values)
    texts << QString::number(value, 'g', 12);
  return texts.join(',');
}

}  // namespace

void completeFit(JobDraft &draft)
{
  if (draft.isGiven(key("fit")))
    draft.setDefault(key("variogram"), QJsonObject());
}

void completeNeighborhood(JobDraft &draft)
{
  if (draft.isGiven(key("neighborhood")) && !draft.isGiven(key("neighborhood.type")))
    draft.set(key("neighborhood.type"), QStringLiteral("moving"), key("--radius"));
}

void completeCrossValidation(JobDraft &draft)
{
  const QString kind = key("crossValidation.leaveOut");
  const std::pair<const char *, QString> parts[] = {{"line", key("crossValidation.line")},
                                                    {"ball", key("crossValidation.radius")}};
  if (!draft.isGiven(kind)) {
    for (const auto &[name, path] : parts) {
      if (draft.isGiven(path))
        draft.set(kind, QLatin1String(name), draft.getOrigin(path));
    }
  }
  if (!draft.isGiven(kind))
    return;
  for (const auto &[name, path] : parts) {
    if (draft.get(kind) != QLatin1String(name) && draft.has(path) && !draft.isGiven(path))
      draft.set(path, QJsonValue::Undefined, draft.getOrigin(kind));
  }
}

void checkModelAndNeighborhood(const JobDraft &draft)
{
  if (!draft.isOfData())
    return;
  if (!draft.has(key("model")) && !draft.has(key("fit")))
    throw UsageError(
        QObject::tr("the model is missing; --fit fits one, --structure and --nugget "
                    "or --model give one"));
  if (!draft.has(key("neighborhood")))
    throw UsageError(
        QObject::tr("the neighborhood is missing; --unique uses all samples, --radius "
                    "and --maximum the nearest ones"));
}

QString chooseCoordinates(JobDraft &draft)
{
  if (!draft.isOfData() || draft.has(key("data.x")) || draft.has(key("data.y")))
    return QString();
  const QStringList columns = openData(draft)->getColumns();
  const CoordinateColumns guess = guessCoordinates(columns);
  if ((columns.contains(key("x")) && columns.contains(key("y"))) || !guess.isComplete())
    return QString();
  draft.setDefault(key("data.x"), columns[guess.x]);
  draft.setDefault(key("data.y"), columns[guess.y]);
  const QString note =
      QObject::tr("coordinates: --x \"%1\" --y \"%2\"").arg(columns[guess.x], columns[guess.y]);
  if (guess.z < 0 || draft.has(key("data.z")))
    return note;
  return note + QObject::tr("; --z \"%1\" adds the third one").arg(columns[guess.z]);
}

void completeMask(JobDraft &draft)
{
  if (!draft.isGiven(key("grid.mask")))
    return;
  for (const char *axis : {"x", "y", "z"}) {
    const QJsonValue column = draft.get(key("data.") + key(axis));
    if (!column.isUndefined())
      draft.setDefault(key("grid.mask.") + key(axis), column);
  }
}

void checkColumns(const JobDraft &draft)
{
  const std::unique_ptr<TableReader> reader = openData(draft);
  requireColumn(draft, "data.x", "--x", *reader, key("x"));
  requireColumn(draft, "data.y", "--y", *reader, key("y"));
  requireColumn(draft, "variable.column", "--variable", *reader);
  for (const char *axis : {"x", "y", "z"}) {
    const QJsonValue column = draft.get(key("data.") + key(axis));
    if (column.isString())
      reader->findColumn(column.toString(), key("--") + key(axis));
  }
  reader->findColumn(draft.get(key("variable.column")).toString(), key("--variable"));
}

QString layGridOver(JobDraft &draft)
{
  const std::vector<double> cell = toNumbers(draft.get(key("grid.cell")));
  if (cell.empty() || draft.has(key("grid.origin")) || draft.has(key("grid.nodes")))
    return QString();
  const JobTable table = draft.readData().data;
  if (cell.size() != (table.z.isEmpty() ? 2 : 3) || draft.has(key("grid.rotation")))
    return QString();  // the reader of the job says what is wrong
  const GridLayout layout = layGrid(readExtent(table), cell);
  draft.setDefault(key("grid.origin"), toArray(layout.origin));
  draft.setDefault(key("grid.nodes"), toArray(layout.nodes));
  return QObject::tr("grid over the samples: --cell %1 --grid-origin %2 --nodes %3")
      .arg(joined(cell), joined(layout.origin), joined(layout.nodes));
}

}  // namespace orvenal
