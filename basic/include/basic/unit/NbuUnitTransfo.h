#pragma once

#include "basic/base/NbbASerializable.h"

/// Affine conversion between two units: scale * v + offset. Undefined values pass unchanged.
class NbuUnitTransfo : public NbbASerializable
{
public:
  /// The identity.
  NbuUnitTransfo() = default;
  explicit NbuUnitTransfo(double scale, double offset = 0.) : _scale(scale), _offset(offset) {}

  static NbuUnitTransfo identity() { return NbuUnitTransfo(); }

  /// A conversion that isValid() refuses.
  static NbuUnitTransfo invalid() { return NbuUnitTransfo(0.); }

  double getScale() const { return _scale; }
  double getOffset() const { return _offset; }

  double transform(double value) const;
  double invTransform(double value) const;

  /// Finite, with a scale other than 0.
  bool isValid() const;
  bool isIdentity() const { return _scale == 1. && _offset == 0.; }

  NbuUnitTransfo inverse() const;

  /// Composition: (a * b).transform(v) = a.transform(b.transform(v)).
  NbuUnitTransfo operator*(const NbuUnitTransfo &first) const;

  bool operator==(const NbuUnitTransfo &other) const;
  bool operator!=(const NbuUnitTransfo &other) const { return !(*this == other); }

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override { return true; }

private:
  double _scale = 1.;
  double _offset = 0.;
};
