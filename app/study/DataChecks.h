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

/// Coordinates that their columns call longitude and latitude, and whose values may be, in a job
/// without a reference system.
QString looksLikeDegrees(const Job &job, const Samples &samples);

}  // namespace DataChecks

}  // namespace orvenal
