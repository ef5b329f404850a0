#pragma once

class QString;

/// Help for debugging programs with many threads.
namespace NbcThread {

/// Gives the current thread the name of a class, as debuggers and process lists show it (cut to
/// what the system keeps: 15 characters on Linux).
void setThreadNameFromClassName(const QString &className);

}  // namespace NbcThread
