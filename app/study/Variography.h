#pragma once

#include "basic/geom/NbgVector3D.h"

#include <QSharedPointer>
#include <QString>
#include <QVector>

class NbpMemoryProviderPointsW;
class NgmMultivariateStatistics;
class NgmVariogramExpData;

namespace orvenal {

struct Job;
struct RunContext;
struct Samples;

/// An experimental variogram in one direction, by lag; lags without pairs are left out.
struct VariogramCurve
{
  QString name;
  bool isOmnidirectional = false;
  NbgVector3D direction;  ///< of length 1
  QVector<double> distances;
  QVector<double> values;
  QVector<qint64> pairs;
};

/// The variograms of a variable in all directions, or the cross variograms of two.
struct VariogramSet
{
  int first = 0;  ///< rank of the variable in the job, the one to estimate is 0
  int second = 0;
  bool hasSill = true;  ///< whether the curves are compared to a sill
  double sill = 0.;     ///< variance or covariance of the samples, or what stands for it
  QVector<VariogramCurve> curves;

  bool isCross() const { return first != second; }
  qint64 countPairs() const;
};

/// What the step of variography gave.
struct Variography
{
  QString curveName;        ///< "Variogram", "Madogram" ...
  bool isVariogram = true;  ///< to which a model can be compared
  double lag = 0.;
  int nVariables = 1;
  QVector<VariogramSet> sets;  ///< of each variable with those before it and with itself
  QSharedPointer<NgmVariogramExpData> data;  ///< of which the curves are read

  bool isEmpty() const { return sets.isEmpty(); }
};

/// The experimental variograms that the job asks for, or omnidirectional ones. A variogram takes
/// the pairs of samples that have the variable, a cross variogram those that have both. The
/// statistics are those of all variables.
Variography computeVariograms(const Job &job, const Samples &samples,
                              const QSharedPointer<NbpMemoryProviderPointsW> &provider,
                              const NgmMultivariateStatistics &statistics,
                              const RunContext &context);

}  // namespace orvenal
