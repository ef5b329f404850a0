#include "geos/vmodel/NgmVStructGaussian.h"

#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

NgmVStructGaussian::NgmVStructGaussian() : NgmAVStruct(NgmEVStruct::GAUSSIAN)
{
  _practicalFactor = 1.730818;
}

double NgmVStructGaussian::calcCova(const NbgVector3D &reducedH) const
{
  return Gaussian{}(_getReducedDistance(reducedH));
}

void NgmVStructGaussian::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(Gaussian{}, _scale, n, dist, out);
}

void NgmVStructGaussian::calcCovas(const Separations &separations, double sill, bool add,
                                   double *covas, qint64 stride) const
{
  NgmVStructKernels::calcCovas(Gaussian{}, _scale, separations, sill, add, covas, stride);
}

double NgmVStructGaussian::calcFirstDerivative(const NbgVector3D &reducedH) const
{
  const double u = _getReducedDistance(reducedH);
  return -2. * expOfNegative(-(u * u));
}

double NgmVStructGaussian::calcSecondDerivative(const NbgVector3D &reducedH) const
{
  const double u2 = std::pow(_getReducedDistance(reducedH), 2);
  return (4. * u2 - 2.) * expOfNegative(-u2);
}
