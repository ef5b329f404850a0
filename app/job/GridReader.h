#pragma once

class QDir;

namespace orvenal {

class JobObject;
struct Job;

/// The grid of a job, with the tables of its mask and of its values. The data are read before.
void readGrid(const JobObject &root, const QDir &folder, Job &job);

}  // namespace orvenal
