#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "basic/geom/NbgRotation.h"

#include <QString>

#include <cmath>

/// A calculation direction: decides from the vector h between two samples whether their pair is
/// kept, and in which lags.
///
/// The direction is the X axis of a rotation. By the pair's distance alone (omnidirectional), by an
/// angle around the axis (irregular, a cone), or by an angle in the local XY plane and an elevation
/// above it (plane); then by slicing, the limits on the distance to the axis. A pair and its
/// reverse are the same pair.
///
/// Lags:    lag k is centred on k times the lag and reaches a fraction (the tolerance) of the lag
///          to both sides. Above 0.5 lags overlap and a pair may count in two of them, below it
///          some distances belong to no lag. Short lags may replace the first long ones; classes
///          count the short ones first.
/// Limits:  a distance at the upper limit of a lag belongs to the next one (tolerance 0.5), an
///          angle or a slice at its limit is inside, the maximum distance is outside. A pair at
///          distance 0 is in class 0, whatever the angles.
///
/// Immutable during a computation: the const operations are called by several threads.
class NgmPairsSelectorDirection : public NbbIDebuggable
{
public:
  NgmPairsSelectorDirection() = default;
  NgmPairsSelectorDirection(const NgmPairsSelectorDirection &) = default;
  NgmPairsSelectorDirection &operator=(const NgmPairsSelectorDirection &) = default;
  ~NgmPairsSelectorDirection() override;

  void setOmnidirectional();
  bool isOmnidirectional() const { return _isOmmidirectional; }
  void setIrregular();
  bool isIrregular() const { return _isIrregular; }

  void setOrientation(const NbgRotation &rotation);
  const NbgRotation &getRotation() const { return _rotation; }
  NbgVector3D getDirectionVector() const { return _rotation.getAxisX(); }

  /// Half-angle of the cone, in degrees; 90 and more do not limit. The direction becomes irregular.
  void setAngularToleranceDegree(double angle);
  double getAngularToleranceDegree() const { return _tolAngleDegree; }

  /// Half-angle in the local XY plane, in degrees; 90 and more do not limit. The direction is not
  /// irregular any more, here and below.
  void setPlaneAngularToleranceDegree(double angle);
  double getPlaneAngularToleranceDegree() const { return _tolPlaneAngleDegree; }

  /// Largest elevation above the local XY plane, in degrees; 90 and more do not limit.
  void setHeightAngularToleranceDegree(double angle);
  double getHeightAngularToleranceDegree() const { return _tolHeightAngleDegree; }

  /// Limits on the absolute local Y and Z components.
  void setSlicingWidth(bool use, double width);
  bool isUsingSlicingWidth() const { return _useSlicingWidth; }
  double getSlicingWidth() const { return _slicingWidth; }
  void setSlicingHeight(bool use, double height);
  bool isUsingSlicingHeight() const { return _useSlicingHeight; }
  double getSlicingHeight() const { return _slicingHeight; }

  /// Limit on the distance to the axis. In use, it replaces width and height. The direction is not
  /// omnidirectional any more, used or not.
  void setSlicingRadius(bool use, double radius);
  bool isUsingSlicingRadius() const { return _useSlicingRadius; }
  double getSlicingRadius() const { return _slicingRadius; }

  /// 1 to 1000 lags; `tolLag` is a fraction of the lag. The first `nRefined` lags are replaced by
  /// lags of size `lagShort` over the same distances; a short lag that is not positive or not
  /// below the lag drops the refinement.
  void setLag(int nLag, double lag, double tolLag, int nRefined, double lagShort);

  double getLagLong() const { return _lagLong; }
  double getTolLag() const { return _tolLag; }
  int getNLagsLong() const { return _nLagLong; }
  double getLagShort() const { return _lagShort; }
  int getNLagsShort() const { return _nLagShort; }
  int getNLagsLongHidden() const { return _nLagLongHidden; }
  double getDistMaxLong() const { return _distMaxLong; }
  double getMaximumDistance() const { return _distMaxLong; }
  double getDistMaxShort() const { return _distMaxShort; }

  /// Number of lag classes that results hold.
  int getNIntervals() const
  {
    return _nLagShort > 0 ? _nLagLong - _nLagLongHidden + _nLagShort : _nLagLong;
  }
  double getIntervalCenter(int i) const;

  /// Carried for the calculators: pairs are filtered by code.
  void setUseCode(bool use) { _useCode = use; }
  bool isUsingCode() const { return _useCode; }

  /// The group of the direction in its NgmVariogramExp.
  void setGroupId(int id) { _groupId = id; }
  int getGroupId() const { return _groupId; }

  void setDirectionName(const QString &name) { _directionName = name; }
  /// The name that was given; without one "Omnidirectional" or the name of the rotation's axis.
  QString getDirectionName() const;

