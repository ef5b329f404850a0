#include "app/commands/JobOptions.h"

#include "app/base/UsageError.h"
#include "app/commands/JobDraft.h"
#include "app/job/KrigingReader.h"
#include "app/job/ModelReader.h"
#include "app/job/VariogramReader.h"
#include "app/study/Column.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>
#include <QObject>

#include <cmath>

namespace orvenal {

namespace {

/// A row of the table of options.
struct Row
{
  JobOption::Group group;
  const char *name;
  const char *value;
  JobOption::Kind kind;
  const char *path;
  const char *help;
  const char *fallback;
  const char *replaced;  ///< separated by blanks
};

const Row table[] = {
    {JobOption::DATA, "x", "COLUMN", JobOption::TEXT, "data.x", "column of the first coordinate",
     "x, or a usual name", nullptr},
    {JobOption::DATA, "y", "COLUMN", JobOption::TEXT, "data.y", "column of the second coordinate",
     "y, or a usual name", nullptr},
    {JobOption::DATA, "z", "COLUMN", JobOption::TEXT, "data.z",
     "column of the third coordinate, in three dimensions", nullptr, nullptr},
    {JobOption::DATA, "format", "NAME", JobOption::TEXT, "data.format", "format of the file",
     "auto", nullptr},
    {JobOption::DATA, "layer", "NAME", JobOption::TEXT, "data.layer",
     "layer of a file that has several", nullptr, nullptr},
    {JobOption::DATA, "separator", "CHAR", JobOption::TEXT, "data.separator",
     "what separates fields: auto , ; \\t or a blank", "auto", nullptr},
    {JobOption::DATA, "decimal", "CHAR", JobOption::TEXT, "data.decimal", "decimal mark, . or ,",
     ".", nullptr},
    {JobOption::DATA, "undefined", "TEXT", JobOption::TEXTS, "data.undefined",
     "a text or number that stands for an undefined value", "an empty field, and NA", nullptr},
    {JobOption::DATA, "duplicates", "NAME", JobOption::TEXT, "data.duplicates",
     "what becomes of samples at one place", "keep", nullptr},
    {JobOption::DATA, "crs", "TEXT", JobOption::TEXT, "data.crs",
     "coordinate reference system, such as EPSG:28992", nullptr, nullptr},
    {JobOption::DATA, "unit", "TEXT", JobOption::TEXT, "data.unit", "unit of the coordinates",
     "that of the reference system", nullptr},

    {JobOption::VARIABLE, "variable", "COLUMN", JobOption::VARIABLES, "variable.column",
     "column of the variable; further ones are covariates", nullptr, nullptr},
    {JobOption::VARIABLE, "transform", "NAME", JobOption::TEXT, "variable.transform",
     "what is done to the values of all of them", "none", nullptr},
    {JobOption::VARIABLE, "name", "TEXT", JobOption::TEXT, "variable.name",
     "name of the first one after the transform", "the column's", nullptr},
    {JobOption::VARIABLE, "variable-unit", "TEXT", JobOption::TEXT, "variable.unit",
     "its unit after the transform", nullptr, nullptr},

    {JobOption::VARIOGRAM, "curve", "NAME", JobOption::TEXT, "variogram.curve",
     "what is computed of the pairs", "Variogram", nullptr},
    {JobOption::VARIOGRAM, "lag", "LENGTH", JobOption::NUMBER, "variogram.lag",
     "distance from one lag to the next", "a round one", nullptr},
    {JobOption::VARIOGRAM, "lags", "N", JobOption::INTEGER, "variogram.lags",
     "number of lags, the first one at 0 included", "up to a fifth of the extent", nullptr},
    {JobOption::VARIOGRAM, "lag-tolerance", "FRACTION", JobOption::NUMBER, "variogram.tolerance",
     "half the width of a lag, as a fraction of it", "0.5", nullptr},
    {JobOption::VARIOGRAM, "directions", "N", JobOption::INTEGER, "variogram.regular",
     "that many directions at equal angles", "all pairs together", "variogram.directions"},
    {JobOption::VARIOGRAM, "azimuth", "ANGLE", JobOption::NUMBER, "variogram.azimuth",
     "azimuth of the first direction, clockwise from north", "0", nullptr},
    {JobOption::VARIOGRAM, "angular-tolerance", "ANGLE", JobOption::NUMBER,
     "variogram.angularTolerance", "largest angle between a pair and its direction",
     "half the angle between directions", nullptr},
    {JobOption::VARIOGRAM, "width", "LENGTH", JobOption::NUMBER, "variogram.width",
     "pairs farther from the axis of their direction are left out", nullptr, nullptr},
    {JobOption::VARIOGRAM, "variogram-table", "FILE", JobOption::FILE, "output.variogram.table",
     "writes the variograms as .csv", nullptr, nullptr},
    {JobOption::VARIOGRAM, "variogram-picture", "FILE", JobOption::FILE, "output.variogram.picture",
     "draws them, with the model, as .png or .svg", nullptr, nullptr},
    {JobOption::VARIOGRAM, "variogram-map", "FILE", JobOption::FILE, "output.variogram.map",
     "draws the variogram by the vector between samples", nullptr, nullptr},
    {JobOption::VARIOGRAM, "variogram-cloud", "FILE", JobOption::FILE, "output.variogram.cloud",
     "draws how many pairs have which distance and value", nullptr, nullptr},

    {JobOption::FIT, "fit", "TYPES", JobOption::WORDS, "fit.structures",
     "structures that are fitted to the variograms, separated by commas, in place of a given "
     "model",
     nullptr, "model"},
    {JobOption::FIT, "no-nugget", "", JobOption::SWITCH_OFF, "fit.nugget", "fits no nugget effect",
     nullptr, "model"},
    {JobOption::FIT, "isotropic", "", JobOption::SWITCH_OFF, "fit.anisotropy",
     "fits the same ranges in all directions", nullptr, "model"},
    {JobOption::FIT, "fitted-model", "FILE", JobOption::FILE, "output.fit.model",
     "writes the fitted model", nullptr, nullptr},

    {JobOption::MODEL, "structure", "TEXT", JobOption::STRUCTURES, "model.structures",
     "a structure of the model: type, sill, practical range; or ranges separated by commas and "
     "the azimuth of the first one: \"Spherical 0.59 1200,480 30\"",
     nullptr, "fit model.file"},
    {JobOption::MODEL, "nugget", "NUMBER", JobOption::NUMBER, "model.nugget",
     "nugget effect of the model", "0", "fit model.file"},
    {JobOption::MODEL, "model", "FILE", JobOption::FILE, "model.file",
     "a file with the model, such as --fitted-model writes", nullptr, "fit model"},

    {JobOption::NEIGHBORHOOD, "radius", "LENGTH", JobOption::NUMBER, "neighborhood.radius",
     "samples are searched inside this distance", nullptr, "neighborhood.radii"},
    {JobOption::NEIGHBORHOOD, "radii", "LENGTHS", JobOption::NUMBERS, "neighborhood.radii",
     "in its place: radii along the axes of an ellipsoid, separated by commas", nullptr,
     "neighborhood.radius"},
    {JobOption::NEIGHBORHOOD, "search-azimuth", "ANGLE", JobOption::NUMBER, "neighborhood.azimuth",
     "azimuth of its first axis", "0", nullptr},
    {JobOption::NEIGHBORHOOD, "maximum", "N", JobOption::INTEGER, "neighborhood.maximum",
     "samples used at most", nullptr, nullptr},
    {JobOption::NEIGHBORHOOD, "minimum", "N", JobOption::INTEGER, "neighborhood.minimum",
     "samples needed", "1", nullptr},
    {JobOption::NEIGHBORHOOD, "sectors", "N", JobOption::INTEGER, "neighborhood.sectors",
     "equal angles into which the search is divided", "1", nullptr},
    {JobOption::NEIGHBORHOOD, "per-sector", "N", JobOption::INTEGER, "neighborhood.perSector",
     "samples used at most in each sector", "the maximum shared by them", nullptr},
    {JobOption::NEIGHBORHOOD, "unique", "", JobOption::UNIQUE, "neighborhood.type",
     "all samples are used everywhere", nullptr,
     "neighborhood.radius neighborhood.radii neighborhood.azimuth neighborhood.dip "
     "neighborhood.pitch neighborhood.maximum neighborhood.minimum neighborhood.sectors "
     "neighborhood.split neighborhood.perSector neighborhood.shape neighborhood.distances "
     "neighborhood.gap neighborhood.nearest neighborhood.emptySectors "
     "neighborhood.emptySectorsInARow neighborhood.lines neighborhood.highValues "
     "neighborhood.lowValues neighborhood.variables neighborhood.passes"},

    {JobOption::KRIGING, "mode", "NAME", JobOption::TEXT, "kriging.mode",
     "what is known of the mean", "ordinary", nullptr},
    {JobOption::KRIGING, "means", "NUMBERS", JobOption::NUMBERS, "kriging.means",
     "known means, one per variable, for simple kriging", nullptr, "kriging.localMeans"},
    {JobOption::KRIGING, "degree", "N", JobOption::INTEGER, "kriging.degree",
     "degree of the drift, 1 or 2, for the mode drift", nullptr, nullptr},
    {JobOption::KRIGING, "measurement-error", "NUMBER", JobOption::NUMBER_OR_TEXT,
     "kriging.measurementError", "standard deviation of the samples' errors, or the column with it",
     nullptr, nullptr},

    {JobOption::CROSS_VALIDATION, "leave-out", "WHAT", JobOption::TEXT, "crossValidation.leaveOut",
     "what is not used around a sample", "sample", nullptr},
    {JobOption::CROSS_VALIDATION, "line", "COLUMN", JobOption::TEXT, "crossValidation.line",
     "column that tells the lines of samples", nullptr, nullptr},
    {JobOption::CROSS_VALIDATION, "ball-radius", "LENGTH", JobOption::NUMBER,
     "crossValidation.radius", "radius of the ball that is left out", nullptr, nullptr},
    {JobOption::CROSS_VALIDATION, "xvalid-table", "FILE", JobOption::FILE,
     "output.crossValidation.table", "writes the outcome by sample as .csv or .gpkg", nullptr,
     nullptr},
    {JobOption::CROSS_VALIDATION, "xvalid-picture", "FILE", JobOption::FILE,
     "output.crossValidation.picture", "draws it as .png or .svg", nullptr, nullptr},
    {JobOption::CROSS_VALIDATION, "xvalid-map", "FILE", JobOption::FILE,
     "output.crossValidation.map", "draws the errors at their places", nullptr, nullptr},

    {JobOption::GRID, "cell", "LENGTHS", JobOption::AXES, "grid.cell",
     "size of the cells; one for all axes, or one each, separated by commas", nullptr, nullptr},
    {JobOption::GRID, "grid-origin", "NUMBERS", JobOption::NUMBERS, "grid.origin",
     "centre of the first node", "around the samples", nullptr},
    {JobOption::GRID, "nodes", "NUMBERS", JobOption::NUMBERS, "grid.nodes",
     "number of nodes along each axis", "around the samples", nullptr},
    {JobOption::GRID, "rotation", "ANGLE", JobOption::NUMBER, "grid.rotation",
     "azimuth of the grid's second axis", "0", nullptr},
    {JobOption::GRID, "mask", "FILE", JobOption::FILE, "grid.mask.file",
     "a table of points with the samples' names of coordinates; only nodes with one in their cell "
     "are estimated",
     nullptr, nullptr},
    {JobOption::GRID, "block", "NUMBERS", JobOption::NUMBERS, "kriging.block",
     "estimates means of cells, each discretized by that many points along its axes", "points",
     nullptr},
    {JobOption::GRID, "out", "FILE", JobOption::FILES, "output.grid",
     "writes the grid, in the format of the file's ending", nullptr, nullptr},
    {JobOption::GRID, "map", "FILE", JobOption::FILE, "output.maps.estimate",
     "draws the estimate as .png or .svg", nullptr, nullptr},
    {JobOption::GRID, "deviation-map", "FILE", JobOption::FILE, "output.maps.deviation",
     "draws its standard deviation", nullptr, nullptr},

    {JobOption::OUTPUT, "title", "TEXT", JobOption::TEXT, "title", "title of pictures and report",
     "name of the file", nullptr},
    {JobOption::OUTPUT, "report", "FILE", JobOption::FILE, "output.report",
     "writes the report as .html", nullptr, nullptr},
    {JobOption::OUTPUT, "results", "FILE", JobOption::FILE, "output.results",
     "writes the results as .json", nullptr, nullptr},
};

QString headingOf(JobOption::Group group)
{
  switch (group) {
    case JobOption::DATA:
      return QObject::tr("Data");
    case JobOption::VARIABLE:
      return QObject::tr("Variable");
    case JobOption::VARIOGRAM:
      return QObject::tr("Variograms");
    case JobOption::FIT:
      return QObject::tr("Fit of a model");
    case JobOption::MODEL:
      return QObject::tr("Model");
    case JobOption::NEIGHBORHOOD:
      return QObject::tr("Neighborhood");
    case JobOption::KRIGING:
      return QObject::tr("Kriging");
    case JobOption::GRID:
      return QObject::tr("Grid");
    case JobOption::CROSS_VALIDATION:
      return QObject::tr("Cross-validation");
    case JobOption::OUTPUT:
      break;
  }
  return QObject::tr("Results");
}

/// Values of the options that take a word.
QStringList choicesOf(const QString &path)
{
  if (path == QLatin1String("variable.transform"))
    return transformNames();
  if (path == QLatin1String("data.format"))
    return {QStringLiteral("auto"), QStringLiteral("csv"), QStringLiteral("geo-eas"),
            QStringLiteral("gdal")};
  if (path == QLatin1String("data.duplicates"))
    return {QStringLiteral("keep"), QStringLiteral("error"), QStringLiteral("first"),
            QStringLiteral("average")};
  if (path == QLatin1String("variogram.curve"))
    return curveLabels();
  if (path == QLatin1String("fit.structures"))
    return fittedLabels();
  if (path == QLatin1String("kriging.mode"))
    return krigingModes();
  if (path == QLatin1String("crossValidation.leaveOut"))
    return {QStringLiteral("sample"), QStringLiteral("line"), QStringLiteral("ball")};
  return QStringList();
}

JobOption toOption(const Row &row)
{
  const auto text = [](const char *source) { return source ? QObject::tr(source) : QString(); };
  JobOption option;
  option.name = QLatin1String(row.name);
  option.value = QLatin1String(row.value);
  option.help = text(row.help);
  option.group = headingOf(row.group);
  option.fallback = text(row.fallback);
  option.jobGroup = row.group;
  option.kind = row.kind;
  option.path = QLatin1String(row.path);
  option.choices = choicesOf(option.path);
  option.replaced = QString::fromLatin1(row.replaced).split(' ', Qt::SkipEmptyParts);
  option.isRepeatable = row.kind == JobOption::TEXTS || row.kind == JobOption::FILES ||
                        row.kind == JobOption::VARIABLES || row.kind == JobOption::STRUCTURES;
  return option;
}

[[noreturn]] void failValue(const CommandOption &option, const QString &expected,
                            const QString &found)
{
  throw UsageError(
      QObject::tr("--%1: expected %2, found \"%3\"").arg(option.name, expected, found));
}

double toNumber(const CommandOption &option, const QString &text)
{
  bool isNumber = false;
  const double number = text.toDouble(&isNumber);
  if (!isNumber || !std::isfinite(number))
    failValue(option, QObject::tr("a number"), text);
  return number;
}

QJsonArray toNumbers(const CommandOption &option, const QString &text)
{
  QJsonArray numbers;
  for (const QString &part : text.split(','))
    numbers.append(toNumber(option, part.trimmed()));
  return numbers;
}

QJsonArray toAxes(const CommandOption &option, const QString &text, int nDimensions)
{
  QJsonArray numbers = toNumbers(option, text);
  const bool isOne = numbers.size() == 1;
  while (isOne && numbers.size() < nDimensions)
    numbers.append(numbers.first());
  return numbers;
}

bool isNumber(const QString &text)
{
  bool result = false;
  text.toDouble(&result);
  return result;
}

/// "Spherical 0.59 1200,480 30": the type may have several words.
QJsonObject toStructure(const CommandOption &option, const QString &text)
{
  QStringList words = text.simplified().split(' ');
  QStringList type;
  while (!words.isEmpty() && !isNumber(words.first()))
    type << words.takeFirst();
  if (type.isEmpty() || words.size() < 2 || words.size() > 5)
    failValue(option,
              QObject::tr("type, sill and range, such as \"Spherical 0.59 897\", or ranges and "
                          "azimuth, dip and pitch, such as \"Spherical 0.59 1200,480 30\""),
              text);
  QJsonObject structure = {{QStringLiteral("type"), type.join(' ')},
                           {QStringLiteral("sill"), toNumber(option, words[0])}};
  if (words[1].contains(','))
    structure.insert(QStringLiteral("ranges"), toNumbers(option, words[1]));
  else
    structure.insert(QStringLiteral("range"), toNumber(option, words[1]));
  const char *const angles[] = {"azimuth", "dip", "pitch"};
  for (int i = 2; i < words.size(); ++i)
    structure.insert(QLatin1String(angles[i - 2]), toNumber(option, words[i]));
  return structure;
}

/// The member that one use of an option stands for.
QJsonValue toMember(const JobOption &option, const QString &text, const JobDraft &draft)
{
  switch (option.kind) {
    case JobOption::NUMBER:
    case JobOption::INTEGER:
      return toNumber(option, text);
    case JobOption::NUMBERS:
      return toNumbers(option, text);
    case JobOption::AXES:
      return toAxes(option, text, draft.has(QStringLiteral("data.z")) ? 3 : 2);
    case JobOption::NUMBER_OR_TEXT:
      return isNumber(text) ? QJsonValue(toNumber(option, text)) : QJsonValue(text);
    case JobOption::WORDS: {
      QJsonArray words;
      for (const QString &word : text.split(','))
        words.append(word.trimmed());
      return words;
    }
    case JobOption::FILE:
    case JobOption::FILES:
      return draft.toJobPath(text);
    case JobOption::STRUCTURES:
      return toStructure(option, text);
    default:
      return text == QLatin1String("\\t") ? QStringLiteral("\t") : text;
  }
}

/// The first variable is the job's, the others are its covariates; all have one transform.
void setVariables(const QStringList &columns, const QString &transform, JobDraft &draft)
{
  const QString origin = QStringLiteral("--variable");
  draft.set(QStringLiteral("variable.column"), columns.first(), origin);
  QJsonArray covariates;
  for (const QString &column : columns.mid(1)) {
    QJsonObject covariate = {{QStringLiteral("column"), column}};
    if (!transform.isEmpty())
      covariate.insert(QStringLiteral("transform"), transform);
    covariates.append(covariate);
  }
  if (!covariates.isEmpty())
    draft.set(QStringLiteral("covariates"), covariates, origin);
}

QJsonValue toMembers(const JobOption &option, const QStringList &texts, const JobDraft &draft)
{
  if (option.kind == JobOption::SWITCH_OFF)
    return false;
  if (option.kind == JobOption::UNIQUE)
    return QStringLiteral("unique");
  if (!option.isRepeatable)
    return toMember(option, texts.last(), draft);
  QJsonArray members;
  for (const QString &text : texts)
    members.append(toMember(option, text, draft));
  return members;
}

}  // namespace

const QList<JobOption> &jobOptions()
{
  static const QList<JobOption> options = [] {
    QList<JobOption> list;
    for (const Row &row : table)
      list << toOption(row);
    return list;
  }();
  return options;
}

CommandOptions jobOptionsOf(const QList<JobOption::Group> &groups)
{
  CommandOptions options;
  for (const JobOption &option : jobOptions()) {
    if (groups.contains(option.jobGroup))
      options << option;
  }
  return options;
}

void applyJobOptions(const QCommandLineParser &parser, const QList<JobOption::Group> &groups,
                     JobDraft &draft)
{
  for (const JobOption &option : jobOptions()) {
    if (!groups.contains(option.jobGroup) || !parser.isSet(option.name))
      continue;
    const QString origin = QStringLiteral("--") + option.name;
    for (const QString &path : option.replaced) {
      if (draft.has(path) && !draft.isGiven(path))
        draft.set(path, QJsonValue::Undefined, origin);
    }
    if (option.kind == JobOption::VARIABLES)
      setVariables(parser.values(option.name), parser.value(QStringLiteral("transform")), draft);
    else
      draft.set(option.path, toMembers(option, parser.values(option.name), draft), origin);
  }
}

}  // namespace orvenal
