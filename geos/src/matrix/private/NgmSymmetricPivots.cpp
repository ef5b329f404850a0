#include "matrix/private/NgmSymmetricPivots.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

int findNullPivot(int n, const double *factor, const int *pivots, double *growth)
{
  const double rounding = n * std::numeric_limits<double>::epsilon();
  const auto column = [=](int j) { return factor + std::size_t(j) * std::size_t(n); };
  // From the last pivot to the first, as they were eliminated; rows above are in the order of that
  // stage.
  for (int k = n - 1; k >= 0; --k) {
    const double *u = column(k);
    if (pivots[k] > 0) {
      std::swap(growth[k], growth[pivots[k] - 1]);
      const double d = std::abs(u[k]);
      if (!(d > rounding * growth[k]))
        return k + 1;
      for (int i = 0; i < k; ++i)
        growth[i] += u[i] * u[i] * d;
      continue;
    }
    // A block of two rows, chosen for its element beside the diagonal.
    const double *v = column(k - 1);
    std::swap(growth[k - 1], growth[-pivots[k] - 1]);
    const double d = std::abs(u[k]);
    const double e = std::abs(v[k - 1]);
    const double off = std::abs(u[k - 1]);
    if (!(off > rounding * std::sqrt(growth[k] * growth[k - 1])))
      return k + 1;
    for (int i = 0; i < k - 1; ++i)
      growth[i] += u[i] * u[i] * d + v[i] * v[i] * e + 2. * std::abs(u[i] * v[i]) * off;
    --k;
  }
  return 0;
}
