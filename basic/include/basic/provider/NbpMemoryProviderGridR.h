#pragma once

#include "basic/provider/NbpAMemoryProviderGrid.h"
#include "basic/provider/NbpAMemoryProviderR.h"
#include "basic/provider/NbpIProviderGridR.h"

/// Regular grid in memory that calculators can only read.
class NbpMemoryProviderGridR : public NbpAMemoryProviderGrid<NbpAMemoryProviderR<NbpIProviderGridR>>
{
public:
  explicit NbpMemoryProviderGridR(const NbgGeomGrid &geometry);
};
