#pragma once

#include "app/study/Job.h"

#include <QJsonObject>
#include <QString>

namespace orvenal {

/// Reads a job file and checks all that can be checked without reading the data: syntax, keys and
/// types, that the files it names exist, that the model is admissible, that no output is an input.
/// Errors are UsageErrors that name the JSON path.
Job readJob(const QString &path);

/// The same for a text that need not be in a file: `path` is where it would be, names of files are
/// relative to its folder.
Job parseJob(const QString &path, const QByteArray &text);

/// The bytes of a job file.
QByteArray readJobText(const QString &path);

/// The object of a job's text as it stands: valid JSON, and nothing else is checked.
QJsonObject parseJobRoot(const QString &path, const QByteArray &text);

/// Bytes of a memory size such as "500 MB" or "2 GB" (units of 1024); -1 when it is none.
qint64 parseMemorySize(const QString &text);

}  // namespace orvenal
