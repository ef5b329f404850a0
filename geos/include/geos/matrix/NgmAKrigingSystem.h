#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgVector3D.h"
#include "geos/matrix/NgmKrigingSamples.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmDriftModel.h"
#include "geos/vmodel/NgmExtDriftModel.h"

#include <QList>
#include <QMap>
#include <QVector>

#include <vector>

class NbdAVariableNumeric;
class NbdVariableDouble;
class NgmTarget;
class NgmVModel;
class NgmVModelCovaCache;

/// A kriging or cokriging problem for the samples of one neighborhood: which equations there are
/// and are valid, how the left-hand and right-hand sides follow from a variogram model and the
/// drifts, and how the weights give estimates, variances and statistics.
///
/// Formula:  | C  F | | W  |   | C(data, target) |
///           | F' 0 | | mu | = | f(target)       |
///           with C the covariances of the data and F the values at the data of the functions that
///           the mean is a combination of. Simple kriging has no F; ordinary kriging has the
///           constant of each variable: the weights of variable v sum to 1 for target v and to 0
///           for the others; rescaled cokriging has one condition, that all weights sum to 1;
///           drift functions of the coordinates and external drifts make one more row each.
/// Shape:    n samples, V variables, U universality conditions, F drift equations;
///           E = V n + U + F equations. Equation s V + v stands for sample s and variable v; then
///           come the universality conditions, then the drift equations, polynomial terms before
///           external ones. Right-hand side and weights have one column per target variable.
/// Units:    weights have the unit of target variable / variable; variances are squared units
/// Fails:    results of a system that has not been solved are programming errors. What misses does
///           not fail: an undefined datum makes its equation invalid, so its weight is 0; so does
///           an undefined external drift. Invalid too are the condition of a variable without data,
///           a drift equation without drift function and those of a variable with fewer data than
///           functions, for which getDriftError() has a text.
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

  /// Weight of the mean in simple kriging: 1 - sum of weights. Fails with external drifts.
  virtual void computeWeightForMean(QVector<double> &out) const;

  /// Lagrange parameter of the target variable's condition. Fails in simple kriging.
  virtual void computeLagrange(QVector<double> &out) const;

  // Settings, before the system is built.

  /// The terms of both models together are not more than the drift equations of the system.
  void setDriftModel(const NgmDriftModel &model);
  void setExtDriftModel(const NgmExtDriftModel &model);
  const NgmDriftModel &getDriftModel() const { return _driftModel; }
  const NgmExtDriftModel &getExtDriftModel() const { return _extDriftModel; }

  /// Centre of the drift monomials: any point near the data and the target.
  void setReferencePoint(const NbgVector3D &point) { _referencePoint = point; }
  const NbgVector3D &getReferencePoint() const { return _referencePoint; }

  /// By variable: the variable that holds the standard deviation of each datum's measurement error.
  /// Undefined means exact. The variables are read when the system is built.
  void setStDevMeasurementError(const QMap<int, NbdAVariableNumeric *> &variables);

  // Direct block kriging in the discrete Gaussian model: covariances are those of Gaussian block
  // values, of which a datum is one at random in its block, correlated to it by r.

  /// 0 < r <= 1, by variable. Once one is set, variables without coefficient count with 0.
  void setBlockCorrectionCoefficient(int variable, double r);

  /// Correlations of the variables at one sample (V x V); default none.
  void setPointGaussianCorrelation(const NgmMatrix &correlations);

  /// Estimates the residual: the right-hand sides of universality and drift equations are 0. Fails
  /// in rescaled cokriging.
  void setFilterDrifts(bool filtered);
  bool isFilteringDrifts() const { return _filterDrifts; }

  int getNVariables() const { return _nVariables; }
  int getNSamples() const { return _nSamples; }

  /// E, valid or not.
  int getNEquations() const;
  int getNValidEquations() const { return _nValidEquations; }
  int getNValidDataEquations() const { return _nValidDataEquations; }

  /// Some datum of the variable is defined.
  bool isValidVar(int variable) const { return _validVariables[std::size_t(variable)] != 0; }

  /// Some variable has too few data for its drift: the text says which. The system is that without
  /// these drift equations.
  bool hasDriftError() const { return !_driftError.isEmpty(); }
  const QString &getDriftError() const { return _driftError; }

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

  /// Variances of the error for weights that fulfil the conditions but need not be the optimal
  /// ones, from the data equations alone; not floored:
  /// c00[t] - 2 sum_i W(i, t) RHS(i, t) + sum_ij W(i, t) LHS(i, j) W(j, t).
  void computeNonOptimVariance(const QVector<double> &c00, QVector<double> &out) const;

  /// Variances of the estimates: sum_ij W(i, t) LHS(i, j) W(j, t) over the data equations. It is
  /// computed in the time of one product of two columns, the weights being the solution:
  /// sum_i W(i, t) RHS(i, t) over the data less the same over the conditions.
  void computeVarianceOfEstimates(QVector<double> &out) const;

  /// Covariances between true value and estimate: sum_i W(i, t) RHS(i, t) over the data equations.
  void computeCovarianceZZStar(QVector<double> &out) const;

  /// Covariances between the estimate of variable v and those of the other variables, in their
  /// order. `out` holds V - 1 values at least already.
  void computeCovarianceZ1StarZStar(int v, QVector<double> &out) const;

  // From the above, value by value.

  /// cov / sqrt(c00 * varZStar); undefined unless both variances are positive.
  void computeCorrelationZZStar(const QVector<double> &c00, const QVector<double> &cov,
                                const QVector<double> &varZStar, QVector<double> &out) const;

  /// Slope of the regression of the true value on the estimate: cov / varZStar, undefined for
  /// |varZStar| <= 1e-10.
  void computeSlopeRegressionZZStar(const QVector<double> &cov, const QVector<double> &varZStar,
                                    QVector<double> &out) const;

  /// (c00 - variance) / c00, undefined for |c00| <= 1e-10.
  void computeKrigingEfficiency(const QVector<double> &c00, const QVector<double> &variance,
                                QVector<double> &out) const;

