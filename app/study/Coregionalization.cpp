#include "app/study/Coregionalization.h"

#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmVModel.h"

#include <QVector>

#include <cmath>

namespace orvenal {

namespace {

/// False when a variable has a sill below 0, or no sill but cross sills.
bool findVariables(const NgmMatrix &sills, QVector<int> &variables)
{
  for (int i = 0; i < sills.getNRows(); ++i) {
    bool hasCross = false;
    for (int j = 0; j < sills.getNColumns(); ++j)
      hasCross = hasCross || (j != i && sills(i, j) != 0.);
    if (sills(i, i) < 0. || (sills(i, i) == 0. && hasCross))
      return false;
    if (sills(i, i) > 0.)
      variables << i;
  }
  return true;
}

/// Replaces the nugget and all matrices of sills by what becomes of them.
template <class Change>
void changeSills(NgmVModel &model, Change change)
{
  NgmMatrix nugget = model.getNuggetMatrix();
  change(nugget);
  model.setNuggetMatrix(nugget);
  for (int index = 0; index < model.getNStructures(); ++index) {
    NgmMatrix sills = model.getCoregionalisationMatrix(index);
    change(sills);
    model.setCoregionalisationMatrix(index, sills);
  }
}

}  // namespace

double Coregionalization::smallestEigenvalue(const NgmMatrix &sills)
{
  QVector<int> variables;
  if (!findVariables(sills, variables))
    return -1.;
  const int n = variables.size();
  if (n == 0)
    return 0.;
  NgmMatrix correlations(n, n, true);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j <= i; ++j) {
      const int a = variables[i];
      const int b = variables[j];
      correlations.setElement(i, j, sills(a, b) / std::sqrt(sills(a, a)) / std::sqrt(sills(b, b)));
    }
  }
  NgmMatrix values(false);
  NgmMatrix vectors(false);
  correlations.eigenValues(values, vectors, true, false, 1);
  return values(0, 0);
}

void Coregionalization::shrink(NgmMatrix &sills, double fraction)
{
  for (int i = 0; i < sills.getNRows(); ++i) {
    for (int j = 0; j < i; ++j)
      sills.setElement(i, j, sills(i, j) * (1. - fraction));
  }
}

QVector<double> Coregionalization::exactUnits(const NgmVModel &model)
{
  QVector<double> units;
  for (int i = 0; i < model.getNVariables(); ++i) {
    double total = model.getNuggetMatrix()(i, i);
    for (int index = 0; index < model.getNStructures(); ++index)
      total += model.getCoregionalisationMatrix(index)(i, i);
    units << (total > 0. ? std::ldexp(1., std::ilogb(std::sqrt(total))) : 1.);
  }
  return units;
}

void Coregionalization::rescale(NgmVModel &model, const QVector<double> &factors)
{
  changeSills(model, [&](NgmMatrix &sills) {
    for (int i = 0; i < sills.getNRows(); ++i) {
      for (int j = 0; j <= i; ++j)
        sills.setElement(i, j, sills(i, j) * factors[i] * factors[j]);
    }
  });
}

void Coregionalization::stabilize(NgmVModel &model)
{
  constexpr double smallest = 1e-11;
  changeSills(model, [](NgmMatrix &sills) {
    if (smallestEigenvalue(sills) < smallest)
      shrink(sills, 10. * smallest);
  });
}

}  // namespace orvenal
