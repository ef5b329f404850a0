#pragma once

#include "geos/NgmEnumGlobal.h"

#include <vector>

class NgaVarioSum;
class NgaVarioSumList;
class NgmMultivariateStatistics;
class NgmVariogramExp;
class NgmVariogramExpData;
struct NgcVarioTask;

/// The statistics of experimental variograms and covariances, written once for all calculators.
/// Sums are normalized. Lags without weight give 0.
class NgcVariogramCurves
{
public:
  /// Global statistics of a pair of variables. Undefined values are NbbGlobal::D_FFFF.
  struct Globals
  {
    double mean1;
    double mean2;
    double deviation1;
    double deviation2;
    double rho;
    double nSamples;
  };

  static Globals globalsOf(const NgmMultivariateStatistics &statistics, int i, int j, int nSamples);

  /// One value per lag of `sum`, the sums of variables (i, j); `simple1` and `simple2` are those of
  /// (i, i) and (j, j).
  static std::vector<double> varioValues(NgmEVarioExp::EValue curve, const NgaVarioSum &sum,
                                         const NgaVarioSum &simple1, const NgaVarioSum &simple2,
                                         const Globals &globals);

  /// One value per entry of `sum`, which holds 2N + 1 of them: the origin is N.
  static std::vector<double> covaValues(NgmECovaExp::EValue curve, const NgaVarioSum &sum,
                                        const Globals &globals);

  /// Empty results of a request: its directions and groups, tables of zeros and the smallest lag.
  static NgmVariogramExpData newResults(const NgmVariogramExp &request, bool cross);

  /// Writes distances, numbers of pairs and all curves of one direction and pair of variables.
  static void fillVario(NgmVariogramExpData &data, const NgmVariogramExp &request, int dir, int i,
                        int j, const NgaVarioSum &sum, const NgaVarioSum &simple1,
                        const NgaVarioSum &simple2, const Globals &globals);
  static void fillCova(NgmVariogramExpData &data, const NgmVariogramExp &request, int dir, int i,
                       int j, const NgaVarioSum &sum, const Globals &globals);

  /// Writes all of a direction whose sums begin at `firstSum`. With `nSamples` below 0 the number
  /// of samples is that of the statistics.
  static void fillDirection(NgmVariogramExpData &data, const NgmVariogramExp &request, int dir,
                            const NgcVarioTask &task, int set, const NgaVarioSumList &sums,
                            int firstSum, const NgmMultivariateStatistics &statistics,
                            int nSamples);

private:
  using _Values = std::vector<double>;
  using _Sum = NgaVarioSum;

  static _Values _calculateVariogram(const _Sum &sum);
  static _Values _calculateMadogram(const _Sum &sum);
  static _Values _calculateRodogram(const _Sum &sum);
  static _Values _calculatePairwiseRelVario(const _Sum &sum);
  static _Values _calculateRelVario(const _Sum &sum, const Globals &globals);
  static _Values _calculateNonErgodicRelVario(const _Sum &sum);
  static _Values _calculateCrossOverSimpleVario(const _Sum &sum, const _Sum &simple1);
  static _Values _calculateCrossOverSqrtSimpleVario(const _Sum &sum, const _Sum &simple1,
                                                    const _Sum &simple2);
  static _Values _calculateVarioOverMado(const _Sum &sum);
  static _Values _calculateSqrtVarioOverMado(const _Sum &sum);

  // Without the origin.
  static _Values _calculateCovariance(const _Sum &sum, const Globals &globals);
  static _Values _calculateNonCenteredCova(const _Sum &sum);
  static _Values _calculateNonErgodicCova(const _Sum &sum);
  static _Values _calculateOddCovariance(const _Sum &sum, const Globals &globals);
  static _Values _calculateEvenCovariance(const _Sum &sum, const Globals &globals);
  static _Values _calculateTransitiveCovario(const _Sum &sum);
  static _Values _calculateCorrelogram(const _Sum &sum, const Globals &globals);
  static _Values _calculateNonErgoCorrelogram(const _Sum &sum);
};
