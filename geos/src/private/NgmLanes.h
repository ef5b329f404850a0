#pragma once

/// Vector registers of doubles for kernels whose loops the compiler does not vectorise by itself:
/// types that it knows on every processor, without a word about instructions.
namespace NgmLanes {

constexpr int LANES = 4;

/// Lanes and what comparing them gives: all bits of a lane, or none. In memory they need no more
/// than the alignment of their elements.
typedef double Lanes
    __attribute__((vector_size(LANES * sizeof(double)), aligned(sizeof(double)), may_alias));
typedef long long Bits
    __attribute__((vector_size(LANES * sizeof(long long)), aligned(sizeof(long long)), may_alias));

inline const Lanes &lanes(const double *p)
{
  return *reinterpret_cast<const Lanes *>(p);
}

inline Lanes &lanes(double *p)
{
  return *reinterpret_cast<Lanes *>(p);
}

/// n rounded up to whole registers.
constexpr int padded(int n)
{
  return (n + LANES - 1) / LANES * LANES;
}

}  // namespace NgmLanes
