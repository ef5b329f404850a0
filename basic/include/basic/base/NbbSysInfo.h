#pragma once

#include <QByteArray>
#include <QString>

/// What the machine offers to this process.
namespace NbbSysInfo {

/// Number of processors that the process may use, at least 1.
int idealThreadCount();

/// Half of the memory in bytes that the process may use: the machine's, or the limit of its control
/// group or of its address space when they are smaller.
qint64 idealMaximumMemory();

/// The smallest memory limit of the control groups (versions 1 and 2) of a process and of the
/// groups around them; -1 when there is none. `processFile` lists the groups ("/proc/self/cgroup"),
/// `mountPoint` is where they are mounted ("/sys/fs/cgroup").
qint64 getControlGroupLimit(const QString &processFile, const QString &mountPoint);

/// A size as text with units of 1024: "512 bytes", "1.5 KB", "2.0 MB", "3.2 GB".
QString getStringSize(qint64 bytes);

/// A path in the form that the C library's fopen() wants.
QByteArray pathForFopen(const QString &path);

}  // namespace NbbSysInfo
