#include "basic/provider/NbpIProviderGridR.h"

NbpIProviderGridR::~NbpIProviderGridR() = default;
