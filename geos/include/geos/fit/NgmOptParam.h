#pragma once

#include "basic/interval/NbiIntervalData.h"
#include "geos/fit/NgmVModelToBeOptimized.h"

#include <QString>

#include <tuple>

/// What a parameter controls: the rank of a structure (-1 for the nugget), a kind of parameter and
/// two indices (a pair of variables for a sill, an axis for a range or an angle, the index of an
/// auxiliary parameter). Ordered by these, in this order.
struct NgmOptParamId
{
  int structure = 0;
  NgmVModelToBeOptimized::ParamType type = NgmVModelToBeOptimized::SILL;
  int index1 = 0;
  int index2 = 0;
};

inline bool operator<(const NgmOptParamId &a, const NgmOptParamId &b)
{
  return std::tie(a.structure, a.type, a.index1, a.index2) <
         std::tie(b.structure, b.type, b.index1, b.index2);
}

inline bool operator==(const NgmOptParamId &a, const NgmOptParamId &b)
{
  return !(a < b) && !(b < a);
}

/// One number that an optimizer may move, within its bounds.
class NgmOptParam
{
public:
  NgmOptParam();
  NgmOptParam(const NgmOptParamId &id, double value, const NbiIntervalData &bounds,
              const QString &label);

  const NgmOptParamId &getId() const { return _id; }
  const QString &getLabel() const { return _label; }
  const NbiIntervalData &getBounds() const { return _bounds; }
  double getValue() const { return _value; }

  /// Any value; whether it is within the bounds is for the optimizable to say.
  void setValue(double value) { _value = value; }

  /// Label, value and bounds in one line.
  QString toString() const;

private:
  NgmOptParamId _id;
  double _value = 0.;
  NbiIntervalData _bounds;
  QString _label;
};
