#include "geos/stats/NgmPairsVariogramCloud.h"

NgmPairsVariogramCloud::~NgmPairsVariogramCloud() = default;

QString NgmPairsVariogramCloud::debug(int level) const
{
  return QString(2 * level, QLatin1Char(' ')) +
         QStringLiteral("Pair (%1, %2): distance=%3 value=%4\n")
             .arg(_sampleNumber1)
             .arg(_sampleNumber2)
             .arg(_distance)
             .arg(_value);
}
