#pragma once

#include <QString>

namespace orvenal {

struct CrossValidation;
struct Job;
struct Samples;

/// Writes a cross-validation as a table of points, one record per sample:
/// x,y,value,estimate,deviation,error,standardizedError (x,y,z,... in three dimensions). The format
/// is that of the ending of `shownName`, which stands for the file in messages; see TableWriter.
void writeCrossValidation(const QString &path, const QString &shownName,
                          const CrossValidation &validation, const Samples &samples,
                          const Job &job);

}  // namespace orvenal
