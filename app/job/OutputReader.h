#pragma once

class QDir;

namespace orvenal {

class JobObject;
struct Job;

/// The files that a job writes; all else of the job is read before. An output that is an input, or
/// another output, is an error.
void readOutput(const JobObject &root, const QDir &jobFolder, Job &job);

}  // namespace orvenal
