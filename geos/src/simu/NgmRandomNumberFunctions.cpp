#include "geos/simu/NgmRandomNumberFunctions.h"

quint64 NgmRandomNumberFunctions::nextSeedNumber(const quint64 &seed, const qint64 &a,
                                                 const qint64 &b,
                                                 const NgmRandomNumberGenerator::tSize &size)
{
  const quint64 number = quint64(b) - 1 + seed * quint64(a);
  return number % NgmRandomNumberGenerator::getSizeModulus(size) + 1;
}
