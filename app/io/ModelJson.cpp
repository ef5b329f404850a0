#include "app/io/ModelJson.h"

#include "app/study/Compass.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmVModel.h"

#include <QJsonArray>

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

void addShape(const NgmAVStruct &structure, int nDimensions, QJsonObject &object)
{
  const NbgVector3D ranges = structure.getPracticalRanges();
  const bool isRound = ranges.x() == ranges.y() && (nDimensions < 3 || ranges.x() == ranges.z());
  if (isRound) {
    object.insert(QStringLiteral("range"), ranges.x());
    return;
  }
  QJsonArray list;
  for (int axis = 0; axis < nDimensions; ++axis)
    list.append(ranges[axis]);
  object.insert(QStringLiteral("ranges"), list);
  const NbgVector3D angles = Compass::anglesOf(structure.getRotation());
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
