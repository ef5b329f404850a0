#include "geos/interpol/NgmABlock.h"

#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgBox.h"
#include "basic/geom/NbgGeomCuboid.h"
#include "basic/geom/NbgGeomGrid.h"

#include <QObject>

#include <cmath>

// A block is checked for every target: no text is built before something is wrong.

namespace {

/// Points that a block may be discretized into: 24 bytes each, below the limit of Qt's vectors.
constexpr double MAXIMUM_POINTS = 5e7;

/// The source that the failures name.
QString blockPath()
{
  return QStringLiteral("interpol\\NgmBlock");
}

QString badSize(int axis)
{
  const char *const texts[] = {
      QT_TRANSLATE_NOOP("QObject", "Invalid U dimension (must be > 0)"),
      QT_TRANSLATE_NOOP("QObject", "Invalid V dimension (must be > 0)"),
      QT_TRANSLATE_NOOP("QObject", "Invalid W dimension for 3D block (must be > 0)")};
  return QObject::tr(texts[axis]);
}

QString badNumber(int axis)
{
  const char *const texts[] = {
      QT_TRANSLATE_NOOP("QObject", "Invalid U discretization points number (must be >= 1)"),
      QT_TRANSLATE_NOOP("QObject", "Invalid V discretization points number (must be >= 1)"),
      QT_TRANSLATE_NOOP("QObject",
                        "Invalid W discretization points number for 3D block (must be >= 1)")};
  return QObject::tr(texts[axis]);
}

QString badSteps(int axis)
{
  const char *const texts[] = {
      QT_TRANSLATE_NOOP("QObject", "Invalid U discretization steps size (must be > 0)"),
      QT_TRANSLATE_NOOP("QObject", "Invalid V discretization steps size (must be > 0)"),
      QT_TRANSLATE_NOOP("QObject",
                        "Invalid W discretization steps size for 3D block (must be > 0)")};
  return QObject::tr(texts[axis]);
}

}  // namespace

NgmABlock::NgmABlock(bool is3D) : _is3D(is3D) {}

void NgmABlock::setDiscretizationPointsNumber(const NbgIntVector3D &numbers)
{
  _pointsNumber = numbers;
}

void NgmABlock::setDiscretizationStepsSize(const NbgVector3D &steps)
{
  _stepsSize = steps;
}

void NgmABlock::setSize(const NbgVector3D &size)
{
  _size = size;
}

QString NgmABlock::debug(int /*level*/) const
{
  QString text = QStringLiteral("NgmABlock:\n");
  text += _is3D ? QStringLiteral("3D block\n") : QStringLiteral("2D block\n");
  text += QStringLiteral("Block Size: %1\n").arg(_size.toString());
  text += QStringLiteral("Block Rotation: %1\n").arg(_rotation.toString());
  text += QStringLiteral("Discretization Points Number: %1\n").arg(_pointsNumber.toString());
  text += QStringLiteral("Discretization Steps Size: %1\n").arg(_stepsSize.toString());
  return text;
}

void NgmABlock::setRotation(const NbgRotation &rotation)
{
  _rotation = rotation;
}

void NgmABlock::setFromGridCell(const NbgGeomGrid &grid)
{
  setSize(grid.getCellSize());
  setRotation(grid.getRotation());
}

NbgGeomCuboid NgmABlock::getCuboid(const NbgVector3D &centre) const
{
  return NbgGeomCuboid(centre, getSize(), _rotation);
}

NbgBox NgmABlock::getBox(const NbgVector3D &centre) const
{
  return getCuboid(centre).getBoundingBox();
}

bool NgmABlock::isBlockDefined(QString &why) const
{
  if (!_isSizeDefined(why))
    return false;
  if (!_is3D && !_rotation.isAroundZOnly()) {
    why = QObject::tr("rotation must be only 2D");
    return false;
  }
  return true;
}

bool NgmABlock::isDiscretizationDefined(QString &why) const
{
  if (_hasPointsNumber() && _hasStepsSize()) {
    why =
        QObject::tr("You cannot define Discretization Points Number and Discretization Step Size.");
    return false;
  }
  for (int axis = 0; axis < _nAxes(); ++axis) {
    const bool valid = _hasStepsSize()
                           ? NbbGlobal::isDefined(_stepsSize[axis]) && _stepsSize[axis] > 0.
                           : _pointsNumber[axis] >= 1;
    if (!valid) {
      why = _hasStepsSize() ? badSteps(axis) : badNumber(axis);
      return false;
    }
  }
  return true;
}

bool NgmABlock::_isSizeDefined(QString &why) const
{
  for (int axis = 0; axis < _nAxes(); ++axis) {
    if (!NbbGlobal::isDefined(_size[axis]) || !(_size[axis] > 0.)) {
      why = badSize(axis);
      return false;
    }
  }
  return true;
}

NbgIntVector3D NgmABlock::_calcPointsNumber() const
{
  QString why;
  if (!isDiscretizationDefined(why) || (_hasStepsSize() && !_isSizeDefined(why)))
    NBE_FAIL_AT(blockPath(), why);
  NbgIntVector3D numbers(1, 1, 1);
  double total = 1.;
  for (int axis = 0; axis < _nAxes(); ++axis) {
    const double number =
        _hasStepsSize() ? std::ceil(_size[axis] / _stepsSize[axis]) : _pointsNumber[axis];
    total *= number;
    if (!(total <= MAXIMUM_POINTS))
      throw NbeUserError(QObject::tr("A block is discretized into more than %1 points: enlarge the "
                                     "steps or reduce the numbers of points.")
                             .arg(MAXIMUM_POINTS));
    numbers[axis] = int(number);
  }
  return numbers;
}

NbgVector3D NgmABlock::_calcStepsSize() const
{
  QString why;
  if (!isDiscretizationDefined(why) || (_hasPointsNumber() && !_isSizeDefined(why)))
    NBE_FAIL_AT(blockPath(), why);
  if (_hasStepsSize())
    return _stepsSize;
  const NbgIntVector3D numbers = _calcPointsNumber();
  return {_size.x() / numbers.x(), _size.y() / numbers.y(), _size.z() / numbers.z()};
}

bool NgmABlock::_check(bool raise) const
{
  QString why;
  const bool valid = isBlockDefined(why) && isDiscretizationDefined(why);
  if (!valid && raise)
    NBE_FAIL_AT(blockPath(), why);
  return valid;
}
