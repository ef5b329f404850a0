#include "geos/stats/NgmVariogramExp.h"

#include "basic/base/NbbGlobal.h"
#include "basic/calc/NbcDirectionsGenerator.h"
#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgAngle.h"
#include "basic/geom/NbgEAngleUnit.h"

#include <QObject>

#include <algorithm>

namespace {

const QString &labelAll()
{
  return NgmEDirectionGroupName::ALL_DIRECTIONS.getLabel();
}

const QString &planeLabel(const NbgRotation &plane)
{
  return plane.isAroundZOnly() ? NgmEDirectionGroupName::HORIZONTAL.getLabel()
                               : NgmEDirectionGroupName::REF_PLANE.getLabel();
}

QString describeLags(const NgmPairsSelectorDirection &direction)
{
  QString text = QObject::tr("Lag Value = %1\n").arg(direction.getLagLong()) +
                 QObject::tr("Maximum Distance = %1\n").arg(direction.getDistMaxLong());
  if (direction.getNLagsShort() > 0)
    text += QObject::tr("Number of Refined Lags = %1\n").arg(direction.getNLagsLongHidden()) +
            QObject::tr("Lag Value (short distances) = %1\n").arg(direction.getLagShort()) +
            QObject::tr("Maximum Short Distance = %1\n").arg(direction.getDistMaxShort());
  return text;
}

QString describeTolerances(const NgmPairsSelectorDirection &direction)
{
  QString text;
  if (direction.isIrregular()) {
    text += QObject::tr("Angular Tolerance = %1\n").arg(direction.getAngularToleranceDegree());
  } else {
    text += QObject::tr("Angular Tolerance = %1\n").arg(direction.getPlaneAngularToleranceDegree());
    text += QObject::tr("Height Angular Tolerance = %1\n")
                .arg(direction.getHeightAngularToleranceDegree());
  }
  if (direction.isUsingSlicingWidth())
    text += QObject::tr("Slicing Width = %1\n").arg(direction.getSlicingWidth());
  if (direction.isUsingSlicingHeight())
    text += QObject::tr("Slicing Height = %1\n").arg(direction.getSlicingHeight());
  if (direction.isUsingSlicingRadius())
    text += QObject::tr("Slicing Radius = %1\n").arg(direction.getSlicingRadius());
  return text;
}

QString describe(const NgmPairsSelectorDirection &direction)
{
  const QString what = direction.isOmnidirectional()
                           ? QObject::tr("Variogram is Omni Directional\n")
                           : QObject::tr("Direction: %1\n").arg(direction.getDirectionName()) +
                                 describeTolerances(direction);
  return what + describeLags(direction);
}

QString describePlane(const NbgRotation &plane, bool is3d)
{
  if (!plane.isAroundZOnly())
    return QObject::tr("Variogram in a Tilted Plane") + QLatin1Char('\n');
  return is3d ? QObject::tr("Horizontal Plane\n") : QObject::tr("Horizontal Variogram\n");
}

QString describeDirections(const QStringList &names)
{
  return QObject::tr("Number of Directions = %1\n").arg(names.size()) +
         QObject::tr("Directions = %1\n").arg(names.join(QLatin1String(", ")));
}

NgmPairsSelectorDirection coneDirection(const NbgRotation &dir, const QString &name, double angTol,
                                        double slicingRadius)
{
  NgmPairsSelectorDirection direction;
  direction.setOrientation(dir);
  direction.setDirectionName(name);
  direction.setAngularToleranceDegree(angTol);
  if (slicingRadius != NbbGlobal::D_FFFF)
    direction.setSlicingRadius(true, slicingRadius);
  return direction;
}

template <class Curve>
bool containsAny(const QMap<int, Curve> &curves, std::initializer_list<typename Curve::EValue> list)
{
  return std::any_of(list.begin(), list.end(),
                     [&curves](typename Curve::EValue c) { return curves.contains(int(c)); });
}

}  // namespace

NgmVariogramExp::NgmVariogramExp(bool is3d) : _is3d(is3d) {}
NgmVariogramExp::~NgmVariogramExp() = default;

// Directions.

