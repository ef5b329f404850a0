#pragma once

#include <QSharedPointer>

#include <vector>

class NbpMemoryProviderPointsW;
class NgmMultivariateStatistics;

namespace orvenal {

struct Job;
struct RunContext;
struct Samples;

/// The variogram of two-dimensional samples by the vector between them, as a square image.
struct VariogramMap
{
  int nPixels = 0;             ///< along each side; the centre is the null vector
  double radius = 0.;          ///< half the side
  std::vector<double> values;  ///< east fastest, from south to north; undefined without pairs

  bool isEmpty() const { return nPixels == 0; }
};

/// The map of the variable to estimate, which reaches as far as the variograms of the job.
VariogramMap computeVariogramMap(const Job &job, const Samples &samples,
                                 const QSharedPointer<NbpMemoryProviderPointsW> &provider,
                                 const RunContext &context);

/// All pairs of samples of an omnidirectional variogram of the variable to estimate, counted in
/// cells of distance and value.
struct VariogramCloud
{
  int nDistances = 0;
  int nValues = 0;
  double maxDistance = 0.;
  double maxValue = 0.;
  std::vector<long long> counts;  ///< values fastest

  bool isEmpty() const { return counts.empty(); }
};

VariogramCloud computeVariogramCloud(const Job &job, const Samples &samples,
                                     const QSharedPointer<NbpMemoryProviderPointsW> &provider,
                                     const NgmMultivariateStatistics &statistics,
                                     const RunContext &context);

}  // namespace orvenal
