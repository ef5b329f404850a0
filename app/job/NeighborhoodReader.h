#pragma once

#include <QStringList>

#include <optional>

class NgmNeighborhoodMoving;

namespace orvenal {

class JobObject;

/// Keys of the neighborhood of a job.
QStringList neighborhoodKeys();

/// The moving neighborhood; empty for the unique one.
std::optional<NgmNeighborhoodMoving> readNeighborhood(const JobObject &neighborhood,
                                                      int nDimensions);

}  // namespace orvenal
