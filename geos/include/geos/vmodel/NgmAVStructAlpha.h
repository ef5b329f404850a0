#pragma once

#include "basic/interval/NbiIntervalData.h"
#include "geos/vmodel/NgmAVStruct.h"

/// Base of the structures whose shape is given by one exponent alpha (default 1), of which the
/// practical factor is a function. Changing alpha keeps the scale, so it changes the practical
/// ranges.
class NgmAVStructAlpha : public NgmAVStruct
{
public:
  int getNAuxiliaryParameters() const override { return 1; }
  double getAuxiliaryValue(int index) const override;
  QString getAuxiliaryName(int index) const override;
  NbiIntervalData getAuxiliaryBounds(int index) const override;

protected:
  NgmAVStructAlpha(const NgmEVStruct &type, const NbiIntervalData &bounds);
  NgmAVStructAlpha(const NgmAVStructAlpha &) = default;

  /// The practical factor for the current alpha.
  virtual double _calcPracticalFactor() const = 0;

  /// Takes alpha and recomputes the practical factor; false, and nothing changed, outside bounds.
  bool _setValue(double value);

  double _value = 1.;
  NbiIntervalData _bounds;
};
