#include "geos/vmodel/NgmAVStructAlpha.h"

NgmAVStructAlpha::NgmAVStructAlpha(const NgmEVStruct &type, const NbiIntervalData &bounds)
    : NgmAVStruct(type), _bounds(bounds)
{
}

double NgmAVStructAlpha::getAuxiliaryValue(int /*index*/) const
{
  return _value;
}

QString NgmAVStructAlpha::getAuxiliaryName(int /*index*/) const
{
  return QString(QChar(0x03B1));
}

NbiIntervalData NgmAVStructAlpha::getAuxiliaryBounds(int /*index*/) const
{
  return _bounds;
}

bool NgmAVStructAlpha::_setValue(double value)
{
  if (!_bounds.isIncluded(value))
    return false;
  _value = value;
  _practicalFactor = _calcPracticalFactor();
  return true;
}
