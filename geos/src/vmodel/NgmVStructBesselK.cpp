#include "geos/vmodel/NgmVStructBesselK.h"

#include "basic/error/NbeProgrammingError.h"

NgmVStructBesselK::NgmVStructBesselK()
    : NgmAVStructMatern(NgmEVStruct::MATERN, 1.), _bounds(0.3, 3., false, false)
{
}

void NgmVStructBesselK::setAuxiliaryParameter(int /*index*/, double value)
{
  if (!_bounds.isIncluded(value))
    throw NbeProgrammingError(QStringLiteral(
        "NgmVStructBesselK::setAuxiliaryParameter: Auxiliary parameter out of bounds"));
  const double practicalScale = getPracticalScaleFactor();
  _setNu(value);
  _scale = practicalScale / _practicalFactor;
}

NbiIntervalData NgmVStructBesselK::getAuxiliaryBounds(int /*index*/) const
{
  return _bounds;
}
