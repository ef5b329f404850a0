#include "basic/provider/NbpIProviderObjectR.h"

NbpIProviderObjectR::~NbpIProviderObjectR() = default;
