#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

/// The synthetic points of the benchmarks: a smooth field plus noise at uniform places of a
/// 1000 x 1000 square, from a counter-based generator (SplitMix64, Steele et al. 2014). The first n
/// of a larger set are the smaller set.
namespace bench {

inline std::uint64_t mix(std::uint64_t s)
{
  s ^= s >> 30;
  s *= 0xBF58476D1CE4E5B9u;
  s ^= s >> 27;
  s *= 0x94D049BB133111EBu;
  return s ^ (s >> 31);
}

inline double uniform(std::uint64_t stream, std::uint64_t i)
{
  return double(mix(stream + (i + 1) * 0x9E3779B97F4A7C15u) >> 11) * 0x1p-53;
}

inline double normal(std::uint64_t stream, std::uint64_t i)
{
  const double radius = std::sqrt(-2. * std::log(1. - uniform(stream, 2 * i)));
  return radius * std::cos(2. * M_PI * uniform(stream, 2 * i + 1));
}

struct Points
{
  std::vector<double> x;
  std::vector<double> y;
  std::vector<double> z;

  explicit Points(int n)
  {
    constexpr int nWaves = 200;
    double waveX[nWaves], waveY[nWaves], phase[nWaves];
    for (int k = 0; k < nWaves; ++k) {
      waveX[k] = normal(4242, 2 * k) * std::sqrt(2.) / 100.;
      waveY[k] = normal(4242, 2 * k + 1) * std::sqrt(2.) / 100.;
      phase[k] = 2. * M_PI * uniform(4243, k);
    }
    for (int i = 0; i < n; ++i) {
      x.push_back(1000. * uniform(20240601, 2 * i));
      y.push_back(1000. * uniform(20240601, 2 * i + 1));
      double field = 0.;
      for (int k = 0; k < nWaves; ++k)
        field += std::cos(waveX[k] * x[i] + waveY[k] * y[i] + phase[k]);
      z.push_back(std::sqrt(2. / nWaves) * field + std::sqrt(0.1) * normal(777, i));
    }
  }
};

}  // namespace bench
