#pragma once

/// Vector registers of doubles for kernels whose loops the compiler does not vectorise by itself:
/// types that it knows on every processor, without a word about instructions.
namespace NgmLanes {

constexpr int LANES = 4;

/// Lanes, and what comparing them gives: all bits of a lane, or none. To be passed by reference.
typedef double Lanes __attribute__((vector_size(LANES * sizeof(double))));
typedef long long Bits __attribute__((vector_size(LANES * sizeof(long long))));

/// Lanes among other numbers in memory, at any place.
struct __attribute__((packed, may_alias)) Stored
{
  Lanes lanes;
};

inline const Stored &at(const double *p)
{
  return *reinterpret_cast<const Stored *>(p);
}

inline Stored &at(double *p)
{
  return *reinterpret_cast<Stored *>(p);
}

/// n rounded up to whole registers.
constexpr int padded(int n)
{
  return (n + LANES - 1) / LANES * LANES;
}

}  // namespace NgmLanes
