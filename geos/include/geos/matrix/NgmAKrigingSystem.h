#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgVector3D.h"
#include "geos/matrix/NgmKrigingSamples.h"
#include "geos/matrix/NgmMatrix.h"

#include <QList>
#include <QVector>

#include <vector>

class NbdAVariableNumeric;
class NbdVariableDouble;
class NgmVModel;
class NgmVModelCovaCache;

/// A kriging or cokriging problem for the samples of one neighborhood: which equations there are
/// and are valid, how the left-hand and right-hand sides follow from a variogram model, and how the
/// weights give estimates, variances and statistics.
///
/// Formula:  sum_j C(i,j) W(j,t) + mu_t = C(i, target t),  sum of the weights of variable v = 1 for
///           target v and 0 for the others (ordinary kriging); without mu in simple kriging
/// Shape:    n samples, V variables, U universality conditions, F drift equations;
///           E = V n + U + F equations. Equation s V + v stands for sample s and variable v; then
///           come the universality conditions, then the drift equations. Right-hand side and
///           weights have one column per target variable.
/// Units:    weights have the unit of target variable / variable; variances are squared units
/// Fails:    results of a system that has not been solved are programming errors. An undefined
///           datum makes its equation invalid: its weight is 0. A universality condition of a
///           variable without data is invalid; so is a drift equation without drift function.
/// Threads:  one system per thread
/// Source:   Chiles and Delfiner (2012), Geostatistics, ch. 3 and 5
class NgmAKrigingSystem : public NbbIDebuggable
{
public:
  ~NgmAKrigingSystem() override;

  QString debug(int level) const override;

  /// The weights are there.
  virtual bool isReady() const = 0;

  virtual const NgmMatrix &getLHSMatrix() const = 0;
  virtual const NgmMatrix &getRHSMatrix() const = 0;
  virtual const NgmMatrix &getWeightsMatrix() const = 0;

  // Results by target variable. The vector gets V values; its memory is reused.

  /// Sum of the weights of the target variable's own samples.
  virtual void computeSumOfWeights(QVector<double> &out) const;

  /// Sum of those that are positive.
  virtual void computeSumOfPositiveWeights(QVector<double> &out) const;

  /// Weight of the mean in simple kriging: 1 - sum of weights.
  virtual void computeWeightForMean(QVector<double> &out) const;

  /// Lagrange parameter of the target variable's condition.
  virtual void computeLagrange(QVector<double> &out) const;

  /// Centre of the drift monomials.
  void setReferencePoint(const NbgVector3D &point) { _referencePoint = point; }

  int getNVariables() const { return _nVariables; }
  int getNSamples() const { return _nSamples; }

  /// E, valid or not.
  int getNEquations() const;
  int getNValidEquations() const { return _nValidEquations; }
  int getNValidDataEquations() const { return _nValidDataEquations; }

  /// Some datum of the variable is defined.
  bool isValidVar(int variable) const { return _validVariables[std::size_t(variable)] != 0; }

  /// w[s] = weight of variable v's sample s for target variable t.
  void getWeights(int t, int v, QVector<double> &w) const;

  /// Estimates: weighted sums of the data, undefined data left out. No mean is added. The first is
  /// for systems of one variable.
  double krigingResult(const NbdAVariableNumeric &data) const;
  void krigingResults(const QList<NbdAVariableNumeric *> &dataVars, QVector<double> &out) const;
  void krigingResults(const double *const *values, QVector<double> &out) const;

  /// Sums of the weights of variable v's samples for target variable t.
  double getSumOfWeights(int t, int v) const;
  double getSumOfPosWeights(int t, int v) const;
  double getSumOfNegWeights(int t, int v) const;

  /// Kriging variances: max(0, c00[t] - sum_k W(k, t) RHS(k, t)) over all equations, `c00` being
  /// the variances of the targets.
  void computeVariance(const QVector<double> &c00, QVector<double> &out) const;

protected:
  /// Universality conditions: none for simple kriging, one for all variables with
  /// `singleCondition`, else one for each variable.
  static int _countUniversality(int nVariables, bool simple, bool singleCondition);

  NgmAKrigingSystem(int nSamples, int nVariables, int nUniversality, int nDrifts);
  NgmAKrigingSystem(const NgmAKrigingSystem &other);
  NgmAKrigingSystem &operator=(const NgmAKrigingSystem &other);

  /// The matrices hold the valid equations only.
  virtual bool _isCompressed() const { return false; }

  virtual NgmMatrix &_getLHSMatrix() = 0;
  virtual NgmMatrix &_getRHSMatrix() = 0;

  /// Another number of samples; all equations valid.
  void _resize(int nSamples);

  int _getNDataEquations() const { return _nVariables * _nSamples; }
  bool _isValidEquation(int equation) const { return _validEquations[std::size_t(equation)] != 0; }

  /// Row of a compressed matrix that holds an equation; -1 for an invalid one.
  int _getCompressedRow(int equation) const { return _compressedRows[std::size_t(equation)]; }

  /// Fills _getLHSMatrix(), of all equations, and finds the invalid ones.
  void _buildLHS(const NgmVModel &model, const NgmKrigingSamples &samples,
                 NgmVModelCovaCache *cache);

  /// Fills a right-hand side of all equations.
  void _buildRHSPoint(const NgmVModel &model, const NbgVector3D &target,
                      const NgmKrigingSamples &samples, NgmMatrix &rhs,
                      NgmVModelCovaCache *cache) const;

  void _checkWeightsReady() const;
  [[noreturn]] static void _failWeightsNotReady();

  /// Coordinates and values as plain arrays; values that are not stored as doubles are converted.
  /// The arrays hold until the next call and as long as the variables.
  NgmKrigingSamples _toArrays(const NbdVariableDouble &x, const NbdVariableDouble &y,
                              const NbdVariableDouble &z,
                              const QList<NbdAVariableNumeric *> &dataVars) const;

private:
  class Weights;

  static const double *_toArray(const NbdAVariableNumeric &variable,
                                std::vector<double> &converted);

  void _invalidateEquation(int equation);
  void _findInvalidData(const NgmKrigingSamples &samples);
  void _updateValidVars();
  void _setDriftPartLHS(NgmMatrix &lhs);
  void _fixUniversalityCond();
  void _setDriftPartRHS(NgmMatrix &rhs) const;
  void _updateCompressedRows();

  NbgVector3D _referencePoint;
  bool _rescaled;
  int _nVariables;
  int _nSamples;
  int _nUniversality;
  int _nDrifts;
  int _nValidEquations;
  int _nValidDataEquations;
  std::vector<unsigned char> _validEquations;
  std::vector<unsigned char> _validVariables;
  std::vector<int> _compressedRows;

  /// Of _toArrays().
  mutable std::vector<const double *> _valueArrays;
  mutable std::vector<std::vector<double>> _convertedValues;
};
