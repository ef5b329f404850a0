#pragma once

#include <QString>
#include <QStringList>

namespace orvenal {

struct Job;
struct Samples;

/// What is done with samples at one place: of exactly equal coordinates.
enum class DuplicatePolicy { KEEP, FAIL, FIRST, AVERAGE };

/// Names of the policies in jobs, in their order.
QStringList duplicatePolicyNames();

/// Counts the samples that have a value of a variable where an earlier one has it too, and does
/// with them what the job says: nothing, an error that names the first two by their places in the
/// file, or one sample in place of all that share a place. Each variable and each auxiliary column
/// then has its first defined value, or the mean of the defined ones; numbers of lines are those of
/// the first sample. Undefined samples take part, as they may share a place with defined ones.
void treatDuplicates(const Job &job, Samples &samples);

/// Whether nugget effect or measurement errors of the job tell all samples of a place apart, so
/// that the systems of kriging can be solved with them.
bool areDuplicatesDistinct(const Job &job, const Samples &samples);

/// "3 samples lie at the place of an earlier one"
QString textDuplicates(const Samples &samples);

/// What was found and done, in a few words; "none" without duplicates.
QString describeDuplicates(const Job &job, const Samples &samples);

}  // namespace orvenal
