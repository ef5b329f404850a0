#include "vmodel/private/NgmCovaKernels.h"

namespace {

struct Vector
{
  double x;
  double y;
  double z;
};

template <bool ROTATED, bool SCALED>
inline Vector reduced(Vector h, const double *m, const double *a)
{
  if constexpr (ROTATED)
    h = {m[0] * h.x + m[1] * h.y + m[2] * h.z, m[3] * h.x + m[4] * h.y + m[5] * h.z,
         m[6] * h.x + m[7] * h.y + m[8] * h.z};
  if constexpr (SCALED)
    h = {h.x * a[0], h.y * a[1], h.z * a[2]};
  return h;
}

template <bool ROTATED, bool SCALED>
void squaredDistancesOf(const double target[3], int n, const double *__restrict x,
                        const double *__restrict y, const double *__restrict z,
                        const NgmCovaKernels::Reduction &reduction, double *__restrict out)
{
  // Local copies: the compiler cannot know that `out` does not overlap them.
  double m[9] = {};
  double a[3] = {};
  if constexpr (ROTATED)
    for (int k = 0; k < 9; ++k)
      m[k] = reduction.rotation[k];
  if constexpr (SCALED)
    for (int k = 0; k < 3; ++k)
      a[k] = reduction.anisotropy[k];
  const Vector t = {target[0], target[1], target[2]};
  for (int i = 0; i < n; ++i) {
    const Vector v = reduced<ROTATED, SCALED>({t.x - x[i], t.y - y[i], t.z - z[i]}, m, a);
    out[i] = v.x * v.x + v.y * v.y + v.z * v.z;
  }
}

}  // namespace

namespace NgmCovaKernels {

void reduce(const double h[3], const Reduction &reduction, double result[3])
{
  Vector v = {h[0], h[1], h[2]};
  if (reduction.rotation)
    v = reduced<true, false>(v, reduction.rotation, nullptr);
  if (reduction.anisotropy)
    v = reduced<false, true>(v, nullptr, reduction.anisotropy);
  result[0] = v.x;
  result[1] = v.y;
  result[2] = v.z;
}

void squaredDistances(const double target[3], int n, const Points &samples,
                      const Reduction &reduction, double *out)
{
  const auto kernel = reduction.rotation
                          ? (reduction.anisotropy ? squaredDistancesOf<true, true>
                                                  : squaredDistancesOf<true, false>)
                          : (reduction.anisotropy ? squaredDistancesOf<false, true>
                                                  : squaredDistancesOf<false, false>);
  kernel(target, n, samples.x, samples.y, samples.z, reduction, out);
}

}  // namespace NgmCovaKernels
