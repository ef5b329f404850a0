#include "app/study/Samples.h"

#include "app/io/TableReader.h"
#include "app/study/Duplicates.h"
#include "app/study/Job.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgBox.h"
#include "basic/geom/NbgEDimension.h"
#include "basic/geom/NbgGeomPolyline.h"
#include "basic/geom/NbgGeomPolylineSet.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetPoints.h"

#include <QDateTime>
#include <QFileInfo>
#include <QHash>
#include <QObject>

#include <algorithm>
#include <array>
#include <memory>
#include <numeric>

namespace orvenal {

namespace {

std::unique_ptr<TableReader> openTable(const JobTable &table)
{
  return TableReader::open(table.file, table.shown, table.format);
}

/// Columns of the coordinates of a table; -1 for an axis that it does not have.
std::array<int, 3> findCoordinates(const TableReader &reader, const JobTable &table)
{
  return {reader.findColumn(table.x, table.path + ".x"),
          reader.findColumn(table.y, table.path + ".y"),
          table.z.isEmpty() ? -1 : reader.findColumn(table.z, table.path + ".z")};
}

NbgVector3D readLocation(const TableReader &reader, const std::array<int, 3> &columns)
{
  std::array<double, 3> location = {0., 0., 0.};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (columns[axis] < 0)
      continue;
    location[axis] = reader.getNumber(columns[axis]);
    if (!NbbGlobal::isDefined(location[axis]))
      reader.fail(columns[axis], QObject::tr("a coordinate is undefined"));
  }
  return NbgVector3D(location[0], location[1], location[2]);
}

/// A column that kriging needs, and where it stands in its table.
struct PlacedColumn
{
  Column column;
  int index;
};

std::vector<PlacedColumn> findColumns(const TableReader &reader, const QList<Column> &columns,
                                      const QString &path)
{
  std::vector<PlacedColumn> placed;
  for (const Column &column : columns)
    placed.push_back({column, reader.findColumn(column.column, path)});
  return placed;
}

/// Numbers lines from 1 by what their column holds, numbers or texts.
class LineNumbers
{
public:
  explicit LineNumbers(int column) : _column(column) {}

  /// The line of the current record; undefined where the field is.
  double read(const TableReader &reader)
  {
    double number = 0.;
    const TableReader::Field field = reader.classify(_column, number);
    if (field == TableReader::UNDEFINED)
      return NbbGlobal::D_FFFF;
    const QString label =
        field == TableReader::NUMBER ? QString::number(number, 'g', 17) : reader.getText(_column);
    const auto line = _lines.constFind(label);
    return line != _lines.constEnd() ? *line : *_lines.insert(label, _lines.size() + 1);
  }

private:
  int _column;
  QHash<QString, int> _lines;
};

/// Where the values of the samples stand in their table.
struct SampleColumns
{
  int value;
  std::vector<int> covariates;
  std::vector<PlacedColumn> auxiliary;
  QMap<QString, LineNumbers> lines;
};

SampleColumns findSampleColumns(const TableReader &reader, const Job &job)
{
  SampleColumns columns;
  columns.value = reader.findColumn(job.variable.column, QStringLiteral("variable.column"));
  for (int i = 0; i < job.covariates.size(); ++i)
    columns.covariates.push_back(reader.findColumn(job.covariates[i].column,
                                                   QStringLiteral("covariates[%1].column").arg(i)));
  columns.auxiliary =
      findColumns(reader, job.kriging.getSampleColumns(), QStringLiteral("kriging"));
  for (const QString &line : job.getLineColumns()) {
    const bool isOfValidation = job.crossValidation && job.crossValidation->line == line;
    const QString path = isOfValidation ? QStringLiteral("crossValidation.line")
                                        : QStringLiteral("neighborhood.lines.column");
    columns.lines.insert(line, LineNumbers(reader.findColumn(line, path)));
  }
  return columns;
}

void readSample(const TableReader &reader, const std::array<int, 3> &coordinates,
                SampleColumns &columns, const Job &job, Samples &samples)
{
  const NbgVector3D location = readLocation(reader, coordinates);
  samples.x.push_back(location.x());
  samples.y.push_back(location.y());
  if (coordinates[2] >= 0)
    samples.z.push_back(location.z());
  samples.value.push_back(readValue(reader, columns.value, job.variable.transform));
  for (std::size_t i = 0; i < columns.covariates.size(); ++i)
    samples.covariates[i].push_back(
        readValue(reader, columns.covariates[i], job.covariates[int(i)].transform));
  for (const PlacedColumn &placed : columns.auxiliary)
    samples.auxiliaryColumns[placed.column.getName()].push_back(
        readValue(reader, placed.index, placed.column.transform));
  for (auto line = columns.lines.begin(); line != columns.lines.end(); ++line)
    samples.lines[line.key()].push_back(line->read(reader));
}

/// By which a change of a file is noticed.
std::pair<qint64, QDateTime> stateOf(const QString &path)
{
  const QFileInfo file(path);
  return {file.size(), file.lastModified()};
}

qint64 countUndefined(const std::vector<double> &values)
{
  return std::count(values.begin(), values.end(), NbbGlobal::D_FFFF);
}

std::vector<int> toIntegers(const std::vector<double> &values)
{
  std::vector<int> integers;
  for (const double value : values)
    integers.push_back(NbbGlobal::isDefined(value) ? int(value) : NbbGlobal::I32_FFFF);
  return integers;
}

}  // namespace

