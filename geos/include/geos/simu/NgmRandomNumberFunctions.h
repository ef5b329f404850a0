#pragma once

#include "geos/simu/NgmRandomNumberGenerator.h"

namespace NgmRandomNumberFunctions {

/// Seed of a sub-stream: (b - 1 + seed a) mod m + 1 in unsigned 64-bit arithmetic, m being the
/// modulus of the size. Never 0; it may be m itself, which no generator accepts as a seed.
quint64 nextSeedNumber(const quint64 &seed, const qint64 &a, const qint64 &b,
                       const NgmRandomNumberGenerator::tSize &size);

}  // namespace NgmRandomNumberFunctions
