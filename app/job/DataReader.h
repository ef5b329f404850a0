#pragma once

#include "app/study/Job.h"

#include <QStringList>

class QDir;

namespace orvenal {

class JobObject;

/// The absolute path of an input that a member names; it is searched from `folder` and has to
/// exist.
QString findInput(const JobObject &object, const QString &name, const QDir &folder);

/// Keys of an object that names a table of points.
QStringList tableKeys();

/// The table that an object of a job names; its file is searched from `folder` and has to exist.
JobTable readTable(const JobObject &object, const QDir &folder);

/// The samples' table with its coordinate reference system, and the variables.
void readData(const JobObject &root, const QDir &folder, Job &job);
void readVariables(const JobObject &root, Job &job);

}  // namespace orvenal
