#pragma once

#include <QString>

/// Programming errors in the assertion form: "'%1' in file '%2' failed:\n\n%3" with the signature
/// of the failing function, its source path and the condition.
namespace NbeAssertion {

/// The path shown for a source file: relative to the source root of its library, without extension,
/// with single backslashes ("data\NgdADataSet"); ".\" stands in front of a file at the root.
QString sourcePath(const char *file);

/// The text of the assertion form.
QString text(const char *function, const QString &path, const QString &condition);

/// Throws the NbeProgrammingError in the assertion form, the path being sourcePath(file).
[[noreturn]] void fail(const char *function, const char *file, const QString &condition);

/// The same with an explicit path, for classes whose messages name another file.
[[noreturn]] void failAt(const char *function, const QString &path, const QString &condition);

}  // namespace NbeAssertion

/// Throws the assertion form for the calling function and file.
#define NBE_FAIL(condition) NbeAssertion::fail(Q_FUNC_INFO, __FILE__, (condition))

/// The same with the source path that the message shall name.
#define NBE_FAIL_AT(path, condition) NbeAssertion::failAt(Q_FUNC_INFO, (path), (condition))
