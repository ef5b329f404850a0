#include "geos/vmodel/NgmVStructSpline.h"

#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

namespace {

/// Constants of the form for the dimension of space, with the field size D' in units of the scale.
SplineGc formOf(const NgmModelContext &context, double scale)
{
  const double field = context.getFieldSize() / scale;
  const double squared = field * field;
  switch (context.getNDimensions()) {
    case 1:
      return {0.5 * squared, 1.5 - M_LN2, field};
    case 2:
      return {squared, 1., field};
    default:
      return {1.5 * squared, 11. / 6. - M_LN2, field};
  }
}

}  // namespace

NgmVStructSpline::NgmVStructSpline() : NgmAVStruct(NgmEVStruct::SPLINE_GC) {}

double NgmVStructSpline::calcCova(const NbgVector3D &reducedH) const
{
  return formOf(_context, _scale)(_getReducedDistance(reducedH));
}

void NgmVStructSpline::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(formOf(_context, _scale), _scale, n, dist, out);
}
