#include "app/job/ModelJson.h"

#include "app/study/Compass.h"
#include "basic/geom/NbgRotationConventionGeologist.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmVModel.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>

namespace orvenal {

namespace {

QJsonValue sillsToJson(const NgmMatrix &sills)
{
  const int n = sills.getNRows();
  if (n == 1)
    return sills(0, 0);
  QJsonArray rows;
  for (int i = 0; i < n; ++i) {
    QJsonArray row;
    for (int j = 0; j < n; ++j)
      row.append(sills(i, j));
    rows.append(row);
  }
  return rows;
}

/// The number, `steps` numbers further.
double stepped(double value, int steps)
{
  for (int i = 0; i < std::abs(steps); ++i)
    value = std::nextafter(value, steps > 0 ? HUGE_VAL : 0.);
  return value;
}

/// Finds the practical ranges from which a structure gets its scale and anisotropy to the bit: they
/// may lie a few last digits beside those that it computes.
class ExactRanges
{
public:
  ExactRanges(const NgmAVStruct &structure, int nDimensions)
      : _structure(structure), _nDimensions(nDimensions)
  {
    const double sill = 1.;
    _probe.setContext(structure.getContext());
    _probe.addStructure(structure, NgmMatrix(1, &sill));
  }

  /// Those that the structure computes when there are none.
  NbgVector3D find()
  {
    for (const int steps : nearSteps) {
      NbgVector3D ranges = _structure.getPracticalRanges();
      _move(1., steps, ranges);
      if (_shapeOf(ranges).getTheoScaleFactor() == _structure.getTheoScaleFactor() &&
          _findLonger(ranges))
        return ranges;
    }
    return _structure.getPracticalRanges();
  }

private:
  static constexpr int nearSteps[] = {0, 1, -1, 2, -2, 3, -3};

  /// The ranges of the axes that have this coefficient.
  void _move(double coefficient, int steps, NbgVector3D &ranges) const
  {
    for (int axis = 0; axis < _nDimensions; ++axis) {
      if (_structure.getAnisotropy()[axis] == coefficient)
        ranges[axis] = stepped(ranges[axis], steps);
    }
  }

  const NgmAVStruct &_shapeOf(const NbgVector3D &ranges)
  {
    _probe.setRanges(0, ranges);
    return _probe.getStructure(0);
  }

  /// The ranges of all axes but the shortest.
  bool _findLonger(NbgVector3D &ranges)
  {
    for (int axis = 0; axis < _nDimensions; ++axis) {
      const double coefficient = _structure.getAnisotropy()[axis];
      const bool isFound = std::any_of(std::begin(nearSteps), std::end(nearSteps), [&](int steps) {
        NbgVector3D tried = ranges;
        tried[axis] = stepped(tried[axis], coefficient == 1. ? 0 : steps);
        const bool isExact = _shapeOf(tried).getAnisotropy()[axis] == coefficient;
        ranges = isExact ? tried : ranges;
        return isExact;
      });
      if (!isFound)
        return false;
    }
    return true;
  }

  const NgmAVStruct &_structure;
  int _nDimensions;
  NgmVModel _probe{1};
};

/// Angles that are kept in the terms of a job stay as they are.
NbgVector3D anglesOf(const NbgRotation &rotation)
{
  return rotation.getConventionId() == NbgRotationConventionGeologist::ID
             ? rotation.getAngles()
             : Compass::anglesOf(rotation);
}

void addShape(const NgmAVStruct &structure, int nDimensions, QJsonObject &object)
{
  const NbgVector3D ranges = ExactRanges(structure, nDimensions).find();
  const bool isRound = ranges.x() == ranges.y() && (nDimensions < 3 || ranges.x() == ranges.z());
  if (isRound) {
    object.insert(QStringLiteral("range"), ranges.x());
    if (nDimensions < 3 || structure.getRotation().isIdentity(0.))
      return;
  } else {
    QJsonArray list;
    for (int axis = 0; axis < nDimensions; ++axis)
      list.append(ranges[axis]);
    object.insert(QStringLiteral("ranges"), list);
  }
  const NbgVector3D angles = anglesOf(structure.getRotation());
  object.insert(QStringLiteral("azimuth"), angles.x());
  if (nDimensions > 2) {
    object.insert(QStringLiteral("dip"), angles.y());
    object.insert(QStringLiteral("pitch"), angles.z());
  }
}

}  // namespace

QJsonObject modelToJson(const NgmVModel &model, int nDimensions)
{
  QJsonObject object;
  if (model.hasNugget())
    object.insert(QStringLiteral("nugget"), sillsToJson(model.getNuggetMatrix()));
  QJsonArray structures;
  for (int i = 0; i < model.getNStructures(); ++i) {
    const NgmAVStruct &structure = model.getStructure(i);
    QJsonObject item;
    item.insert(QStringLiteral("type"), structure.getType().getLabel());
    item.insert(QStringLiteral("sill"), sillsToJson(model.getCoregionalisationMatrix(i)));
    if (structure.getNAuxiliaryParameters() > 0)
      item.insert(QStringLiteral("parameter"), structure.getAuxiliaryValue(0));
    addShape(structure, nDimensions, item);
    structures.append(item);
  }
  object.insert(QStringLiteral("structures"), structures);
  return object;
}

}  // namespace orvenal
