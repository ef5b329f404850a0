#pragma once

/// Reduction of separation vectors. Single vectors and arrays of them take the same operations in
/// the same order, so they get the same bits.
namespace NgmCovaKernels {

struct Vector
{
  double x;
  double y;
  double z;
};

/// Rotation into a local frame (nine elements column by column, columns being the local axes), then
/// product with the anisotropy coefficients.
template <bool ROTATED, bool SCALED>
class Reducer
{
public:
  /// Copies, because the compiler cannot know that results do not overlap the arrays.
  Reducer(const double *rotation, const double *anisotropy)
  {
    if constexpr (ROTATED)
      for (int k = 0; k < 9; ++k)
        _m[k] = rotation[k];
    if constexpr (SCALED)
      for (int k = 0; k < 3; ++k)
        _a[k] = anisotropy[k];
  }

  Vector reduce(Vector h) const
  {
    if constexpr (ROTATED)
      h = {_m[0] * h.x + _m[1] * h.y + _m[2] * h.z, _m[3] * h.x + _m[4] * h.y + _m[5] * h.z,
           _m[6] * h.x + _m[7] * h.y + _m[8] * h.z};
    if constexpr (SCALED)
      h = {h.x * _a[0], h.y * _a[1], h.z * _a[2]};
    return h;
  }

  double squaredNorm(Vector h) const
  {
    h = reduce(h);
    return h.x * h.x + h.y * h.y + h.z * h.z;
  }

private:
  double _m[ROTATED ? 9 : 1] = {};
  double _a[SCALED ? 3 : 1] = {};
};

/// The reduced vector of h; null pointers leave a step out.
inline Vector reduce(Vector h, const double *rotation, const double *anisotropy)
{
  if (rotation)
    h = Reducer<true, false>(rotation, nullptr).reduce(h);
  if (anisotropy)
    h = Reducer<false, true>(nullptr, anisotropy).reduce(h);
  return h;
}

}  // namespace NgmCovaKernels