protected:
  /// A datum at the target, bordering the equations of the samples.
  struct ExtraDatum
  {
    int variable;
    double value;
  };

  /// Universality conditions: none for simple kriging, one for all variables with
  /// `singleCondition`, else one for each variable.
  static int _countUniversality(int nVariables, bool simple, bool singleCondition);

  NgmAKrigingSystem(int nSamples, int nVariables, int nUniversality, int nDrifts);
  NgmAKrigingSystem(const NgmAKrigingSystem &other);
  NgmAKrigingSystem &operator=(const NgmAKrigingSystem &other);

  /// The matrices hold the valid equations only.
  virtual bool _isCompressed() const { return false; }

  /// The strict lower triangle of _getLHSMatrix() need not be filled.
  virtual bool _needsUpperOnly() const { return false; }

  virtual NgmMatrix &_getLHSMatrix() = 0;
  virtual NgmMatrix &_getRHSMatrix() = 0;

  /// sum_ij W(i, t) LHS(i, j) W(j, t) over the data equations.
  virtual double _quadraticForm(int t) const;

  /// Another number of samples; all equations valid.
  void _resize(int nSamples);

  int _getNDataEquations() const { return _nVariables * _nSamples; }
  int _getNUniversality() const { return _nUniversality; }
  bool _isRescaled() const { return _rescaled; }
  bool _isValidEquation(int equation) const { return _validEquations[std::size_t(equation)] != 0; }

  /// Rows of the data equations of samples, and of all equations, in the matrices.
  int _getNDataRows() const;
  int _getNRows() const;

  /// Row of a compressed matrix that holds an equation; -1 for an invalid one.
  int _getCompressedRow(int equation) const { return _compressedRows[std::size_t(equation)]; }

  /// Data at the target; their rows come behind those of all equations.
  std::vector<ExtraDatum> &_getExtraData() { return _extraData; }
  const std::vector<ExtraDatum> &_getExtraData() const { return _extraData; }

  bool _isBlockCorrected() const { return _blockCorrected; }

  /// r of a variable; 1 when there is no block correction.
  double _getCorrection(int variable) const;
  const NgmMatrix &_getPointCorrelations() const { return _pointCorrelations; }

  /// Length of an array with the values of the external drift variables.
  int _countExternalDrifts() const;

  /// Fills _getLHSMatrix(), of all equations, and finds the invalid ones.
  void _buildLHS(const NgmVModel &model, const NgmKrigingSamples &samples,
                 NgmVModelCovaCache *cache);

  /// Fill a right-hand side of all equations. The external drift values are one for each external
  /// drift variable; null without external drifts.
  void _buildRHSPoint(const NgmVModel &model, const NbgVector3D &target,
                      const NgmKrigingSamples &samples, const double *extDriftValuesAtTarget,
                      NgmMatrix &rhs, NgmVModelCovaCache *cache) const;
  void _buildRHSBlock(const NgmVModel &model, const NgmTarget &target,
                      const NgmKrigingSamples &samples, const double *extDriftValuesAtTarget,
                      NgmMatrix &rhs, NgmVModelCovaCache *cache) const;

  /// Values of the functions at the target in the rows of universality and drift equations, as they
  /// stand in the left-hand side for a sample there: neither filtered nor corrected.
  void _setDriftRows(const NgmTarget &target, const double *extDriftValuesAtTarget,
                     NgmMatrix &columns) const;

  /// Some weight of the data equations is outside [-1.5, 1.5].
  bool _checkSuspicious() const;

  void _checkWeightsReady() const;
  [[noreturn]] static void _failWeightsNotReady();

  /// Coordinates as plain arrays; with values too, those that are not stored as doubles being
  /// converted. The arrays hold until the next call and as long as the variables.
  static NgmKrigingSamples _toArrays(const NbdVariableDouble &x, const NbdVariableDouble &y,
                                     const NbdVariableDouble &z);
  NgmKrigingSamples _toArrays(const NbdVariableDouble &x, const NbdVariableDouble &y,
                              const NbdVariableDouble &z,
                              const QList<NbdAVariableNumeric *> &dataVars,
                              const QList<NbdAVariableNumeric *> &extDriftVars) const;

  /// External drift values as an array, or null when some are missing.
  const double *_toArray(const QVector<double> &extDriftValues) const;

