#include "geos/vmodel/NgmVStructOrder5GC.h"

#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

namespace {

/// Constants of the form for the dimension of space, with the field size D' in units of the scale.
Order5Gc formOf(const NgmModelContext &context, double scale)
{
  const double field = context.getFieldSize() / scale;
  const double squared = field * field;
  const double cubed = squared * field;
  switch (context.getNDimensions()) {
    case 1:
      return {5. * field, 20., 16. * squared, cubed};
    case 2:
      return {225. * M_PI / 128. * field, 75. * M_PI / 8., 15. * M_PI * squared, cubed};
    default:
      return {6. * field, 40., 96. * squared, cubed};
  }
}

}  // namespace

NgmVStructOrder5GC::NgmVStructOrder5GC() : NgmAVStruct(NgmEVStruct::FIFTH_ORDER_GC) {}

double NgmVStructOrder5GC::calcCova(const NbgVector3D &reducedH) const
{
  return formOf(_context, _scale)(_getReducedDistance(reducedH));
}

void NgmVStructOrder5GC::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(formOf(_context, _scale), _scale, n, dist, out);
}

void NgmVStructOrder5GC::calcCovas(const Separations &separations, double sill, bool add,
                                   double *covas, qint64 stride) const
{
  NgmVStructKernels::calcCovas(formOf(_context, _scale), _scale, separations, sill, add, covas,
                               stride);
}
