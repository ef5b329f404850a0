#pragma once

#include <QString>

namespace orvenal {

/// The program's own version, "0.1.0".
QString programVersion();

}  // namespace orvenal
