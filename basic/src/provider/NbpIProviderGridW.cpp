#include "basic/provider/NbpIProviderGridW.h"

NbpIProviderGridW::~NbpIProviderGridW() = default;
