#pragma once

#include <QStringList>

namespace orvenal {

struct Job;

/// Gives a job that names no coordinate reference system that of its data file, with the unit of
/// its coordinates where the job names none. Returns warnings: the file's reference is another one
/// than the job's, or the tables that go with its grid (`withGrid`) have another one than the data.
QStringList adoptReferences(Job &job, bool withGrid);

}  // namespace orvenal
