#pragma once

#include "basic/geom/NbgVector3D.h"

#include <QSharedPointer>
#include <QString>
#include <QVector>

class NbpMemoryProviderPointsW;
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

/// What the step of variography gave.
struct Variography
{
  QString curveName;        ///< "Variogram", "Madogram" ...
  bool isVariogram = true;  ///< to which a model can be compared
  bool hasSill = true;      ///< whether the curve is compared to a sill
  double sill = 0.;         ///< variance of the samples, or what stands for it
  double lag = 0.;
  QVector<VariogramCurve> curves;
  QSharedPointer<NgmVariogramExpData> data;  ///< of which the curves are read

  bool isEmpty() const { return curves.isEmpty(); }
};

/// The experimental variograms that the job asks for, or an omnidirectional one.
Variography computeVariograms(const Job &job, const Samples &samples,
                              const QSharedPointer<NbpMemoryProviderPointsW> &provider,
                              const RunContext &context);

}  // namespace orvenal