private:
  class Weights;

  /// A term of the external drift model.
  struct ExternalTerm
  {
    int variable;
    int driftIndex;
  };

  /// Variables as plain arrays; the memory is reused.
  class Arrays
  {
  public:
    const double *const *take(const NbdAVariableNumeric &variable);
    const double *const *take(const QList<NbdAVariableNumeric *> &variables);
    const double *const *take(const QMap<int, NbdAVariableNumeric *> &variables, int size);

  private:
    static const double *_toArray(const NbdAVariableNumeric &variable,
                                  std::vector<double> &converted);
    void _resize(int size);

    std::vector<const double *> _pointers;
    std::vector<std::vector<double>> _converted;
  };

  void _checkSamples(const NgmKrigingSamples &samples) const;
  void _invalidateEquation(int equation);
  void _findInvalidData(const NgmKrigingSamples &samples);
  void _correctForBlocks(NgmMatrix &lhs) const;
  void _addMeasurementErrors(const NgmKrigingSamples &samples, NgmMatrix &lhs) const;
  void _updateValidVars();
  void _setDriftPartLHS(const NgmKrigingSamples &samples, NgmMatrix &lhs);
  void _setUniversalityRows(NgmMatrix &lhs) const;
  void _fixUniversalityCond();
  void _setPolynomialRow(int term, int row, const NgmKrigingSamples &samples, NgmMatrix &lhs);
  void _setExternalRow(const ExternalTerm &term, int row, const NgmKrigingSamples &samples,
                       NgmMatrix &lhs);
  void _checkDriftFeasibility();
  int _countValidData(int variable) const;
  void _checkDriftTerms() const;

  /// Variable of the drift equation k; -1 without drift function or variable.
  int _getDriftVariable(int k) const;

  void _correctRHS(NgmMatrix &rhs) const;
  void _setDriftPartRHS(const NgmTarget &target, const double *extDriftValuesAtTarget,
                        NgmMatrix &rhs) const;
  double _getExternalDrift(const ExternalTerm &term, const double *extDriftValuesAtTarget) const;
  void _updateCompressedRows();
  double _covarianceOfEstimates(int v, int t) const;

  NgmDriftModel _driftModel;
  NgmExtDriftModel _extDriftModel;
  NbgVector3D _referencePoint;
  std::vector<double> _blockCorrections;
  NgmMatrix _pointCorrelations;
  bool _rescaled;
  bool _filterDrifts;
  bool _blockCorrected;
  int _nVariables;
  int _nSamples;
  int _nUniversality;
  int _nDrifts;
  int _nValidEquations;
  int _nValidDataEquations;
  std::vector<unsigned char> _validEquations;
  std::vector<unsigned char> _validVariables;
  QMap<int, NbdAVariableNumeric *> _errorVariables;
  QString _driftError;
  std::vector<ExternalTerm> _externalTerms;
  std::vector<int> _compressedRows;
  std::vector<ExtraDatum> _extraData;

  // Memory that is reused.
  mutable Arrays _values;
  mutable Arrays _externalDrifts;
  mutable Arrays _errors;
  mutable QVector<NbgVector3D> _blockPoints;
  std::vector<double> _termValues;
};
