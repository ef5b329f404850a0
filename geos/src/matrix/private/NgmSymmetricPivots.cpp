#include "matrix/private/NgmSymmetricPivots.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace {

/// What the elements of a row gained on the way to its pivot: a_ii = d_i + sum of the signed parts
/// of the pivots eliminated before it, and the part of a positive pivot is its own magnitude. So
/// the magnitudes add up to a_ii - d_i and the differences of the others, which are few.
double growthOf(double original, double pivot, double differences)
{
  return std::max(0., std::abs(original) + (original - pivot) + differences);
}

}  // namespace

int findNullPivot(int n, const double *factor, int factorRows, const int *pivots, double *original,
                  double *differences)
{
  const double rounding = n * std::numeric_limits<double>::epsilon();
  const auto column = [=](int j) { return factor + std::size_t(j) * std::size_t(factorRows); };
  std::fill(differences, differences + n, 0.);
  // From the last pivot to the first, as they were eliminated; rows above are in the order of that
  // stage.
  for (int k = n - 1; k >= 0; --k) {
    const double *u = column(k);
    if (pivots[k] > 0) {
      std::swap(original[k], original[pivots[k] - 1]);
      std::swap(differences[k], differences[pivots[k] - 1]);
      const double d = u[k];
      if (!(std::abs(d) > rounding * growthOf(original[k], d, differences[k])))
        return k + 1;
      for (int i = 0; i < k && d < 0.; ++i)
        differences[i] -= 2. * u[i] * u[i] * d;
      continue;
    }
    // A block of two rows, chosen for its element beside the diagonal.
    const double *v = column(k - 1);
    std::swap(original[k - 1], original[-pivots[k] - 1]);
    std::swap(differences[k - 1], differences[-pivots[k] - 1]);
    const double d = u[k];
    const double e = v[k - 1];
    const double off = u[k - 1];
    const double growth =
        growthOf(original[k], d, differences[k]) * growthOf(original[k - 1], e, differences[k - 1]);
    if (!(std::abs(off) > rounding * std::sqrt(growth)))
      return k + 1;
    for (int i = 0; i < k - 1; ++i) {
      const double magnitude =
          u[i] * u[i] * std::abs(d) + v[i] * v[i] * std::abs(e) + 2. * std::abs(u[i] * v[i] * off);
      differences[i] += magnitude - (u[i] * u[i] * d + v[i] * v[i] * e + 2. * u[i] * v[i] * off);
    }
    --k;
  }
  return 0;
}
