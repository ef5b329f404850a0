#pragma once

#include <QMap>
#include <QSharedPointer>
#include <QString>

#include <vector>

class NbgGeomPolylineSet;
class NbpMemoryProviderPointsW;
class NgdDataSetPoints;

namespace orvenal {

class TableReader;
enum class Transform;
struct Column;
struct Job;
struct JobTable;

/// The samples of a job: coordinates, and the values of its variables after the transform.
struct Samples
{
  std::vector<double> x;
  std::vector<double> y;
  std::vector<double> z;                                ///< empty in two dimensions
  std::vector<double> value;                            ///< NbbGlobal::D_FFFF where it is undefined
  std::vector<std::vector<double>> covariates;          ///< after their transforms
  QMap<QString, std::vector<double>> auxiliaryColumns;  ///< that kriging needs, by name
  QMap<QString, std::vector<double>> lines;  ///< by column: numbers of lines, equal in one line
  qint64 nUndefined = 0;
  qint64 nDuplicates =
      0;  ///< in the file: samples with a value that an earlier one at their place has
  std::vector<qint64> nDuplicatesOf;  ///< the same for each variable
  qint64 nMerged = 0;                 ///< samples that became one per place, nMergedPlaces
  qint64 nMergedPlaces = 0;

  qint64 getCount() const { return qint64(x.size()); }

  /// Diagonal of the box around them; 0 when they lie at one place.
  double getDiagonal() const;
};

/// A field of the current record after the transform. A value that has none is an error.
double readValue(const TableReader &reader, int column, Transform transform);

/// Reads the samples from the job's data file. Undefined coordinates, a value that has no
/// logarithm and a file without samples are errors.
Samples readSamples(const Job &job);

/// The samples as a data file in memory, and the names of their values there.
QSharedPointer<NbpMemoryProviderPointsW> makeProvider(const Samples &samples);
QString sampleValueName();
QString covariateName(int index);
QString auxiliaryName(const Column &column);
QString auxiliaryName(const QString &name);
QString lineName(const QString &column);

/// The samples of a provider with all variables of the job, the one to estimate first.
NgdDataSetPoints makeVariableDataSet(const Job &job,
                                     const QSharedPointer<NbpMemoryProviderPointsW> &samples);

/// The columns that kriging needs at the nodes of the grid, in rank order; undefined where the
/// file has no point in the cell of the node. A cell with two points is an error.
QMap<QString, std::vector<double>> readGridValues(const Job &job);

/// The fault lines of the job: points with the same number, in the order of the file, are a line; a
/// line that ends where it begins is closed.
NbgGeomPolylineSet readFaults(const Job &job);

/// For each node of the grid, in rank order, whether a point of the mask's file lies in its cell;
/// all nodes without a mask. `nOutside` counts the points outside the grid. A mask that leaves no
/// node is an error.
std::vector<unsigned char> readMask(const Job &job, qint64 &nOutside);

}  // namespace orvenal
