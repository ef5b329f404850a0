#pragma once

#include "geos/matrix/NgmAKrigingSystem.h"

#include <atomic>
#include <memory>
#include <mutex>

class NgmKrigingFactor;

/// The kriging system of a unique neighborhood: the left-hand side of all samples, factorised once,
/// and the dual coefficients, from which a target's estimate is one product with its right-hand
/// side (NgmKrigingSystemDualContext).
///
/// Formula:  b = K^-1 z, estimate = b' k0 with k0 the right-hand side of the target and z the data
///           (0 for universality and drift equations)
/// Cost:     O(E^3) once, two E x E matrices. When the covariances of the data are positive
///           definite, a Cholesky factor serves estimates and variances, and the inverse is
///           computed when something asks for it first; else it is computed at once.
/// Fails:    user errors: more than 10000 / V^2 samples, no valid datum, a singular system
/// Threads:  built by one thread, then read by any number of contexts
class NgmKrigingSystemDual : public NgmAKrigingSystem
{
public:
  /// One sample, one variable, one condition.
  NgmKrigingSystemDual();

  /// The arguments of NgmKrigingSystem, and the number of samples.
  NgmKrigingSystemDual(int nSamples, int nVariables, bool simple, bool singleCondition,
                       int nDrifts);

  NgmKrigingSystemDual(const NgmKrigingSystemDual &other);
  NgmKrigingSystemDual &operator=(const NgmKrigingSystemDual &other);
  ~NgmKrigingSystemDual() override;

  /// 10000 / V^2.
  static int getMaximumNumberOfSamples(int nVariables);

  /// Builds, compresses to the valid equations and factorises the left-hand side. The reference
  /// point becomes the centre of the box of the samples. `nThreads` other than 1 takes the parallel
  /// path of NgmMatrix::invert(), with other bits. `extDriftVars` are the external drift variables:
  /// empty without.
  void buildSystem(const NgmVModel &model, const NbdVariableDouble &x, const NbdVariableDouble &y,
                   const NbdVariableDouble &z, const QList<NbdAVariableNumeric *> &dataVars,
                   int nThreads, const QList<NbdAVariableNumeric *> &extDriftVars);
  void buildSystem(const NgmVModel &model, const NgmKrigingSamples &samples, int nThreads);

  QString debug(int level) const override;

  /// Built, and not singular.
  bool isReady() const override { return _ready; }

  /// The left-hand side of the valid equations.
  const NgmMatrix &getLHSMatrix() const override { return _lhs; }

  /// Its inverse, computed now when nothing needed it before.
  const NgmMatrix &getLHSInverse() const;

  /// b', 1 x number of valid equations.
  const NgmMatrix &getDualCoefficients() const { return _dualCoefficients; }

  // Of a target, hence of a context only: programming error "Method not defined.".

  const NgmMatrix &getRHSMatrix() const override;
  const NgmMatrix &getWeightsMatrix() const override;
  void computeSumOfWeights(QVector<double> &out) const override;
  void computeSumOfPositiveWeights(QVector<double> &out) const override;
  void computeWeightForMean(QVector<double> &out) const override;
  void computeLagrange(QVector<double> &out) const override;

protected:
  bool _isCompressed() const override { return true; }
  NgmMatrix &_getLHSMatrix() override { return _lhs; }
  NgmMatrix &_getRHSMatrix() override;
  NgmMatrix &_getWeightsMatrix();

private:
  friend class NgmKrigingSystemDualContext;

  void _compressLHS();
  std::vector<double> _compressData(const NgmKrigingSamples &samples) const;
  void _solve(const NgmKrigingSamples &samples, int nThreads);
  void _computeInverse(int nThreads) const;

  bool _ready;
  NgmMatrix _lhs;
  NgmMatrix _dualCoefficients;

  /// Null when the covariances of the data are not positive definite.
  std::shared_ptr<const NgmKrigingFactor> _factor;

  mutable std::mutex _inverseMutex;
  mutable std::atomic<bool> _inverted;
  mutable NgmMatrix _inverse;
};