double readValue(const TableReader &reader, int column, Transform transform)
{
  double value = reader.getNumber(column);
  if (!applyTransform(transform, value))
    reader.fail(column, transform == Transform::LOG
                            ? QObject::tr("%1 has no logarithm").arg(value)
                            : QObject::tr("%1 has no square root").arg(value));
  return value;
}

double Samples::getDiagonal() const
{
  NbgBox box;
  for (std::size_t i = 0; i < x.size(); ++i)
    box.extendWith(NbgVector3D(x[i], y[i], z.empty() ? 0. : z[i]));
  return box.getSize().norm();
}

Samples readSamples(const Job &job)
{
  const auto before = stateOf(job.data.file);
  const auto reader = openTable(job.data);
  const std::array<int, 3> coordinates = findCoordinates(*reader, job.data);
  SampleColumns columns = findSampleColumns(*reader, job);
  Samples samples;
  samples.covariates.resize(columns.covariates.size());
  while (reader->next())
    readSample(*reader, coordinates, columns, job, samples);
  if (stateOf(job.data.file) != before)
    throw NbeUserError(QObject::tr("%1: changed while it was read").arg(job.data.shown));
  if (samples.x.empty())
    TableReader::failEmpty(job.data.shown);
  treatDuplicates(job, samples);
  if (job.kriging.constantError)
    samples.auxiliaryColumns[constantErrorName()].assign(samples.x.size(),
                                                         *job.kriging.constantError);
  samples.nUndefined = countUndefined(samples.value);
  for (int i = 0; i < job.getNVariables(); ++i) {
    if (countUndefined(i == 0 ? samples.value : samples.covariates[std::size_t(i - 1)]) ==
        samples.getCount())
      throw NbeUserError(QObject::tr("%1: all values of column \"%2\" are undefined")
                             .arg(job.data.shown, job.getVariable(i).column));
  }
  return samples;
}

QString sampleValueName()
{
  return QStringLiteral("value");
}

QString covariateName(int index)
{
  return QStringLiteral("covariate %1").arg(index);
}

QString auxiliaryName(const Column &column)
{
  return auxiliaryName(column.getName());
}

QString auxiliaryName(const QString &name)
{
  return QStringLiteral("column ") + name;
}

QString lineName(const QString &column)
{
  return QStringLiteral("line ") + column;
}

QSharedPointer<NbpMemoryProviderPointsW> makeProvider(const Samples &samples)
{
  const bool is3D = !samples.z.empty();
  auto provider = QSharedPointer<NbpMemoryProviderPointsW>::create(
      is3D ? NbgEDimension::DIM_3D : NbgEDimension::DIM_2D, samples.getCount());
  provider->addXVariable(samples.x);
  provider->addYVariable(samples.y);
  if (is3D)
    provider->addZVariable(samples.z);
  provider->addVariable(sampleValueName(), samples.value);
  for (std::size_t i = 0; i < samples.covariates.size(); ++i)
    provider->addVariable(covariateName(int(i)), samples.covariates[i]);
  for (auto column = samples.auxiliaryColumns.begin(); column != samples.auxiliaryColumns.end();
       ++column)
    provider->addVariable(auxiliaryName(column.key()), column.value());
  for (auto line = samples.lines.begin(); line != samples.lines.end(); ++line)
    provider->addVariable(lineName(line.key()), toIntegers(line.value()));
  return provider;
}

