#include "basic/provider/NbpMemoryProviderGridR.h"

NbpMemoryProviderGridR::NbpMemoryProviderGridR(const NbgGeomGrid &geometry)
    : NbpAMemoryProviderGrid<NbpAMemoryProviderR<NbpIProviderGridR>>(geometry)
{
}
