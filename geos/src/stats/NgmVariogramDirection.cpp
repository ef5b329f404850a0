#include "geos/stats/NgmVariogramDirection.h"

#include "basic/base/NbbUserStringFormats.h"
#include "basic/calc/NbcAlgorithm.h"
#include "basic/unit/NbuEUnitClass.h"
#include "basic/unit/NbuUnitTransfo.h"

NgmVariogramDirection::NgmVariogramDirection(double fieldSize)
{
  const double lag = NbcAlgorithm::roundValue(
      fieldSize / 50., NbbUserStringFormats::getDisplayTransfo(NbuEUnitClass::LENGTH), 0);
  int k = 1;
  // Only a positive lag grows with k.
  while (lag > 0. && lag * k * 10. < fieldSize / 5.)
    ++k;
  _lag = lag * k;
  _distanceMax = 10. * _lag;
  _refinedLag = _lag / 5.;
}
