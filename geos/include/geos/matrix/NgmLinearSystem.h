#pragma once

#include "geos/matrix/NgmMatrix.h"

/// A square system with several right-hand sides: left-hand side, right-hand sides, results and a
/// "solved" flag. Solving keeps the left-hand side; pivots and the factored copy are held and
/// reused, so that resizing to and solving systems no larger than an earlier one allocates nothing.
class NgmLinearSystem : public NbbIDebuggable
{
public:
  /// Empty: a symmetric 1 x 1 left-hand side.
  NgmLinearSystem();

  /// n equations, nRhs right-hand sides, all zero.
  NgmLinearSystem(int n, int nRhs, bool symmetric);

  /// All elements zero, not solved; the symmetry stays.
  void resize(int n, int nRhs);

  const NgmMatrix &getLHS() const { return _lhs; }
  NgmMatrix &getLHS() { return _lhs; }
  const NgmMatrix &getRHS() const { return _rhs; }
  NgmMatrix &getRHS() { return _rhs; }
  const NgmMatrix &getResults() const { return _results; }

  /// Neutralizes equation i: its column of the left-hand side (and its row, when symmetric) becomes
  /// that of the identity and its right-hand sides zero, so its unknowns come out as zero.
  void setNullEquation(int i);

  /// Solves on one thread; returns LAPACK's info (0 = solved). A symmetric system is singular also
  /// when a pivot is nothing but the rounding of what it was computed from: then the info is its
  /// number.
  int solve();

  bool isSolved() const { return _solved; }
  void setNotSolved() { _solved = false; }

  QString debug(int level) const override;

private:
  using Array = std::vector<double, NgmAlignedAllocator<double>>;

  int _solveSmall();
  int _solveLarge();
  int _findNullPivot(const double *factor, int factorRows);

  bool _solved;
  NgmMatrix _lhs;
  NgmMatrix _rhs;
  NgmMatrix _results;
  std::vector<int> _pivots;
  NgmMatrix _factor;   ///< of a large system
  Array _smallFactor;  ///< of a small one, and its right-hand sides
  std::vector<double> _growth;
};
