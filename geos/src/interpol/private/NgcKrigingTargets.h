#pragma once

#include <QList>
#include <QMap>

#include <vector>

class NbdAData;
class NbdAVariableNumeric;
class NbdVariableDouble;
class NgcAKriging;

/// What the targets of a buffer bring with them: external drifts, known means and collocated
/// values.
class NgcKrigingTargets
{
public:
  explicit NgcKrigingTargets(const NgcAKriging &kriging);

  /// Finds the variables; transforms the collocated ones when that is asked for.
  void setBuffer(NbdAData &buffer);

  /// Takes the values of one target. False when an external drift or a local mean is undefined.
  bool read(int position);

  /// Of the target that was read; null without external drifts.
  const double *getExternalDrifts() const { return _drifts.empty() ? nullptr : _drifts.data(); }

  /// Known means at the target that was read; null when they are 0.
  const double *getMeans() const { return _means.empty() ? nullptr : _means.data(); }

  const QMap<int, NbdAVariableNumeric *> &getCollocated() const { return _collocated; }

  /// The defined collocated values of a target, by variable.
  QMap<int, double> getCollocatedValues(int position) const;

private:
  void _transformCollocated() const;

  const NgcAKriging &_kriging;
  bool _usesDrifts;
  bool _usesLocalMeans;
  QList<NbdVariableDouble *> _driftVariables;
  QList<NbdVariableDouble *> _meanVariables;
  QMap<int, NbdAVariableNumeric *> _collocated;
  std::vector<double> _drifts;
  std::vector<double> _means;
};
