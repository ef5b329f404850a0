#include "basic/provider/NbpIProviderObjectW.h"

NbpIProviderObjectW::~NbpIProviderObjectW() = default;
