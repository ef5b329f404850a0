#pragma once

#include "geos/NgmEnumGlobal.h"

#include <vector>

class NgaVarioSum;
class NgmMultivariateStatistics;
class NgmVariogramExp;
class NgmVariogramExpData;

/// The statistics of experimental variograms and covariances, written once for all calculators.
/// Sums are normalized. Lags without weight give 0.
namespace NgcVariogramCurves {

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

Globals globalsOf(const NgmMultivariateStatistics &statistics, int i, int j, int nSamples);

/// One value per lag of `sum`, the sums of variables (i, j); `simple1` and `simple2` are those of
/// (i, i) and (j, j).
std::vector<double> varioValues(NgmEVarioExp::EValue curve, const NgaVarioSum &sum,
                                const NgaVarioSum &simple1, const NgaVarioSum &simple2,
                                const Globals &globals);

/// One value per entry of `sum`, which holds 2N + 1 of them: the origin is N.
std::vector<double> covaValues(NgmECovaExp::EValue curve, const NgaVarioSum &sum,
                               const Globals &globals);

/// Writes distances, numbers of pairs and all curves of one direction and pair of variables.
void fillVario(NgmVariogramExpData &data, const NgmVariogramExp &request, int dir, int i, int j,
               const NgaVarioSum &sum, const NgaVarioSum &simple1, const NgaVarioSum &simple2,
               const Globals &globals);
void fillCova(NgmVariogramExpData &data, const NgmVariogramExp &request, int dir, int i, int j,
              const NgaVarioSum &sum, const Globals &globals);

}  // namespace NgcVariogramCurves
