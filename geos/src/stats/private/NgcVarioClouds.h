#pragma once

#include "geos/stats/NgmVariogramCloud.h"

#include <vector>

class NgmMultivariateStatistics;
class NgmPairsSelectorDirection;
class NgmVariogramCloudParameters;
class NgmVariogramExpData;
struct NgcVarioTask;

/// The clouds of experimental variograms, for all calculators.
namespace NgcVarioClouds {

/// The clouds of all sums of the directions, without pairs; `statistics` has one element per set.
std::vector<NgmVariogramCloud> newClouds(
    const NgcVarioTask &task, const std::vector<const NgmPairsSelectorDirection *> &directions,
    const std::vector<const NgmMultivariateStatistics *> &statistics,
    const NgmVariogramCloudParameters &parameters);

/// The means of the variables of all sets; 0 where they are undefined.
std::vector<double> meansOf(const std::vector<const NgmMultivariateStatistics *> &statistics);

/// Writes the pairs that were kept, lag by lag, and the image.
void fill(NgmVariogramExpData &data, int dir, bool isCova, int i, int j, NgmVariogramCloud cloud);

}  // namespace NgcVarioClouds
