#include "vmodel/private/NgmBesselKernels.h"

#include <boost/math/special_functions/bessel.hpp>

namespace {

using namespace boost::math::policies;

/// No exceptions, and no detour through long double: it takes five times as long.
using Policy =
    policy<domain_error<ignore_error>, pole_error<ignore_error>, overflow_error<ignore_error>,
           underflow_error<ignore_error>, denorm_error<ignore_error>,
           evaluation_error<ignore_error>, promote_double<false>>;

}  // namespace

namespace NgmBesselKernels {

double besselJ(double order, double x)
{
  return order > LARGEST_ORDER ? 0. : boost::math::cyl_bessel_j(order, x, Policy());
}

double besselK(double order, double x)
{
  return boost::math::cyl_bessel_k(order, x, Policy());
}

}  // namespace NgmBesselKernels
