#include "basic/unit/NbuUnitTransfo.h"

#include "basic/base/NbbGlobal.h"

#include <QDataStream>

#include <cmath>

namespace {
constexpr unsigned int CURRENT_VERSION = 250301;
}

double NbuUnitTransfo::transform(double value) const
{
  return NbbGlobal::isDefined(value) ? _scale * value + _offset : value;
}

double NbuUnitTransfo::invTransform(double value) const
{
  return NbbGlobal::isDefined(value) ? (value - _offset) / _scale : value;
}

bool NbuUnitTransfo::isValid() const
{
  return NbbGlobal::isDefined(_scale) && NbbGlobal::isDefined(_offset) && _scale != 0.;
}

NbuUnitTransfo NbuUnitTransfo::inverse() const
{
  return NbuUnitTransfo(1. / _scale, -_offset / _scale);
}

NbuUnitTransfo NbuUnitTransfo::operator*(const NbuUnitTransfo &first) const
{
  return NbuUnitTransfo(_scale * first._scale, _scale * first._offset + _offset);
}

bool NbuUnitTransfo::operator==(const NbuUnitTransfo &other) const
{
  return _scale == other._scale && _offset == other._offset;
}

QList<unsigned int> NbuUnitTransfo::_serializedVersions() const
{
  return {CURRENT_VERSION};
}

unsigned int NbuUnitTransfo::_currentSerializedVersion() const
{
  return CURRENT_VERSION;
}

void NbuUnitTransfo::_serialize(QDataStream &stream) const
{
  stream << _scale << _offset;
}

void NbuUnitTransfo::_unserialize(QDataStream &stream, unsigned int)
{
  double scale = 0., offset = 0.;
  stream >> scale >> offset;
  _checkStream(stream);
  *this = NbuUnitTransfo(scale, offset);
}
