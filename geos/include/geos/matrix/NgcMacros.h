#pragma once

/// Index formulas of packed storage.
class NgcMacros
{
public:
  /// Element (i, j) of a packed lower triangle, in either order of the arguments.
  static constexpr int TRI_ADDR(int i, int j)
  {
    return i >= j ? i * (i + 1) / 2 + j : j * (j + 1) / 2 + i;
  }

  /// Element j of row i, rows of n elements.
  static constexpr int SQR_ADDR(int n, int i, int j) { return n * i + j; }
};
