#include "basic/provider/NbpIProviderW.h"

NbpIProviderW::~NbpIProviderW() = default;
