#pragma once

#include <QString>

namespace orvenal {

/// An absolute path for a message: relative to the current folder where that is shorter.
QString shownPath(const QString &path);

}  // namespace orvenal
