#pragma once

#include <QByteArray>
#include <QString>

namespace orvenal {

/// A document of docs/ that the program carries: "job.schema.json", "job.in.md",
/// "results.md".
QByteArray readDocument(const QString &name);

}  // namespace orvenal