int NgmVariogramExp::_registerDirection(const NgmPairsSelectorDirection &direction,
                                        const NbgRotation &plane, const QStringList &names)
{
  _directions.push_back(direction);
  NgmPairsSelectorDirection &added = _directions.back();
  added.setGroupId(_nextGroupId);
  const QString name = added.getDirectionName();
  const int rank = _data.addDirection(added.getRotation(), added.getNIntervals(), name);
  const QStringList groups = names.isEmpty() ? QStringList(_groupNames[_nextGroupId]) : names;
  for (const QString &group : groups)
    _data.addDirectionGroupName(rank, group, plane);
  _data.setGroupDescription(name,
                            QObject::tr("Experimental Variogram Parameters:\n") + describe(added));
  _data.clearResults();
  return rank;
}

void NgmVariogramExp::_closeGroup(const QString &group, const QString &description)
{
  _data.setGroupDescription(group, description);
  ++_nextGroupId;
}

void NgmVariogramExp::addOmnidirectional(int nLag, double lag, double tol, int nRefined,
                                         double refinedLag)
{
  NgmPairsSelectorDirection direction;
  direction.setOmnidirectional();
  direction.setLag(nLag, lag, tol, nRefined, refinedLag);
  const QString group = NgmEDirectionGroupName::OMNIDIRECTIONAL.getLabel();
  _groupNames[_nextGroupId] = group;
  _registerDirection(direction, NbgRotation(), QStringList());
  _closeGroup(group, _data.getGroupDescription(group));
}

void NgmVariogramExp::addRegular2D(int nDir, double azimuth, double angTol, double slicingWidth,
                                   int nLag, double lag, double tol, int nRefined,
                                   double refinedLag)
{
  addRegularInPlane(NbgRotation(NbgAngle(azimuth, NbgEAngleUnit::DEGREE)), nDir, angTol, 90.,
                    slicingWidth, NbbGlobal::D_FFFF, nLag, lag, tol, nRefined, refinedLag);
}

NgmPairsSelectorDirection NgmVariogramExp::_planeDirection(const NbgRotation &plane,
                                                           const NbgRotation &dir, double angTol,
                                                           double heightTol, double slicingWidth,
                                                           double slicingHeight) const
{
  NgmPairsSelectorDirection direction;
  direction.setOrientation(dir);
  direction.setPlaneAngularToleranceDegree(angTol);
  direction.setHeightAngularToleranceDegree(heightTol);
  if (slicingWidth != NbbGlobal::D_FFFF)
    direction.setSlicingWidth(true, slicingWidth);
  if (slicingHeight != NbbGlobal::D_FFFF)
    direction.setSlicingHeight(true, slicingHeight);
  if (angTol < 90.)
    direction.setDirectionName(dir.getUDirectionName());
  else
    direction.setDirectionName(_is3d ? planeLabel(plane)
                                     : NgmEDirectionGroupName::OMNIDIRECTIONAL.getLabel());
  return direction;
}

void NgmVariogramExp::_openRegularPlane(const NbgRotation &plane)
{
  _groupNames[_nextGroupId] = planeLabel(plane);
  _planeGroupId = _nextGroupId;
}

void NgmVariogramExp::_registerRegular(const NgmPairsSelectorDirection &direction,
                                       const NbgRotation &plane)
{
  _regularDirections << _registerDirection(
      direction, plane, {labelAll(), planeLabel(plane), direction.getDirectionName()});
}

void NgmVariogramExp::addRegularInPlane(const NbgRotation &plane, int nDir, double angTol,
                                        double heightTol, double slicingWidth, double slicingHeight,
                                        int nLag, double lag, double tol, int nRefined,
                                        double refinedLag)
{
  if (_planeGroupId >= 0)
    NBE_FAIL(
        QStringLiteral("NgmVariogramExp::addRegularInPlane: trying to define multiple planes"));
  NbcDirectionsGenerator generator;
  generator.setReferenceOrientation(plane);
  generator.createRegularInPlane(nDir);
  QList<NgmPairsSelectorDirection> directions;
  for (int i = 0; i < nDir; ++i) {
    directions << _planeDirection(plane, generator.getOrientation(i), angTol, heightTol,
                                  slicingWidth, slicingHeight);
    directions.last().setLag(nLag, lag, tol, nRefined, refinedLag);
  }

  _openRegularPlane(plane);
  for (const NgmPairsSelectorDirection &direction : qAsConst(directions))
    _registerRegular(direction, plane);
  _overlapping[_nextGroupId] = angTol > 90. / nDir;
  _closeGroup(planeLabel(plane),
              QObject::tr("Experimental Variogram Parameters (regular directions):\n") +
                  describePlane(plane, _is3d) + describeDirections(_regularDirectionNames()) +
                  describeTolerances(directions.first()) + describeLags(directions.first()));
}

