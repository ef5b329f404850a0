#pragma once

#include "basic/base/NbbIDebuggable.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/stats/NgmPairsSelectorDirection.h"
#include "geos/stats/NgmVariogramExpData.h"

#include <QList>
#include <QMap>
#include <QStringList>

#include <deque>

/// What experimental variograms and covariances to compute: the directions, in groups, and the
/// curves. It carries the empty results (directions and group names) that a calculator fills.
///
/// Directions are added one group after another. Lengths are in units of the data, angles in
/// degrees; a slicing value NbbGlobal::D_FFFF is not used. Invalid lags are programming errors and
/// leave the request as it was.
///
/// Adding a direction or a curve clears the results.
class NgmVariogramExp : public NbbIDebuggable
{
public:
  explicit NgmVariogramExp(bool is3d);
  NgmVariogramExp(const NgmVariogramExp &) = default;
  NgmVariogramExp &operator=(const NgmVariogramExp &) = default;
  ~NgmVariogramExp() override;

  bool is3d() const { return _is3d; }

  // Directions.

  void addOmnidirectional(int nLag, double lag, double tol, int nRefined, double refinedLag);

  /// nDir directions of the horizontal plane, the first at `azimuth` counter-clockwise from X. One
  /// plane of regular directions per request, here and below.
  void addRegular2D(int nDir, double azimuth, double angTol, double slicingWidth, int nLag,
                    double lag, double tol, int nRefined, double refinedLag);

  /// nDir directions of a plane, 180 / nDir degrees apart.
  void addRegularInPlane(const NbgRotation &plane, int nDir, double angTol, double heightTol,
                         double slicingWidth, double slicingHeight, int nLag, double lag,
                         double tol, int nRefined, double refinedLag);

  /// The same one direction at a time, each with its own parameters; iDir counts from 0 to nDir -
  /// 1.
  void addOneRegularInPlane(const NbgRotation &plane, int nDir, int iDir, const NbgRotation &dir,
                            int nLag, double lag, double tol, double angTol, double heightTol,
                            double slicingWidth, double slicingHeight, int nRefined,
                            double refinedLag);

  /// One cone per rotation, all in one group.
  void addIrregularDirections(const NbgRotation &plane, const QList<NbgRotation> &dirs,
                              const QStringList &names, double angTol, double slicingRadius,
                              int nLag, double lag, double tol, int nRefined, double refinedLag);

  /// One cone of the group of free directions; iDir 0 opens the group.
  void addOneFreeDirection(const NbgRotation &plane, int iDir, const NbgRotation &dir,
                           const QString &name, int nLag, double lag, double tol, double angTol,
                           double slicingRadius, int nRefined, double refinedLag);

  /// A copy of `dir` as the direction normal to a plane.
  void addDirectionNormal(const NgmPairsSelectorDirection &dir, const NbgRotation &plane);

  int getNDirections() const { return int(_directions.size()); }
  const NgmPairsSelectorDirection &getDirection(int i) const;

  /// The directions of the regular plane.
  int getNRegularDirections() const;
  bool isRegularDir(int i) const { return _regularDirections.contains(i); }

  /// Whether a pair may belong to several directions of a group; false for an unknown group.
  bool isGroupDirectionsOverlapping(int groupId) const { return _overlapping.value(groupId); }
  QString getGroupDirectionName(int groupId) const { return _groupNames.value(groupId); }

  /// The largest maximum distance of all directions; 0 without any.
  double getMaximumDistance() const;

  // Curves.

  void addVarioCalculation(NgmEVarioExp::EValue curve);
  void addCovaCalculation(NgmECovaExp::EValue curve);
  bool isVarioRegistered(NgmEVarioExp::EValue curve) const;
  bool isCovaRegistered(NgmECovaExp::EValue curve) const;

  /// Whether the curves need the sums of that name.
  bool hasVariogram() const;
  bool hasMadogram() const;
  bool hasRodogram() const;
  bool hasPairwiseVariogram() const;
  /// Whether a covariance is asked for.
  bool hasCovariance() const { return !_covaCurves.isEmpty(); }

  /// In order of value.
  QList<NgmEVarioExp> getVarioCurveTypes() const { return _varioCurves.values(); }
  QList<NgmECovaExp> getCovaCurveTypes() const { return _covaCurves.values(); }

  /// Whether the pairs themselves are wanted; not by default.
  void setComputeCloud(bool compute) { _computeCloud = compute; }
  bool getNeedCloud() const { return _computeCloud; }

  void setNVariables(int n) { _data.setNVariables(n); }
  int getNVariables() const { return _data.getNVariables(); }

  /// Rows of a result table: lags of a variogram, twice as many and the origin for a covariance.
  int getColumnSize(int dir, bool isCova) const;

  /// The empty results: directions and groups.
  const NgmVariogramExpData &getData() const { return _data; }

  QString debug(int level) const override;

private:
  int _registerDirection(const NgmPairsSelectorDirection &direction, const NbgRotation &plane,
                         const QStringList &names);
  void _openRegularPlane(const NbgRotation &plane);
  void _closeGroup(const QString &group, const QString &description);
  NgmPairsSelectorDirection _planeDirection(const NbgRotation &plane, const NbgRotation &dir,
                                            double angTol, double heightTol, double slicingWidth,
                                            double slicingHeight) const;
  void _registerRegular(const NgmPairsSelectorDirection &direction, const NbgRotation &plane);
  bool _isAnyOverlapping(int nDir) const;
  QStringList _regularDirectionNames() const;

  std::deque<NgmPairsSelectorDirection> _directions;
  int _nextGroupId = 0;
  int _planeGroupId = -1;
  int _freeGroupId = -1;
  QList<int> _regularDirections;
  QMap<int, QString> _groupNames;
  QMap<int, bool> _overlapping;
  NgmVariogramExpData _data;
  QMap<int, NgmEVarioExp> _varioCurves;
  QMap<int, NgmECovaExp> _covaCurves;
  bool _computeCloud = false;
  bool _is3d;
};
