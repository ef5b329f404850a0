#pragma once

#include <QString>

namespace orvenal {

/// Why nothing can be read under a name: there is no such file, it is a folder, or a pipe, which
/// could be read once only. Empty when nothing speaks against it. `shownName` stands for the file.
QString inputFileProblem(const QString &path, const QString &shownName);

/// Throws it as a UsageError.
void requireInput(const QString &path);

}  // namespace orvenal
