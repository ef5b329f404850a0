#include "basic/provider/NbpIProviderR.h"

NbpIProviderR::~NbpIProviderR() = default;
