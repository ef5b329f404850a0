#include "basic/interval/NbiIntervalData.h"

#include <QDataStream>

#include <cmath>

namespace {

constexpr unsigned int VERSION = 210101;

QString boundText(double bound, bool isDefined, const char *absent)
{
  return isDefined ? QString::number(bound) : QString::fromLatin1(absent);
}

}  // namespace

NbiIntervalData::NbiIntervalData(double lower, double upper, bool isLowerIncluded,
                                 bool isUpperIncluded)
{
  setBounds(lower, upper, isLowerIncluded, isUpperIncluded);
}

void NbiIntervalData::setBounds(double lower, double upper, bool isLowerIncluded,
                                bool isUpperIncluded)
{
  _lower = NbbGlobal::isDefined(lower) ? lower : Infinity;
  _upper = NbbGlobal::isDefined(upper) ? upper : Infinity;
  _isLowerIncluded = isLowerIncluded;
  _isUpperIncluded = isUpperIncluded;
}

double NbiIntervalData::getCenter() const
{
  return hasLower() && hasUpper() ? 0.5 * _lower + 0.5 * _upper : NbbGlobal::D_FFFF;
}

double NbiIntervalData::getLength() const
{
  return hasLower() && hasUpper() ? _upper - _lower : NbbGlobal::D_FFFF;
}

bool NbiIntervalData::isEmpty() const
{
  if (!hasLower() || !hasUpper())
    return false;
  return _upper < _lower || (_upper == _lower && !(_isLowerIncluded && _isUpperIncluded));
}

double NbiIntervalData::fit(double value) const
{
  if (!NbbGlobal::isDefined(value))
    return NbbGlobal::D_FFFF;
  double fitted = value;
  if (_isBelow(value))
    fitted = _isLowerIncluded ? _lower : std::nextafter(_lower, NbbGlobal::D_BIG_POSITIVE);
  else if (_isAbove(value))
    fitted = _isUpperIncluded ? _upper : std::nextafter(_upper, NbbGlobal::D_BIG_NEGATIVE);
  return isIncluded(fitted) ? fitted : NbbGlobal::D_FFFF;
}

QString NbiIntervalData::toString() const
{
  const bool opensClosed = hasLower() && _isLowerIncluded;
  const bool endsClosed = hasUpper() && _isUpperIncluded;
  return QStringLiteral("%1%2, %3%4")
      .arg(QString(opensClosed ? '[' : ']'), boundText(_lower, hasLower(), "-inf"),
           boundText(_upper, hasUpper(), "+inf"), QString(endsClosed ? ']' : '['));
}

QList<unsigned int> NbiIntervalData::_serializedVersions() const
{
  return {VERSION};
}

unsigned int NbiIntervalData::_currentSerializedVersion() const
{
  return VERSION;
}

bool NbiIntervalData::_hasValidFirstVersion() const
{
  return true;
}

void NbiIntervalData::_serialize(QDataStream &stream) const
{
  stream << _lower << _upper << quint32(_isLowerIncluded) << quint32(_isUpperIncluded);
}

void NbiIntervalData::_unserialize(QDataStream &stream, unsigned int)
{
  double lower = Infinity, upper = Infinity;
  quint32 isLowerIncluded = 0, isUpperIncluded = 0;
  stream >> lower >> upper >> isLowerIncluded >> isUpperIncluded;
  _checkStream(stream);
  if (isLowerIncluded > 1 || isUpperIncluded > 1)
    _refuse(QStringLiteral("bad flag"));
  const bool areBounds = (NbbGlobal::isDefined(lower) || lower == Infinity) &&
                         (NbbGlobal::isDefined(upper) || upper == Infinity);
  if (!areBounds)
    _refuse(QStringLiteral("bad bounds"));
  setBounds(lower, upper, isLowerIncluded, isUpperIncluded);
}

bool operator==(const NbiIntervalData &a, const NbiIntervalData &b)
{
  return a.getLower() == b.getLower() && a.getUpper() == b.getUpper() &&
         a.isLowerIncluded() == b.isLowerIncluded() && a.isUpperIncluded() == b.isUpperIncluded();
}