QStringList NgmVariogramExp::_regularDirectionNames() const
{
  QStringList names;
  for (const int i : _regularDirections)
    names << _directions[i].getDirectionName();
  return names;
}

bool NgmVariogramExp::_isAnyOverlapping(int nDir) const
{
  for (int i = 1; i < _regularDirections.size(); ++i) {
    const double tolerances =
        _directions[_regularDirections[i]].getPlaneAngularToleranceDegree() +
        _directions[_regularDirections[i - 1]].getPlaneAngularToleranceDegree();
    if (180. / nDir < tolerances)
      return true;
  }
  return false;
}

void NgmVariogramExp::addOneRegularInPlane(const NbgRotation &plane, int nDir, int iDir,
                                           const NbgRotation &dir, int nLag, double lag, double tol,
                                           double angTol, double heightTol, double slicingWidth,
                                           double slicingHeight, int nRefined, double refinedLag)
{
  if (nDir < 1)
    NBE_FAIL(QStringLiteral("NgmVariogramExp::addOneRegularInPlane: nDir==0"));
  if (iDir < 1 && _planeGroupId >= 0)
    NBE_FAIL(
        QStringLiteral("NgmVariogramExp::addOneRegularInPlane: trying to define multiple planes"));
  NgmPairsSelectorDirection direction =
      _planeDirection(plane, dir, angTol, heightTol, slicingWidth, slicingHeight);
  direction.setLag(nLag, lag, tol, nRefined, refinedLag);

  if (iDir < 1)
    _openRegularPlane(plane);
  _registerRegular(direction, plane);
  if (iDir != nDir - 1)
    return;
  _overlapping[_nextGroupId] = _isAnyOverlapping(nDir);
  _closeGroup(planeLabel(plane),
              QObject::tr("Experimental Variogram Parameters (regular directions):\n") +
                  describePlane(plane, _is3d) + describeDirections(_regularDirectionNames()) +
                  describe(_directions[_regularDirections.first()]));
}

void NgmVariogramExp::addIrregularDirections(const NbgRotation &plane,
                                             const QList<NbgRotation> &dirs,
                                             const QStringList &names, double angTol,
                                             double slicingRadius, int nLag, double lag, double tol,
                                             int nRefined, double refinedLag)
{
  QList<NgmPairsSelectorDirection> directions;
  for (int i = 0; i < dirs.size(); ++i) {
    directions << coneDirection(dirs[i], names.value(i), angTol, slicingRadius);
    directions.last().setLag(nLag, lag, tol, nRefined, refinedLag);
  }

  const QString group = NgmEDirectionGroupName::OTHER_DIRECTIONS.getLabel();
  _groupNames[_nextGroupId] = group;
  QString text = QObject::tr("Experimental Variogram Parameters (irregular directions):\n") +
                 QObject::tr("Direction(s): \n");
  for (const NgmPairsSelectorDirection &direction : qAsConst(directions)) {
    _registerDirection(direction, plane, {labelAll(), group, direction.getDirectionName()});
    text += describe(direction);
  }
  _closeGroup(group, text);
}

void NgmVariogramExp::addOneFreeDirection(const NbgRotation &plane, int iDir,
                                          const NbgRotation &dir, const QString &name, int nLag,
                                          double lag, double tol, double angTol,
                                          double slicingRadius, int nRefined, double refinedLag)
{
  NgmPairsSelectorDirection direction = coneDirection(dir, name, angTol, slicingRadius);
  direction.setLag(nLag, lag, tol, nRefined, refinedLag);

  const QString group = NgmEDirectionGroupName::FREE_DIRECTIONS.getLabel();
  if (iDir < 1 || _freeGroupId < 0) {
    _freeGroupId = _nextGroupId;
    _groupNames[_freeGroupId] = group;
    _overlapping[_freeGroupId] = true;
    _closeGroup(group, QObject::tr("Experimental Variogram Parameters (free directions):\n"));
  }
  // The group stays open for the next ones: its directions share the id under which it was opened.
  const int rank =
      _registerDirection(direction, plane, {labelAll(), group, direction.getDirectionName()});
  _directions[rank].setGroupId(_freeGroupId);
  _data.setGroupDescription(group, _data.getGroupDescription(group) + describe(direction));
}

