#pragma once

#include "geos/matrix/NgmAKrigingSystem.h"

/// The kriging system of a unique neighborhood: the left-hand side of all samples, inverted once,
/// and the dual coefficients, from which a target's estimate is one product with its right-hand
/// side (NgmKrigingSystemDualContext).
///
/// Formula:  b = K^-1 z, estimate = b' k0 with k0 the right-hand side of the target and z the data
///           (0 for universality and drift equations)
/// Cost:     O(E^3) once, two E x E matrices
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

  /// Builds, compresses to the valid equations and inverts the left-hand side. `nThreads` other
  /// than 1 takes the parallel path of NgmMatrix::invert(). `extDriftVars` are the variables of the
  /// external drift model's terms: empty without one.
  void buildSystem(const NgmVModel &model, const NbdVariableDouble &x, const NbdVariableDouble &y,
                   const NbdVariableDouble &z, const QList<NbdAVariableNumeric *> &dataVars,
                   int nThreads, const QList<NbdAVariableNumeric *> &extDriftVars);
  void buildSystem(const NgmVModel &model, const NgmKrigingSamples &samples, int nThreads);

  QString debug(int level) const override;

  /// Inverted.
  bool isReady() const override { return _inverted; }

  /// The left-hand side of the valid equations.
  const NgmMatrix &getLHSMatrix() const override { return _lhs; }
  const NgmMatrix &getLHSInverse() const { return _inverse; }

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
  void _compressLHS();
  NgmMatrix _compressData(const NgmKrigingSamples &samples) const;

  bool _inverted;
  NgmMatrix _lhs;
  NgmMatrix _inverse;
  NgmMatrix _dualCoefficients;
};
