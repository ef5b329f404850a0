#include "app/io/ModelJson.h"

#include "app/study/Compass.h"
#include "basic/geom/NbgRotationConventionGeologist.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmVModel.h"

#include <QJsonArray>
#include <QVector>

#include <cmath>
#include <cstdlib>

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

/// The practical ranges from which the structure gets its scale and anisotropy to the bit, where
/// there are such: they may lie a few last digits beside those that it computes.
NbgVector3D exactRanges(const NgmAVStruct &structure, int nDimensions)
{
  const double sill = 1.;
  NgmVModel probe(1);
  probe.setContext(structure.getContext());
  probe.addStructure(structure, NgmMatrix(1, &sill));
  const NbgVector3D ranges = structure.getPracticalRanges();
  const bool isRound = structure.getAnisotropy() == NbgVector3D::Unit;
  const QVector<int> steps = {0, 1, -1, 2, -2};
  const QVector<int> none = {0};
  for (const int i : steps) {
    for (const int j : isRound ? none : steps) {
      for (const int k : isRound || nDimensions < 3 ? none : steps) {
        const NbgVector3D tried(stepped(ranges.x(), i), stepped(ranges.y(), isRound ? i : j),
                                stepped(ranges.z(), isRound ? i : k));
        probe.setRanges(0, tried);
        if (probe.getStructure(0).getTheoScaleFactor() == structure.getTheoScaleFactor() &&
            probe.getStructure(0).getAnisotropy() == structure.getAnisotropy())
          return tried;
      }
    }
  }
  return ranges;
}

/// Angles that are kept in the terms of a job stay as they are.
NbgVector3D anglesOf(const NbgRotation &rotation)
{
  return rotation.getConventionId() == NbgRotationConventionGeologist::ID
             ? rotation.getAngles()
             : Compass::anglesOf(rotation);
}

void addShape(const NgmAVStruct &structure, int nDimensions, QJsonObject &object)
{
  const NbgVector3D ranges = exactRanges(structure, nDimensions);
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
