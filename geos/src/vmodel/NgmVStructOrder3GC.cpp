#include "geos/vmodel/NgmVStructOrder3GC.h"

#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

namespace {

/// Constants of the form for the dimension of space, with the field size D' in units of the scale.
Order3Gc formOf(const NgmModelContext &context, double scale)
{
  const double field = context.getFieldSize() / scale;
  const double cubed = field * field * field;
  switch (context.getNDimensions()) {
    case 1:
      return {3. * field, 2. * cubed};
    case 2:
      return {9. * M_PI / 8. * field, 1.5 * M_PI * cubed};
    default:
      return {4. * field, 8. * cubed};
  }
}

}  // namespace

NgmVStructOrder3GC::NgmVStructOrder3GC() : NgmAVStruct(NgmEVStruct::THIRD_ORDER_GC) {}

double NgmVStructOrder3GC::calcCova(const NbgVector3D &reducedH) const
{
  return formOf(_context, _scale)(_getReducedDistance(reducedH));
}

void NgmVStructOrder3GC::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(formOf(_context, _scale), _scale, n, dist, out);
}

void NgmVStructOrder3GC::calcCovas(const Separations &separations, double sill, bool add,
                                   double *covas, qint64 stride) const
{
  NgmVStructKernels::calcCovas(formOf(_context, _scale), _scale, separations, sill, add, covas,
                               stride);
}
