#include "basic/provider/NbpIProviderGridR.h"

#include "basic/interval/NbiIntervalIntLargeDisjoint.h"

NbpIProviderGridR::~NbpIProviderGridR() = default;

NbiIntervalIntLargeDisjoint NbpIProviderGridR::getDefinedRanks(
    const NbiIntervalIntLarge &ranks) const
{
  return NbiIntervalIntLargeDisjoint(ranks);
}