NgdDataSetPoints makeVariableDataSet(const Job &job,
                                     const QSharedPointer<NbpMemoryProviderPointsW> &samples)
{
  NgdDataSetPoints data;
  data.setDataProvider(samples);
  data.assignVariable(Nbd::Role::V, samples->getIdFromName(sampleValueName()));
  for (int i = 0; i < job.covariates.size(); ++i)
    data.assignVariable(Nbd::Role::V, samples->getIdFromName(covariateName(i)));
  return data;
}

QMap<QString, std::vector<double>> readGridValues(const Job &job)
{
  const QList<Column> wanted = job.kriging.getGridColumns();
  QMap<QString, std::vector<double>> values;
  if (wanted.isEmpty())
    return values;
  const auto reader = openTable(*job.gridValues);
  const std::array<int, 3> coordinates = findCoordinates(*reader, *job.gridValues);
  const std::vector<PlacedColumn> columns =
      findColumns(*reader, wanted, QStringLiteral("grid.values"));
  const std::size_t nNodes = std::size_t(job.grid.getGridSize());
  for (const PlacedColumn &placed : columns)
    values[placed.column.getName()].assign(nNodes, NbbGlobal::D_FFFF);
  std::vector<bool> filled(nNodes, false);
  NbgIntVector3D ijk;
  while (reader->next()) {
    if (!job.grid.getCellIJK(readLocation(*reader, coordinates), ijk))
      continue;
    const std::size_t rank = std::size_t(job.grid.getRankFromIJK(ijk));
    if (filled[rank])
      reader->fail(coordinates[0], QObject::tr("a second point in a cell of the grid"));
    filled[rank] = true;
    for (const PlacedColumn &placed : columns)
      values[placed.column.getName()][rank] =
          readValue(*reader, placed.index, placed.column.transform);
  }
  return values;
}

NbgGeomPolylineSet readFaults(const Job &job)
{
  const auto reader = openTable(*job.faults);
  const std::array<int, 3> coordinates = findCoordinates(*reader, *job.faults);
  const int lineColumn = reader->findColumn(job.faultLine, job.faults->path + ".line");
  LineNumbers numbers(lineColumn);
  QMap<double, QVector<NbgVector3D>> lines;
  while (reader->next())
    lines[numbers.read(*reader)] << readLocation(*reader, coordinates);
  NbgGeomPolylineSet faults;
  for (QVector<NbgVector3D> points : lines) {
    if (points.size() < 2)
      throw NbeUserError(QObject::tr("%1: a line of a single point").arg(job.faults->shown));
    const bool isClosed = points.size() > 3 && points.first() == points.last();
    if (isClosed)
      points.removeLast();
    faults.add(NbgGeomPolyline(points, isClosed));
  }
  return faults;
}

std::vector<unsigned char> readMask(const Job &job, qint64 &nOutside)
{
  nOutside = 0;
  const std::size_t nNodes = std::size_t(job.grid.getGridSize());
  if (!job.mask)
    return std::vector<unsigned char>(nNodes, 1);
  std::vector<unsigned char> selected(nNodes, 0);
  const auto reader = openTable(*job.mask);
  const std::array<int, 3> coordinates = findCoordinates(*reader, *job.mask);
  NbgIntVector3D ijk;
  bool isEmpty = true;
  while (reader->next()) {
    if (job.grid.getCellIJK(readLocation(*reader, coordinates), ijk)) {
      selected[std::size_t(job.grid.getRankFromIJK(ijk))] = 1;
      isEmpty = false;
    } else {
      ++nOutside;
    }
  }
  if (isEmpty && nOutside == 0)
    TableReader::failEmpty(job.mask->shown);
  if (isEmpty)
    throw NbeUserError(QObject::tr("%1: none of its %2 points lies inside the grid")
                           .arg(job.mask->shown, QString::number(nOutside)));
  return selected;
}

}  // namespace orvenal
