#include "basic/geom/NbgBox.h"

#include "basic/error/NbeAssertion.h"

#include <QDataStream>

namespace {
constexpr unsigned int VERSION = 210101;
}

NbgBox::NbgBox(const NbgVector3D &a, const NbgVector3D &b)
{
  if (!a.isDefined() || !b.isDefined())
    return;
  extendWith(a);
  extendWith(b);
}

NbgVector3D NbgBox::getCorner(int rank) const
{
  if (rank < 0 || rank > 7)
    NBE_FAIL(QStringLiteral("Corner rank out of range"));
  return {rank & 1 ? _upper.x() : _lower.x(), rank & 2 ? _upper.y() : _lower.y(),
          rank & 4 ? _upper.z() : _lower.z()};
}

NbgVector3D NbgBox::getCenter() const
{
  return _valid ? 0.5 * _lower + 0.5 * _upper : NbgVector3D::Undefined;
}

NbgVector3D NbgBox::getSize() const
{
  return _valid ? _upper - _lower : NbgVector3D::Null;
}

void NbgBox::extendWith(const NbgVector3D &point)
{
  if (!point.isDefined())
    return;
  _lower = _valid ? _lower.minimum(point) : point;
  _upper = _valid ? _upper.maximum(point) : point;
  _valid = true;
}

void NbgBox::extendWith(const NbgBox &box)
{
  if (!box._valid)
    return;
  extendWith(box._lower);
  extendWith(box._upper);
}

void NbgBox::enlarge(const NbgVector3D &margin)
{
  if (!_valid)
    return;
  _lower -= margin;
  _upper += margin;
  if ((_upper - _lower).minimum() < 0.)
    *this = NbgBox();
}

bool NbgBox::intersects(const NbgBox &box) const
{
  if (!_valid || !box._valid)
    return false;
  const NbgVector3D lower = _lower.maximum(box._lower);
  const NbgVector3D upper = _upper.minimum(box._upper);
  return lower.x() <= upper.x() && lower.y() <= upper.y() && lower.z() <= upper.z();
}

QString NbgBox::toString() const
{
  return QStringLiteral("%1 - %2").arg(_lower.toString(), _upper.toString());
}

QList<unsigned int> NbgBox::_serializedVersions() const
{
  return {VERSION};
}

unsigned int NbgBox::_currentSerializedVersion() const
{
  return VERSION;
}

bool NbgBox::_hasValidFirstVersion() const
{
  return true;
}

void NbgBox::_serialize(QDataStream &stream) const
{
  stream << quint32(_valid) << _lower << _upper;
}

void NbgBox::_unserialize(QDataStream &stream, unsigned int)
{
  quint32 valid = 0;
  NbgVector3D lower, upper;
  stream >> valid >> lower >> upper;
  _checkStream(stream);
  if (valid > 1)
    _refuse(QStringLiteral("bad flag"));
  if (!valid) {
    *this = NbgBox();
    return;
  }

  NbgBox box(lower, upper);
  if (!box._valid || box._lower != lower || box._upper != upper)
    _refuse(QStringLiteral("bad corners"));
  *this = box;
}

bool operator==(const NbgBox &a, const NbgBox &b)
{
  return a.isValid() == b.isValid() && a.getLowerLeftCorner() == b.getLowerLeftCorner() &&
         a.getUpperRightCorner() == b.getUpperRightCorner();
}
