#pragma once

#include <QString>

namespace orvenal {

struct Job;
struct Samples;

/// What the places of samples and grid say of a job that was hardly meant so. Texts are empty when
/// there is nothing to say.
namespace DataChecks {

/// The boxes of both, when grid and samples do not meet.
QString gridMissesSamples(const Job &job, const Samples &samples);

/// Coordinates that are degrees by their reference system or unit; or, when the job has neither,
/// that seem to be: columns named longitude and latitude whose values can be degrees, or values
/// that lie together far from the origin and within the range of degrees, as those of a region on
/// earth do and those of a local grid do not.
QString seemsToBeDegrees(const Job &job, const Samples &samples);

}  // namespace DataChecks

}  // namespace orvenal
