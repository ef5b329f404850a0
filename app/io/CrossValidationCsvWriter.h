#pragma once

#include <QByteArray>

namespace orvenal {

struct CrossValidation;
struct Samples;

/// A cross-validation as a CSV table, one line per sample:
/// x,y,value,estimate,deviation,error,standardizedError (x,y,z,... in three dimensions). What is
/// undefined is an empty field.
QByteArray crossValidationCsv(const CrossValidation &validation, const Samples &samples);

}  // namespace orvenal
