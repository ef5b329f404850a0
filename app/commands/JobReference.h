#pragma once

#include <QString>

namespace orvenal {

/// The keys of a job as Markdown: a heading and a table for each part.
QString jobKeysMarkdown();

/// The keys for a terminal: those of the part, or of the one key, that a path names
/// ("kriging", "model.structures", "grid.mask.file"); all of them for an empty path. A path that
/// names none is a UsageError.
QString jobKeysText(const QString &path);

}  // namespace orvenal
