#pragma once

#include "geos/fit/NgmAOptimizer.h"
#include "geos/matrix/NgmMatrix.h"

#include <QVector>

#include <vector>

class NgmVModelOptimizable;

/// Fit of the sills of a linear model of coregionalization, ranges and rotations being kept: one
/// structure after another takes the matrix of weighted least squares given the others, made
/// positive semi-definite, until the criterion settles.
///
/// Criterion: 0.5 sum over lags h and pairs i >= j of m_ij W_ij(h) (G_ij(h) - sum_k B_k,ij
/// g_k(h))^2
///            with m_ij = 2 off the diagonal; undefined values are left out
/// Stops:     when it changes by less than 1e-4 of its value, after the maximum number of
///            iterations (the last sills are kept), or when the run is to stop (none are); a run of
///            its own that settled then descends to the minimum
/// Locked:    structures with known sills are subtracted from the curves
/// Totals:    a variable with a total sill keeps it: its sills are s_i s_j A_k,ij, and the scale
///            s_i minimizes the criterion while one structure takes what the total leaves
/// Intrinsic: B_k = c_k M; factors c_k >= 0 and M (positive semi-definite) take turns
/// Source:    [Goulard and Voltz, 1992]
class NgmOptimizerGoulard : public NgmAOptimizer
{
public:
  NgmOptimizerGoulard();
  NgmOptimizerGoulard(const NgmOptimizerGoulard &other) = default;
  NgmOptimizerGoulard &operator=(const NgmOptimizerGoulard &other) = default;
  ~NgmOptimizerGoulard() override;

  /// Sum of the squared weighted residuals, twice the score.
  double getGOF() const { return _gof; }

protected:
  bool _doOptimization(int nbMaxIteration) override;

  /// The log starts with the header of the table of iterations.
  void _resetLogs() override;

private:
  friend class NgmVModelOptimizerFoxleg;

  /// The weighted lags of a pair of variables and sums over them.
  struct _Products
  {
    std::vector<double> values;  // experimental, less what is locked
    std::vector<double> weights;
    std::vector<double> curves;  // of unit sill, one structure after another
    std::vector<double> gram;    // of the curves
    std::vector<double> rhs;     // of the curves with the values
  };

  /// Polynomial 0.5 (a x^4 + b x^2 + 4 c x).
  struct _Quartic
  {
    double a = 0.;
    double b = 0.;
    double c = 0.;
    double value(double x) const { return 0.5 * x * (a * x * x * x + b * x + 4. * c); }
  };

  NgmVModelOptimizable &_vModel() const;
  void _prepareStructures(const NgmVModelOptimizable &vModel);
  void _prepareCurves(const NgmVModelOptimizable &vModel);
  static void _prepareProducts(_Products &products, std::size_t nStructures);
  void _prepareConstraints(const NgmVModelOptimizable &vModel);
  void _initializeSills(const NgmVModelOptimizable &vModel);
  void _spreadTotals();

  /// They return whether the criterion settled.
  bool _optimizeWithoutConstraints(int nbMaxIteration);
  bool _optimizeWithConstraints(int nbMaxIteration);
  bool _optimizeIntrinsic(int nbMaxIteration);
  bool _optimizeNotIntrinsic(int nbMaxIteration);
  template <class Step>
  bool _iterate(int nbMaxIteration, Step step);

  /// Takes settled sills to the minimum that the rule of stopping leaves open.
  void _refine(int nbMaxIteration);
  template <class Step>
  void _refineBy(int nbMaxIteration, Step step);
  void _refineSills(int nbMaxIteration);
  void _refineTotals(int nbMaxIteration);
  void _updateMajorized(int k);

  /// Least squares of row i of the sills of structure k, given the others.
  void _updateCurrentSillGoulard(int k, int i);
  double _leastSquares(int k, int i, int j) const;

  void _updateIntrinsic();
  void _updateFactors();
  void _updateCommon();

  // Sills as s_i s_j A_k,ij, for variables with a total.

  void _optimizeStructure(int k);
  bool _optimizeScale(int k, int i);
  void _updateCurrentSillDiag(int k, int i);
  void _updateOtherSills(int k, int i);
  void _updateAlphaDiag(int k, int i);
  void _updateAlphaNoDiag(int k, int i);
  double _sumAlpha(int i) const;
  _Quartic _scaleCriterion(int k, int i) const;
  static double _optimize_P4_minimum(const _Quartic &criterion, double current, double sMax);
  double _optimize_P4_minimum(int k, int i, double sMax) const;
  void _makePositiveDefiniteUnderConstraints(NgmMatrix &sills) const;
  bool _isConstrained(int i) const;

  double _scoreEvaluate();
  double _sumOfSquares(int i, int j);
  static void _makePositive(NgmMatrix &sills);
  void _assignSills(NgmVModelOptimizable *optimizable, const QVector<NgmMatrix> &sills) const;

  void _printGoulardHeader();
  void _printGoulardIteration();
  void _printGoulardResults(int nbMaxIteration);

  static int _combineVariables(int i, int j);
  const _Products &_productsOf(int i, int j) const;

  int _nVariables = 0;
  int _nStructures = 0;  // those that move
  QVector<int> _ranks;   // of those in the optimizable
  std::vector<_Products> _products;
  std::vector<double> _residuals;
  QVector<NgmMatrix> _sills;
  QVector<NgmMatrix> _alphas;
  QVector<double> _scales;
  QVector<double> _totals;  // what locked structures leave; undefined for a free variable
  NgmMatrix _lockedTotals;
  bool _hasTotals = false;
  bool _isIntrinsic = false;
  bool _isCommonKnown = false;
  NgmMatrix _common;
  std::vector<double> _factors;
  int _iteration = 0;
  double _scoreStop = 0.;
  double _gof = 0.;
};
