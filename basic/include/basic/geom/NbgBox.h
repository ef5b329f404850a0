#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/geom/NbgVector3D.h"

/// A box along the world's axes, border included. Invalid (it holds nothing) until it is extended.
class NbgBox : public NbbASerializable
{
public:
  NbgBox() = default;
  /// The smallest box that holds both points; invalid when one is undefined.
  NbgBox(const NbgVector3D &a, const NbgVector3D &b);

  bool isValid() const { return _valid; }

  /// Lower and upper corner; both undefined when the box is invalid.
  const NbgVector3D &getLowerLeftCorner() const { return _lower; }
  const NbgVector3D &getUpperRightCorner() const { return _upper; }

  /// Corner 0 to 7: bit 0 of the rank chooses upper X, bit 1 upper Y, bit 2 upper Z. Undefined when
  /// the box is invalid; another rank is a programming error.
  NbgVector3D getCorner(int rank) const;

  /// Undefined when the box is invalid.
  NbgVector3D getCenter() const;

  /// Full extents and their norm; 0 when the box is invalid.
  NbgVector3D getSize() const;
  double getDiagonalLength() const { return getSize().norm(); }

  /// An undefined point and an invalid box change nothing.
  void extendWith(const NbgVector3D &point);
  void extendWith(const NbgBox &box);

  /// Moves each side outward by `margin`; an invalid box stays invalid, and a negative margin that
  /// leaves nothing makes it invalid.
  void enlarge(double margin) { enlarge(NbgVector3D(margin, margin, margin)); }
  void enlarge(const NbgVector3D &margin);

  /// The boxes share at least a point of their borders.
  bool intersects(const NbgBox &box) const;

  bool isInside(const NbgVector3D &point) const
  {
    return _valid && point.x() >= _lower.x() && point.x() <= _upper.x() &&
           point.y() >= _lower.y() && point.y() <= _upper.y() && point.z() >= _lower.z() &&
           point.z() <= _upper.z();
  }

  QString toString() const;

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override;

private:
  bool _valid = false;
  NbgVector3D _lower = NbgVector3D::Undefined;
  NbgVector3D _upper = NbgVector3D::Undefined;
};

bool operator==(const NbgBox &a, const NbgBox &b);
inline bool operator!=(const NbgBox &a, const NbgBox &b)
{
  return !(a == b);
}
