#pragma once

/// The samples of a neighborhood as plain arrays, one position per sample. The arrays belong to the
/// caller.
struct NgmKrigingSamples
{
  int n = 0;
  const double *x = nullptr;
  const double *y = nullptr;
  const double *z = nullptr;

  /// One array per variable.
  const double *const *values = nullptr;
};
