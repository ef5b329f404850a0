#pragma once

#include <vector>

/// Exact minimum of g'd + d'Hd / 2 for lower <= d <= upper, H positive semi-definite, by an active
/// set: the minimum over the free components is followed until a bound stops it, then a component
/// whose bound no longer holds the minimum back is freed, one at a time. Cost: a Cholesky
/// factorization per change of the set.
///
/// Requires: lower <= 0 <= upper; H n x n, column by column
/// Source:   [Nocedal and Wright, 2006, ch. 16.5]
class NgmBoundedQuadratic
{
public:
  /// Puts the minimum into `move`. False when the active set did not settle; `move` then is
  /// feasible and no worse than 0.
  bool minimize(int n, const double *hessian, const double *gradient, const double *lower,
                const double *upper, double *move);

private:
  enum Status { FREE, AT_LOWER, AT_UPPER };

  void _solveFree(int n, const double *hessian);
  bool _advance(const double *lower, const double *upper, double *move);
  void _updateSlope(int n, const double *hessian, const double *gradient, const double *move);
  bool _freeOne(int n, const double *lower, const double *upper);

  std::vector<Status> _status;
  std::vector<int> _free;
  std::vector<double> _slope;   // g + Hd
  std::vector<double> _factor;  // of the free part of H
  std::vector<double> _step;    // of the free components
  double _tolerance = 0.;
};
