#pragma once

#include "app/study/KrigingRequest.h"

#include <QStringList>

namespace orvenal {

class JobObject;

/// A column of a table, with its transform.
QStringList columnKeys();
Column readColumn(const JobObject &object);

QStringList krigingKeys();

/// Names of the variants, in the order of KrigingRequest::Mode.
QStringList krigingModes();

/// What an object of a job says of kriging: `nVariables` counts the covariates, `nStructures` is
/// that of the model.
KrigingRequest readKriging(const JobObject &object, int nDimensions, int nVariables,
                           int nStructures);

}  // namespace orvenal
