#include "stats/private/NgcVarioClouds.h"

#include "geos/stats/NgmMultivariateStatistics.h"
#include "geos/stats/NgmPairsSelectorDirection.h"
#include "geos/stats/NgmVariogramCloudParameters.h"
#include "geos/stats/NgmVariogramExpData.h"
#include "stats/private/NgcVarioSearch.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace {

using Range = std::pair<double, double>;

double orElse(double value, double other)
{
  return NbbGlobal::isDefined(value) ? value : other;
}

/// Where the values of a variable lie: its extremes, or without them six deviations around the
/// mean.
Range rangeOf(const NbcStatBasic &statistics)
{
  const double mean = orElse(statistics.getMean(), 0.);
  const double reach = 6. * orElse(statistics.getStandardDeviation(), 1.);
  return {orElse(statistics.getMinimum(), mean - reach),
          orElse(statistics.getMaximum(), mean + reach)};
}

/// Where the values of a cloud can lie.
Range valuesOf(const NgmMultivariateStatistics &statistics, bool isCova, int i, int j)
{
  const NbcStatBasic &a = statistics.getConstUnivariateStats(i);
  const NbcStatBasic &b = statistics.getConstUnivariateStats(j);
  const auto reachOf = [isCova](const NbcStatBasic &variable) {
    const Range range = rangeOf(variable);
    const double mean = orElse(variable.getMean(), 0.);
    return isCova ? std::max(std::fabs(range.second - mean), std::fabs(range.first - mean))
                  : range.second - range.first;
  };
  double largest = reachOf(a) * reachOf(b) * (isCova ? 1. : 0.5);
  largest = largest > 0. ? largest : 1.;
  return {!isCova && i == j ? 0. : -largest, largest};
}

NgmVariogramCloud newCloud(const NgmPairsSelectorDirection &direction, bool isCova,
                           const NgmMultivariateStatistics &statistics, int i, int j,
                           const NgmVariogramCloudParameters &parameters)
{
  const double reach = direction.getMaximumDistance();
  Range ranges[2] = {{isCova ? -reach : 0., reach}, valuesOf(statistics, isCova, i, j)};
  for (int axis = 0; axis < 2; ++axis) {
    if (NbbGlobal::isDefined(parameters.getMin(axis)))
      ranges[axis] = {parameters.getMin(axis), parameters.getMax(axis)};
  }
  const int n = direction.getNIntervals();
  NgmVariogramCloud cloud;
  cloud.setNMaxOutliers(parameters.getNMaxUpperOutliers(), parameters.getNMaxLowerOutliers(),
                        parameters.getNMaxOutliersCalc());
  cloud.resizeAndInit(isCova ? 2 * n + 1 : n, parameters.getNx(), parameters.getNy(),
                      ranges[0].first, ranges[0].second, ranges[1].first, ranges[1].second,
                      parameters.isDisplayImage());
  return cloud;
}

}  // namespace

std::vector<NgmVariogramCloud> NgcVarioClouds::newClouds(
    const NgcVarioTask &task, const std::vector<const NgmPairsSelectorDirection *> &directions,
    const std::vector<const NgmMultivariateStatistics *> &statistics,
    const NgmVariogramCloudParameters &parameters)
{
  std::vector<NgmVariogramCloud> clouds(directions.size() * task.getNSums());
  for (std::size_t d = 0; d < directions.size(); ++d) {
    for (int set = 0; set < task.nSets; ++set) {
      for (int i = 0; i < task.nVariables; ++i) {
        for (int j = i; j < (task.cross ? task.nVariables : i + 1); ++j) {
          for (const bool isCova : {false, true}) {
            if (isCova ? task.terms.covariance : task.terms.variogram)
              clouds[d * task.getNSums() + task.rankOf(set, isCova, i, j)] =
                  newCloud(*directions[d], isCova, *statistics[set], i, j, parameters);
          }
        }
      }
    }
  }
  return clouds;
}

std::vector<double> NgcVarioClouds::meansOf(
    const std::vector<const NgmMultivariateStatistics *> &statistics)
{
  std::vector<double> means;
  for (const NgmMultivariateStatistics *ofSet : statistics) {
    for (int i = 0; i < ofSet->getNVariables(); ++i)
      means.push_back(orElse(ofSet->getConstUnivariateStats(i).getMean(), 0.));
  }
  return means;
}

void NgcVarioClouds::fill(NgmVariogramExpData &data, int dir, bool isCova, int i, int j,
                          NgmVariogramCloud cloud)
{
  cloud.finishSorting();
  std::vector<NgmPairsVariogramCloud> pairs;
  for (int lag = 0; lag < cloud.getNLags(); ++lag) {
    std::set<std::pair<qint64, qint64>> seen;  // a pair of a small lag is at both ends
    for (const auto *ends :
         {&cloud.getOutliers(lag).getUpperOutliers(), &cloud.getOutliers(lag).getLowerOutliers()}) {
      for (const NgmPairsVariogramCloud &pair : *ends) {
        if (seen.insert({pair.getSampleNumber1(), pair.getSampleNumber2()}).second)
          pairs.push_back(pair);
      }
    }
  }
  data.setVariogramCloudVariables(dir, isCova, i, j, pairs);
  data.setCloudDensity(dir, isCova, i, j, cloud.getDensity());
}
