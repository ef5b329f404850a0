#pragma once

#include "app/study/NeighborhoodRequest.h"

#include <QStringList>

#include <optional>

namespace orvenal {

class JobObject;

/// Keys of the neighborhood of a job.
QStringList neighborhoodKeys();

/// The moving neighborhood; empty for the unique one.
std::optional<NeighborhoodRequest> readNeighborhood(const JobObject &neighborhood, int nDimensions,
                                                    int nVariables);

}  // namespace orvenal
