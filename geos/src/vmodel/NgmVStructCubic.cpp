#include "geos/vmodel/NgmVStructCubic.h"

#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

NgmVStructCubic::NgmVStructCubic() : NgmAVStruct(NgmEVStruct::CUBIC)
{
  _practicalFactor = 1.;
}

double NgmVStructCubic::calcCova(const NbgVector3D &reducedH) const
{
  return Cubic{}(_getReducedDistance(reducedH));
}

void NgmVStructCubic::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(Cubic{}, _scale, n, dist, out);
}

void NgmVStructCubic::calcCovas(const Separations &separations, double sill, bool add,
                                double *covas, qint64 stride) const
{
  NgmVStructKernels::calcCovas(Cubic{}, _scale, separations, sill, add, covas, stride);
}

double NgmVStructCubic::calcFirstDerivative(const NbgVector3D &reducedH) const
{
  const double u = _getReducedDistance(reducedH);
  const double u2 = u * u;
  return u2 <= 1. ? -14. - u * (u2 * (17.5 - 5.25 * u2) - 26.25) : 0.;
}

double NgmVStructCubic::calcSecondDerivative(const NbgVector3D &reducedH) const
{
  const double u = _getReducedDistance(reducedH);
  const double u2 = u * u;
  return u2 <= 1. ? -14. + u * (52.5 - u2 * (70. - 31.5 * u2)) : 0.;
}
