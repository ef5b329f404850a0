#pragma once

#include <QVector>

class NgcKrigingOutputs;
class NgmAKrigingSystem;

/// Computes what is asked for beside the estimate and its variance from a solved system; each
/// quantity once for all variables, only when an output or another quantity needs it.
class NgcKrigingStatistics
{
public:
  /// Without `lagrange` there are no Lagrange parameters; the weights of the mean are computed here
  /// in simple kriging only.
  NgcKrigingStatistics(int nVariables, bool isSimpleKriging);

  /// Writes the statistics of one target. `c00`: the variances of the target; `variances`: the
  /// kriging variances.
  void write(const NgmAKrigingSystem &system, const QVector<double> &c00,
             const QVector<double> &variances, const NgcKrigingOutputs &outputs, int position);

private:
  void _writeEstimateVariances(const NgmAKrigingSystem &system, const NgcKrigingOutputs &outputs,
                               int position);
  void _writeCovariances(const NgmAKrigingSystem &system, const QVector<double> &c00,
                         const NgcKrigingOutputs &outputs, int position);
  void _writeWeights(const NgmAKrigingSystem &system, const NgcKrigingOutputs &outputs,
                     int position);

  int _nVariables;
  bool _isSimpleKriging;
  QVector<double> _varianceOfEstimates;
  QVector<double> _covariances;
  QVector<double> _otherCovariances;
  QVector<double> _result;
};
