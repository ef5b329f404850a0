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

  /// One array per external drift variable; null without external drifts.
  const double *const *externalDrifts = nullptr;

  /// One array per variable: the standard deviations of the measurement errors. Null for exact data
  /// and for data whose errors are given by NgmAKrigingSystem::setStDevMeasurementError(); a null
  /// entry stands for a variable of exact data.
  const double *const *errorStDevs = nullptr;
};
