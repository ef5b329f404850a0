#pragma once

#include <functional>
#include <vector>

/// Minimum of a function of several variables without derivatives, by the simplex of Nelder and
/// Mead.
///
/// Default: tolerance 1e-10 on the spread of the function over the simplex, 200 evaluations per
///          variable and restart, 2 restarts from the best point
/// Cost:    1 to 2 evaluations per step
/// Source:  [Nelder and Mead, 1965]
class NgmNelderMead
{
public:
  using Function = std::function<double(const std::vector<double> &)>;

  void setTolerance(double tolerance) { _tolerance = tolerance; }
  void setNbMaxEvaluations(int n) { _nbMaxEvaluations = n; }
  void setNbRestarts(int n) { _nbRestarts = n; }

  /// Moves `point` to the minimum; the first simplex has `step` along each axis. Returns the value
  /// there. A function value that is not a number counts as infinite.
  double minimize(const Function &function, double step, std::vector<double> &point);

  /// Of the last minimization.
  bool hasConverged() const { return _converged; }
  int getNEvaluations() const { return _nEvaluations; }

private:
  struct _Vertex
  {
    std::vector<double> point;
    double value = 0.;
  };

  double _evaluate(const Function &function, const std::vector<double> &point);
  bool _runSimplex(const Function &function, double step, _Vertex &best);
  _Vertex _pointAt(const Function &function, const std::vector<double> &centre,
                   const _Vertex &worst, double factor);
  void _shrink(const Function &function, std::vector<_Vertex> &simplex);

  double _tolerance = 1e-10;
  int _nbMaxEvaluations = 0;  // 0: by the number of variables
  int _nbRestarts = 2;
  bool _converged = false;
  int _nEvaluations = 0;
};
