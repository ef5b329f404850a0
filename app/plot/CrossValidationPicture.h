#pragma once

#include "app/plot/Picture.h"

#include <QString>

#include <vector>

namespace orvenal {

struct CrossValidation;

/// Draws how good the estimates of a cross-validation are: the values against their estimates with
/// the line where both are equal, and the histogram of the standardized errors with the Gaussian
/// density of mean 0 and variance 1.
Picture drawCrossValidation(const CrossValidation &validation, const std::vector<double> &values,
                            const QString &title, const QString &valueLabel);

}  // namespace orvenal
