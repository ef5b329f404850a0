#pragma once

#include <cstddef>
#include <vector>

/// Descent of 0.5 sum_ij (B_ij' G_ij B_ij - 2 r_ij' B_ij) over the matrices of sills B_k of several
/// structures (B_ij: the vector of their elements i, j), all positive semi-definite, variables with
/// a total keeping it.
///
/// B_k = L_k L_k', and the total of variable i is the squared norm of row i of all L_k together, so
/// that such a row moves on a sphere and every point of the way is admissible. Gradient steps of
/// the length of [Barzilai and Borwein, 1988], shortened until the criterion decreases.
class NgmSillDescent
{
public:
  /// Lower triangles, the pair (i, j) at i (i + 1) / 2 + j.
  struct Problem
  {
    std::size_t nVariables = 0;
    std::size_t nStructures = 0;
    std::vector<const double *> grams;  // per pair: a matrix over structures
    std::vector<const double *> rhs;    // per pair: a vector over structures
    std::vector<double> totals;         // per variable; negative for none
  };

  explicit NgmSillDescent(const Problem &problem) : _problem(problem) {}

  /// Square roots L_k, one row per variable with the rows of all L_k one after another.
  void run(std::vector<double> &roots, int nbMaxIteration);

private:
  double _evaluate(const std::vector<double> &roots);
  void _computeGradient(const std::vector<double> &roots);
  void _retract(std::vector<double> &roots) const;
  bool _step(std::vector<double> &roots);
  std::size_t _rowSize() const { return _problem.nVariables * _problem.nStructures; }

  const Problem &_problem;
  std::vector<double> _sills;     // per pair, of all structures
  std::vector<double> _slopes;    // of the criterion, likewise
  std::vector<double> _gradient;  // of the roots, tangential
  std::vector<double> _trial;
  double _value = 0.;
  double _length = 0.;
};
