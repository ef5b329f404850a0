#include "geos/vmodel/NgmAVStructMatern.h"

#include "geos/simu/NgmDensityFunctions.h"
#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

namespace {

/// Calls `visitor` with the form that nu has.
template <class Visitor>
auto visitForm(double nu, double factor, Visitor visitor)
{
  if (nu == 0.5)
    return visitor(Exponential{});
  if (nu == 1.5)
    return visitor(Matern3Halves{});
  if (nu == 2.5)
    return visitor(Matern5Halves{});
  return visitor(Matern{nu, factor});
}

}  // namespace

NgmAVStructMatern::NgmAVStructMatern(const NgmEVStruct &type, double nu) : NgmAVStruct(type)
{
  _setNu(nu);
}

double NgmAVStructMatern::getAuxiliaryValue(int /*index*/) const
{
  return _nu;
}

QString NgmAVStructMatern::getAuxiliaryName(int /*index*/) const
{
  return QString(QChar(0x03BD));
}

double NgmAVStructMatern::calcCova(const NbgVector3D &reducedH) const
{
  const double u = _getReducedDistance(reducedH);
  return visitForm(_nu, _factor, [u](auto form) { return form(u); });
}

void NgmAVStructMatern::calcCovaFromDist(int n, const double *dist, double *out) const
{
  visitForm(_nu, _factor, [&](auto form) { covaFromDist(form, _scale, n, dist, out); });
}

void NgmAVStructMatern::calcCovas(const Separations &separations, double sill, bool add,
                                  double *covas, qint64 stride) const
{
  visitForm(_nu, _factor, [&](auto form) {
    NgmVStructKernels::calcCovas(form, _scale, separations, sill, add, covas, stride);
  });
}

void NgmAVStructMatern::_setNu(double nu)
{
  _nu = nu;
  _factor = 2. / std::exp(NgmDensityFunctions::dfLogGamma(nu));
  _practicalFactor = 3.6527 * std::pow(nu, 0.4874);
}