  /// The classes rankMin .. rankMax of a distance; false when there is none. With short lags
  /// rankMax may pass the last class: who adds to classes stops at getNIntervals() - 1.
  bool getDistClassRank(double d, int &rankMin, int &rankMax) const;

  /// The same for a pair of vector h and length d; false when the pair is refused. `positive` tells
  /// that h goes along the direction, not against it.
  bool getLagRank(const NbgVector3D &h, double d, int &rankMin, int &rankMax, bool &positive) const;

  /// Writes the positions of those of n vectors that getLagRank() may keep to `positions`,
  /// ascending, and returns their number. It only proposes: what it leaves out is refused, but the
  /// rest is still to be asked for.
  int proposePairs(int n, const double *hx, const double *hy, const double *hz,
                   int *positions) const;

  /// Divides all lengths by `s`, and the lag tolerance with them: for scaled coordinates.
  void normalizeDirection(double s);

  QString debug(int level) const override;

private:
  bool _isInAngles(const NbgVector3D &u, double d) const;
  bool _isInSlices(const NbgVector3D &u) const;

  NbgRotation _rotation;
  NbgRotationMatrix _inverse;
  bool _isOmmidirectional = true;
  bool _isIrregular = false;
  int _nLagLong = 10;
  double _lagLong = 1.;
  double _tolLag = 0.5;
  int _nLagShort = 0;
  double _lagShort = 0.;
  bool _useSlicingWidth = false;
  double _slicingWidth = 0.;
  bool _useSlicingHeight = false;
  double _slicingHeight = 0.;
  bool _useSlicingRadius = false;
  double _slicingRadius = 0.;
  double _squaredRadius = 0.;
  bool _useTolAngle = false;
  double _tolAngleDegree = 90.;
  bool _useTolPlaneAngle = false;
  double _tolPlaneAngleDegree = 90.;
  bool _useTolHeightAngle = false;
  double _tolHeightAngleDegree = 90.;
  bool _useCode = false;
  double _distMinLong = 0.;
  double _distMaxLong = 10.;
  double _distMaxShort = 0.;
  int _nLagLongHidden = 0;
  double _cosTolAngle = 0.;
  double _cosTolPlaneAngle = 0.;
  double _cosTolHeightAngle = 0.;
  int _groupId = 0;
  QString _directionName;
};

inline bool NgmPairsSelectorDirection::getDistClassRank(double d, int &rankMin, int &rankMax) const
{
  constexpr double nullDistance = 1e-30;
  rankMin = rankMax = 0;
  if (d >= _distMaxLong - nullDistance)
    return false;
  if (d < nullDistance)
    return true;

  const bool isShort = _nLagShort > 0 && d < _distMinLong;
  const double ratio = d / (isShort ? _lagShort : _lagLong);
  rankMin = int(std::floor(ratio - _tolLag)) + 1;
  rankMax = int(std::floor(ratio + _tolLag));
  rankMin = rankMin < 0 ? 0 : rankMin;
  if (!isShort) {
    const int offset = _nLagShort > 0 ? _nLagShort - _nLagLongHidden : 0;
    const int last = getNIntervals() - 1;
    rankMin += offset;
    rankMax += offset;
    rankMax = rankMax > last ? last : rankMax;
  }
  return rankMin <= rankMax;
}

inline bool NgmPairsSelectorDirection::_isInAngles(const NbgVector3D &u, double d) const
{
  const double x = std::fabs(u.x());
  if (_isIrregular)
    return !(_useTolAngle && x / d < _cosTolAngle);
  const double horizontal = u.x() * u.x() + u.y() * u.y();
  // A vertical pair has no angle in the plane: the quotient is not a number.
  if (_useTolPlaneAngle && !(x / std::sqrt(horizontal) >= _cosTolPlaneAngle))
    return false;
  return !(_useTolHeightAngle &&
           std::fabs(u.z()) / std::sqrt(horizontal + u.z() * u.z()) > _cosTolHeightAngle);
}

inline bool NgmPairsSelectorDirection::_isInSlices(const NbgVector3D &u) const
{
  if (_useSlicingRadius)
    return !(u.y() * u.y() + u.z() * u.z() > _squaredRadius);
  return !(_useSlicingWidth && std::fabs(u.y()) > _slicingWidth) &&
         !(_useSlicingHeight && std::fabs(u.z()) > _slicingHeight);
}

inline bool NgmPairsSelectorDirection::getLagRank(const NbgVector3D &h, double d, int &rankMin,
                                                  int &rankMax, bool &positive) const
{
  constexpr double nullDistance = 1e-30;
  positive = true;
  rankMin = rankMax = 0;
  if (d >= _distMaxLong - nullDistance)
    return false;
  if (d < nullDistance)
    return true;
  if (!_isOmmidirectional) {
    const NbgVector3D u = _inverse.rotate(h);
    if (!_isInAngles(u, d) || !_isInSlices(u))
      return false;
    positive = u.x() >= 0.;
  }
  return getDistClassRank(d, rankMin, rankMax);
}
