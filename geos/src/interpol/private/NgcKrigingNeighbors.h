#pragma once

#include "geos/matrix/NgmKrigingSamples.h"

#include <QList>
#include <QMap>

#include <vector>

class NbdDataPoints;
class NbdVariableDouble;
class NgcAKriging;

/// The samples of a neighborhood as a kriging system takes them: plain arrays, the values less the
/// known means.
class NgcKrigingNeighbors
{
public:
  explicit NgcKrigingNeighbors(const NgcAKriging &kriging);

  /// The samples, whose columns stay while their number and values change. `maximum`: number of
  /// samples that are ever taken.
  void setSource(const NbdDataPoints &samples, int maximum);

  /// The first `n` samples. `targetMeans`: known means at the target; not used when the samples
  /// have means of their own, nor by their values when it is null. What is returned holds until the
  /// next call.
  const NgmKrigingSamples &take(int n, const double *targetMeans);

  /// Gives the sample that stands for the target the drifts and means of the target, which the
  /// search does not know; null ones are left out.
  void completeTargetSample(int position, const double *externalDrifts, const double *means);

  /// Values of a variable as they are.
  const double *getRawValues(int variable) const;

private:
  void _center(int n, const double *targetMeans);

  const NgcAKriging &_kriging;
  int _nVariables;
  bool _centers;
  bool _hasLocalMeans;

  const NbdVariableDouble *_coordinates[3] = {};
  QList<NbdVariableDouble *> _variables;
  QList<NbdVariableDouble *> _meanVariables;
  QList<NbdVariableDouble *> _driftVariables;
  QMap<int, const NbdVariableDouble *> _errorVariables;

  NgmKrigingSamples _samples;
  std::vector<const double *> _values;
  std::vector<const double *> _drifts;
  std::vector<const double *> _errors;
  std::vector<std::vector<double>> _centered;
};
