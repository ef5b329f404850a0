#pragma once

#include <QVector>

/// Numerical tools that belong to no model.
class NgmAlgorithm
{
public:
  NgmAlgorithm() = delete;

  /// Distinct real roots of a x^3 + b x^2 + c x + d in increasing order: one, two (one of them
  /// double) or three; those of the quadratic or linear equation when leading coefficients are 0,
  /// none for a constant.
  ///
  /// Source: [Press et al., 2007, ch. 5.6], each root polished by Newton steps
  static QVector<double> rootsP3(double a, double b, double c, double d);
};
