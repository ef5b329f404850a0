#include "geos/vmodel/NgmVStructOrder1GC.h"

#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

namespace {

/// Constants of the form for the dimension of space, with the field size D' in units of the scale.
LinearGc formOf(const NgmModelContext &context, double scale)
{
  const double field = context.getFieldSize() / scale;
  switch (context.getNDimensions()) {
    case 1:
      return {field};
    case 2:
      return {0.5 * M_PI * field};
    default:
      return {2. * field};
  }
}

}  // namespace

NgmVStructOrder1GC::NgmVStructOrder1GC() : NgmAVStruct(NgmEVStruct::LINEAR) {}

double NgmVStructOrder1GC::calcCova(const NbgVector3D &reducedH) const
{
  return formOf(_context, _scale)(_getReducedDistance(reducedH));
}

void NgmVStructOrder1GC::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(formOf(_context, _scale), _scale, n, dist, out);
}

void NgmVStructOrder1GC::calcCovas(const Separations &separations, double sill, bool add,
                                   double *covas, qint64 stride) const
{
  NgmVStructKernels::calcCovas(formOf(_context, _scale), _scale, separations, sill, add, covas,
                               stride);
}