void NgmVariogramExp::addDirectionNormal(const NgmPairsSelectorDirection &dir,
                                         const NbgRotation &plane)
{
  const QString group = plane.isAroundZOnly() ? NgmEDirectionGroupName::VERTICAL.getLabel()
                                              : NgmEDirectionGroupName::NORMAL.getLabel();
  _groupNames[_nextGroupId] = group;
  const int rank = _registerDirection(dir, plane, QStringList());
  _closeGroup(group, QObject::tr("Experimental Variogram Parameters (%1 direction):\n").arg(group) +
                         describe(_directions[rank]));
}

const NgmPairsSelectorDirection &NgmVariogramExp::getDirection(int i) const
{
  if (i < 0 || i >= getNDirections())
    NBE_FAIL(QStringLiteral("invalid direction rank"));
  return _directions[i];
}

int NgmVariogramExp::getNRegularDirections() const
{
  if (_planeGroupId < 0)
    return 0;
  return int(std::count_if(
      _directions.cbegin(), _directions.cend(),
      [this](const NgmPairsSelectorDirection &d) { return d.getGroupId() == _planeGroupId; }));
}

double NgmVariogramExp::getMaximumDistance() const
{
  double largest = 0.;
  for (const NgmPairsSelectorDirection &direction : _directions)
    largest = std::max(largest, direction.getMaximumDistance());
  return largest;
}

// Curves.

void NgmVariogramExp::addVarioCalculation(NgmEVarioExp::EValue curve)
{
  _varioCurves.insert(int(curve), NgmEVarioExp::fromValue(int(curve)));
  _data.clearResults();
}

void NgmVariogramExp::addCovaCalculation(NgmECovaExp::EValue curve)
{
  _covaCurves.insert(int(curve), NgmECovaExp::fromValue(int(curve)));
  _data.clearResults();
}

bool NgmVariogramExp::isVarioRegistered(NgmEVarioExp::EValue curve) const
{
  return _varioCurves.contains(int(curve));
}

bool NgmVariogramExp::isCovaRegistered(NgmECovaExp::EValue curve) const
{
  return _covaCurves.contains(int(curve));
}

bool NgmVariogramExp::hasVariogram() const
{
  using Curve = NgmEVarioExp::EValue;
  return containsAny(
      _varioCurves,
      {Curve::VARIOGRAM, Curve::RELATIVE_VARIOGRAM, Curve::NON_ERGODIC_RELATIVE_VARIOGRAM,
       Curve::VARIOGRAM_CROSS_OVER_SIMPLE, Curve::VARIOGRAM_CROSS_OVER_SQRT_SIMPLE,
       Curve::VARIOGRAM_OVER_MADOGRAM, Curve::SQRT_VARIOGRAM_OVER_MADOGRAM});
}

bool NgmVariogramExp::hasMadogram() const
{
  using Curve = NgmEVarioExp::EValue;
  return containsAny(_varioCurves, {Curve::MADOGRAM, Curve::VARIOGRAM_OVER_MADOGRAM,
                                    Curve::SQRT_VARIOGRAM_OVER_MADOGRAM});
}

bool NgmVariogramExp::hasRodogram() const
{
  return isVarioRegistered(NgmEVarioExp::EValue::RODOGRAM);
}

bool NgmVariogramExp::hasPairwiseVariogram() const
{
  return isVarioRegistered(NgmEVarioExp::EValue::PAIRWISE_RELATIVE_VARIOGRAM);
}

int NgmVariogramExp::getColumnSize(int dir, bool isCova) const
{
  const int n = getDirection(dir).getNIntervals();
  return isCova ? 2 * n + 1 : n;
}

QString NgmVariogramExp::debug(int level) const
{
  QString text = QStringLiteral("Variogram Calculation Direction\n");
  for (const NgmPairsSelectorDirection &direction : _directions)
    text += direction.debug(level);
  text += QStringLiteral("Calculation types:\n");
  for (const NgmEVarioExp &curve : _varioCurves)
    text += curve.getLabel() + QLatin1Char('\n');
  for (const NgmECovaExp &curve : _covaCurves)
    text += curve.getLabel() + QLatin1Char('\n');
  for (auto group = _overlapping.cbegin(); group != _overlapping.cend(); ++group)
    text += QStringLiteral("Overlapping[GROUP=%1] =%2\n").arg(group.key()).arg(int(group.value()));
  return text;
}
