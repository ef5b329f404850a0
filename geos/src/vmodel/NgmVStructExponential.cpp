#include "geos/vmodel/NgmVStructExponential.h"

#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

NgmVStructExponential::NgmVStructExponential() : NgmAVStruct(NgmEVStruct::EXPONENTIAL)
{
  _practicalFactor = 2.995732;
}

double NgmVStructExponential::calcCova(const NbgVector3D &reducedH) const
{
  return Exponential{}(_getReducedDistance(reducedH));
}

void NgmVStructExponential::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(Exponential{}, _scale, n, dist, out);
}

void NgmVStructExponential::calcCovas(const Separations &separations, double sill, bool add,
                                      double *covas, qint64 stride) const
{
  NgmVStructKernels::calcCovas(Exponential{}, _scale, separations, sill, add, covas, stride);
}
