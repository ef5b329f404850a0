#pragma once

#include <cmath>
#include <cstdint>

/// Numbers for tests from a counter: the i-th number of a stream depends on stream and i only, so
/// the first n of a longer sequence are the shorter one (SplitMix64, Steele et al. 2014).
namespace testsupport {

inline std::uint64_t mix(std::uint64_t state)
{
  state ^= state >> 30;
  state *= 0xBF58476D1CE4E5B9u;
  state ^= state >> 27;
  state *= 0x94D049BB133111EBu;
  state ^= state >> 31;
  return state;
}

/// Uniform in [0, 1).
inline double uniform(std::uint64_t stream, std::uint64_t i)
{
  return double(mix(stream + (i + 1) * 0x9E3779B97F4A7C15u) >> 11) * 0x1p-53;
}

inline double uniform(std::uint64_t stream, std::uint64_t i, double low, double high)
{
  return low + (high - low) * uniform(stream, i);
}

/// Uniform in 0 .. n - 1.
inline int uniformInt(std::uint64_t stream, std::uint64_t i, int n)
{
  return int(uniform(stream, i) * n);
}

/// Standard normal.
inline double normal(std::uint64_t stream, std::uint64_t i)
{
  const double u = uniform(stream, 2 * i);
  const double v = uniform(stream, 2 * i + 1);
  return std::sqrt(-2. * std::log(1. - u)) * std::cos(6.283185307179586 * v);
}

}  // namespace testsupport
