#include "app/study/FitWarnings.h"

#include "app/base/NumberText.h"
#include "app/study/Job.h"
#include "app/study/Variography.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmAVStruct.h"

#include <QObject>

#include <algorithm>
#include <limits>

namespace orvenal {

namespace {

/// Lags with pairs, of all directions and variables.
int countLags(const Variography &variography)
{
  int count = 0;
  for (const VariogramSet &set : variography.sets) {
    for (const VariogramCurve &curve : set.curves)
      count += curve.distances.size();
  }
  return count;
}

/// Sills of each variogram, and ranges, which the variograms share.
int countParameters(const Job &job, const Variography &variography)
{
  const int nDirections = variography.sets.first().curves.size();
  const int nRanges = job.fit->anisotropy ? std::min(nDirections, job.getNDimensions()) : 1;
  const int nStructures = job.fit->structures.size();
  const int nSills = nStructures + (job.fit->nugget ? 1 : 0);
  return variography.sets.size() * nSills + nStructures * nRanges;
}

/// Distances of the first and of the last lag.
struct Reach
{
  double first = std::numeric_limits<double>::infinity();
  double last = 0.;
};

Reach reachOf(const Variography &variography)
{
  Reach reach;
  for (const VariogramSet &set : variography.sets) {
    for (const VariogramCurve &curve : set.curves) {
      if (curve.distances.isEmpty())
        continue;
      reach.first = std::min(reach.first, curve.distances.first());
      reach.last = std::max(reach.last, curve.distances.last());
    }
  }
  return reach;
}

double longestRange(const NgmVModel &model, int index, int nDimensions)
{
  const NbgVector3D ranges = model.getStructure(index).getPracticalRanges();
  double longest = 0.;
  for (int axis = 0; axis < nDimensions; ++axis)
    longest = std::max(longest, ranges[axis]);
  return longest;
}

/// The greatest part that a structure has in the sill of a variable.
double shareOf(const NgmVModel &model, int index)
{
  const NgmMatrix &sills = model.getCoregionalisationMatrix(index);
  double share = 0.;
  for (int i = 0; i < model.getNVariables(); ++i) {
    const double total = model.getC0IJ(i, i);
    share = std::max(share, total > 0. ? sills(i, i) / total : 0.);
  }
  return share;
}

/// Empty when there is nothing to say.
QString warningOf(const NgmVModel &model, int index, const Job &job, const Reach &reach)
{
  constexpr double leastShare = 1e-3;
  const QString label = model.getStructureLabel(index);
  const double range = longestRange(model, index, job.getNDimensions());
  const auto length = [&](double value) { return lengthText(value, job.lengthUnit); };
  if (shareOf(model, index) < leastShare)
    return QObject::tr(
               "the fitted \"%1\" has less than a thousandth of the sill and changes "
               "nothing; leave it out of the structures")
        .arg(label);
  if (range > reach.last)
    return QObject::tr(
               "the fitted range of \"%1\", %2, is beyond the last lag, %3: the variogram "
               "does not show where it levels off. Try more lags; if it keeps rising, the "
               "variable has a drift")
        .arg(label, length(range), length(reach.last));
  if (range < reach.first)
    return QObject::tr(
               "the fitted range of \"%1\", %2, is below the first lag, %3: for all that "
               "the variogram shows it is a nugget effect")
        .arg(label, length(range), length(reach.first));
  return QString();
}

}  // namespace

QStringList fitWarnings(const Job &job, const Variography &variography, const ModelFit &fit)
{
  QStringList warnings;
  if (!fit.hasConverged)
    warnings << QObject::tr("the fit of the model stopped before it converged");
  const int nLags = countLags(variography);
  const int nParameters = countParameters(job, variography);
  if (nLags < nParameters) {
    warnings << QObject::tr(
                    "the fit has more parameters (%1 sills and ranges) than the variograms "
                    "have lags with pairs (%2): other models fit as well. Ask for more "
                    "lags or fewer structures")
                    .arg(nParameters)
                    .arg(nLags);
    return warnings;
  }
  if (fit.model.getNStructures() == 0)
    warnings << QObject::tr(
        "the fit found a nugget effect and no structure: as far as the variograms tell, near "
        "samples are no more alike than distant ones");
  const Reach reach = reachOf(variography);
  for (int index = 0; index < fit.model.getNStructures(); ++index) {
    const QString warning = warningOf(fit.model, index, job, reach);
    if (!warning.isEmpty())
      warnings << warning;
  }
  return warnings;
}

}  // namespace orvenal
