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
/// Criterion: 0.5 sum over lags h and pairs i <= j of m_ij W_ij(h) (G_ij(h) - sum_k B_k,ij
/// g_k(h))^2
///            with m_ij = 2 off the diagonal
/// Source:    [Goulard and Voltz, 1992]
class NgmOptimizerGoulard : public NgmAOptimizer
{
public:
  NgmOptimizerGoulard();
  NgmOptimizerGoulard(const NgmOptimizerGoulard &other) = default;
  NgmOptimizerGoulard &operator=(const NgmOptimizerGoulard &other) = default;
  ~NgmOptimizerGoulard() override;

  /// Sum of the squared weighted residuals, pairs of variables counted once.
  double getGOF() const { return _gof; }

protected:
  bool _doOptimization(int nbMaxIteration) override;

private:
  friend class NgmVModelOptimizerFoxleg;

  /// Weighted sums over the lags of a pair of variables.
  struct _Products
  {
    std::vector<double> gram;  // of the curves of unit sill
    std::vector<double> rhs;
    double squares = 0.;
  };

  NgmVModelOptimizable &_vModel() const;
  void _prepareProducts(const NgmVModelOptimizable &vModel);
  void _initializeSills(const NgmVModelOptimizable &vModel);
  bool _optimizeWithoutConstraints(int nbMaxIteration);
  void _updateCurrentSillGoulard(int rank);
  double _scoreEvaluate() const;
  static void _makePositive(NgmMatrix &sills);
  static void _assignSills(NgmVModelOptimizable *optimizable, const QVector<NgmMatrix> &sills);

  int _nVariables = 0;
  int _nStructures = 0;
  std::vector<_Products> _products;
  QVector<NgmMatrix> _sills;
  std::vector<bool> _locked;
  int _iteration = 0;
  double _gof = 0.;
};
