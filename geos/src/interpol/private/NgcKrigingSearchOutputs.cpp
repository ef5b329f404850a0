#include "interpol/private/NgcKrigingSearchOutputs.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdVariableDouble.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/data/NgdNeighborhoodContext.h"
#include "interpol/private/NgcKrigingOutputs.h"

#include <cmath>
#include <set>

namespace {

using Outputs = NgcKrigingOutputs;

int countNeighbors(const NgdNeighborhoodContext &context)
{
  return context.getNNeighbors() - (context.getCollocatedRank() >= 0 ? 1 : 0);
}

/// Different codes of the samples of a unique neighborhood that have a value.
int countCodes(const NgdNeighborhoodContext &context, int variable)
{
  const NbdAVariableNumeric *codes = context.getNumericVariable(Nbd::Role::CODE);
  const double *values = context.getMainValues(variable);
  if (!codes || !values)
    return 0;
  std::set<double> found;
  for (int s = 0; s < context.getNNeighbors(); ++s) {
    if (NbbGlobal::isDefined(values[s]) && !codes->isUndefined(s))
      found.insert(codes->getValue(s));
  }
  return int(found.size());
}

void writeAll(double value, const Outputs::Columns &columns, int position)
{
  for (double *column : columns) {
    if (column)
      column[position] = value;
  }
}

}  // namespace

double NgcKrigingSearchOutputs::calcMeanDistance(const NgdNeighborhoodContext &context,
                                                 bool isMoving)
{
  const int n = countNeighbors(context);
  if (n == 0)
    return NbbGlobal::D_FFFF;
  double sum = 0.;
  if (isMoving) {
    for (int s = 0; s < n; ++s)
      sum += std::sqrt(context.getSquaredDistances()[std::size_t(s)]);
    return sum / n;
  }
  const NbgVector3D &target = context.getTarget().getCenter();
  const double *x = context.getX().getArrayConst();
  const double *y = context.getY().getArrayConst();
  const double *z = context.getZ().getArrayConst();
  for (int s = 0; s < n; ++s)
    sum += std::sqrt((x[s] - target.x()) * (x[s] - target.x()) +
                     (y[s] - target.y()) * (y[s] - target.y()) +
                     (z[s] - target.z()) * (z[s] - target.z()));
  return sum / n;
}

void NgcKrigingSearchOutputs::write(const NgdNeighborhoodContext &context, bool isMoving, int level,
                                    const Outputs &outputs, int position)
{
  const int standard = NgmENeighborhoodNestedCode::STANDARD.getValue();
  if (outputs.has(Outputs::NEIGH_SEARCH_INDEX))
    writeAll(isMoving ? context.getNestedNeighIndex(level) : standard,
             outputs.get(Outputs::NEIGH_SEARCH_INDEX), position);
  if (outputs.has(Outputs::NEIGH_NUMBER))
    writeAll(countNeighbors(context), outputs.get(Outputs::NEIGH_NUMBER), position);
  if (outputs.has(Outputs::NEIGH_MEAN_DIST))
    writeAll(calcMeanDistance(context, isMoving), outputs.get(Outputs::NEIGH_MEAN_DIST), position);
  if (!outputs.has(Outputs::NEIGH_CODE_NUMBER))
    return;
  const Outputs::Columns &columns = outputs.get(Outputs::NEIGH_CODE_NUMBER);
  for (std::size_t variable = 0; variable < columns.size(); ++variable) {
    if (columns[variable])
      columns[variable][position] = isMoving ? context.getNSelectedCodesByVar(int(variable))
                                             : countCodes(context, int(variable));
  }
}
