#include "app/job/ModelReader.h"

#include "app/base/Suggestion.h"
#include "app/job/AxesReader.h"
#include "app/job/JobObject.h"
#include "app/study/Coregionalization.h"
#include "app/study/ModelFit.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeError.h"
#include "basic/interval/NbiIntervalData.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmVModel.h"
#include "geos/vmodel/NgmVStructFactory.h"

#include <QObject>

#include <cmath>

namespace orvenal {

namespace {

using Types = QList<NgmEVStruct>;

/// Those that reach a sill.
Types boundedTypes()
{
  return NgmVStructFactory::getStructureForDegree(-1, false);
}

Types availableTypes()
{
  return boundedTypes() << NgmEVStruct::POWER;
}

QStringList labelsOf(const Types &types)
{
  QStringList labels;
  for (const NgmEVStruct &type : types)
    labels << type.getLabel();
  return labels;
}

bool isNamed(const NgmEVStruct &type, const QString &name)
{
  return name.compare(type.getLabel(), Qt::CaseInsensitive) == 0 ||
         name.compare(QLatin1String(type.getKey()), Qt::CaseInsensitive) == 0;
}

/// The type that a member of the object names.
NgmEVStruct findType(const JobObject &object, const QString &key, const QString &name,
                     const Types &types)
{
  for (const NgmEVStruct &type : types) {
    if (isNamed(type, name))
      return type;
  }
  const QStringList labels = labelsOf(types);
  object.fail(key, QObject::tr("\"%1\" is not known%2; allowed: %3")
                       .arg(name, didYouMean(name, labels), quotedList(labels)));
}

void readParameter(const JobObject &object, NgmVModel &model, int index)
{
  const QString key = QStringLiteral("parameter");
  if (!object.has(key))
    return;
  const NgmAVStruct &structure = model.getStructure(index);
  if (structure.getNAuxiliaryParameters() == 0)
    object.fail(key, QObject::tr("a structure of type \"%1\" has no parameter")
                         .arg(structure.getType().getLabel()));
  const double value = object.number(key);
  const NbiIntervalData bounds = structure.getAuxiliaryBounds(0);
  if (!bounds.isIncluded(value))
    object.fail(key,
                QObject::tr("%1 is not in %2 (%3)")
                    .arg(QString::number(value), bounds.toString(), structure.getAuxiliaryName(0)));
  model.setAuxiliaryParameter(index, 0, value);
}

/// Sills of several variables are variances and covariances: no eigenvalue is negative.
void checkSills(const JobObject &object, const QString &key, NgmMatrix &sills)
{
  constexpr double rounding = 1e-12;
  const double eigenvalue = Coregionalization::smallestEigenvalue(sills);
  if (eigenvalue < -rounding)
    object.fail(key, QObject::tr("the matrix is not positive semi-definite: two of the variables "
                                 "are more correlated than they can be"));
  if (eigenvalue < 0.)
    Coregionalization::shrink(sills, 2. * rounding);
}

/// One number for one variable, else a symmetric matrix with a row per variable.
NgmMatrix readSills(const JobObject &object, const QString &key, int nVariables)
{
  NgmMatrix sills(nVariables, nVariables, true);
  if (nVariables == 1) {
    sills.setElement(0, 0, object.number(key, 0.));
    return sills;
  }
  const std::vector<std::vector<double>> rows = object.matrix(key, nVariables);
  for (int i = 0; i < nVariables; ++i) {
    for (int j = 0; j < nVariables; ++j) {
      if (rows[std::size_t(i)][std::size_t(j)] != rows[std::size_t(j)][std::size_t(i)])
        object.fail(key, QObject::tr("the matrix is not symmetric"));
      sills.setElement(i, j, rows[std::size_t(i)][std::size_t(j)]);
    }
  }
  checkSills(object, key, sills);
  return sills;
}

/// The ranges of a structure that has its parameter of shape.
NbgVector3D practicalRanges(const JobObject &object, const NbgVector3D &given,
                            const NgmAVStruct &structure)
{
  constexpr double smallest = 1e-20;  // whatever its scale is, a number that the library takes
  constexpr double steepest = 1e100;
  if (!(practicalFactor(structure) < steepest))
    object.fail(QStringLiteral("parameter"),
                QObject::tr("the structure comes near to its sill at no distance"));
  const NbgVector3D ranges = toPracticalRanges(given, object.getConventions().ranges, structure);
  for (const double range : {ranges.x(), ranges.y(), ranges.z()}) {
    if (range < smallest)
      object.fail(QObject::tr("a practical range of %1 is too small").arg(range));
    if (!NbbGlobal::isDefined(range))
      object.fail(QObject::tr("a practical range of %1 is too large").arg(range));
  }
  return ranges;
}

void readStructure(const JobObject &object, int nDimensions, NgmVModel &model)
{
  const NgmEVStruct type = findType(object, QStringLiteral("type"),
                                    object.text(QStringLiteral("type")), availableTypes());
  const NgmMatrix sills = readSills(object, QStringLiteral("sill"), model.getNVariables());
  if (model.getNVariables() == 1 && sills(0, 0) <= 0.)
    object.fail(QStringLiteral("sill"), QObject::tr("must be greater than 0"));
  const NbgVector3D ranges =
      readLengths(object, QStringLiteral("range"), QStringLiteral("ranges"), nDimensions);
  const int index = model.addStructure(type.getLabel(), sills);
  readParameter(object, model, index);  // the practical factor may depend on it
  model.setRanges(index, practicalRanges(object, ranges, model.getStructure(index)));
  model.setRotation(index, readFrame(object, nDimensions, ranges.x() != ranges.y()));
}

/// The library's reason without the place in its sources.
QString reasonOf(const NbeError &error)
{
  return error.getMessage().section(QStringLiteral("\n\n"), -1).trimmed();
}

/// Checks a model in units in which the variables have similar sizes.
void authorize(const JobObject &object, NgmVModel &model)
{
  const QVector<double> units = Coregionalization::exactUnits(model);
  QVector<double> inverses;
  for (const double unit : units)
    inverses << 1. / unit;
  try {
    Coregionalization::rescale(model, inverses);
    model.makeAuthorized();
    Coregionalization::rescale(model, units);
  } catch (const NbeError &error) {
    object.fail(QObject::tr("the model is not admissible: ") + reasonOf(error));
  }
}

}  // namespace

QStringList modelKeys()
{
  return {QStringLiteral("nugget"), QStringLiteral("structures"), QStringLiteral("dimensions")};
}

JobObject parseModelText(const QString &file, const QByteArray &text)
{
  JobObject object = JobObject::parse(file, text, modelKeys() << QStringLiteral("conventions"));
  object.readConventions();
  return object;
}

QStringList structureLabels()
{
  return labelsOf(availableTypes());
}

QStringList fittedLabels()
{
  return labelsOf(boundedTypes());
}

QStringList fitKeys()
{
  return {QStringLiteral("structures"), QStringLiteral("nugget"), QStringLiteral("anisotropy")};
}

FitRequest readFit(const JobObject &object)
{
  const QString structures = QStringLiteral("structures");
  FitRequest request;
  QStringList names = {NgmEVStruct::SPHERICAL.getLabel()};
  if (object.has(structures))
    names = object.texts(structures);
  constexpr int mostStructures = 5;
  if (names.isEmpty() || names.size() > mostStructures)
    object.fail(structures, QObject::tr("expected 1 to %1 structures").arg(mostStructures));
  for (const QString &name : names)
    request.structures << findType(object, structures, name, boundedTypes());
  request.nugget = object.flag(QStringLiteral("nugget"), true);
  request.anisotropy = object.flag(QStringLiteral("anisotropy"), true);
  return request;
}

NgmVModel readModel(const JobObject &object, int nDimensions, int nVariables)
{
  static const QStringList structureKeys =
      QStringList{QStringLiteral("type"), QStringLiteral("sill"), QStringLiteral("range"),
                  QStringLiteral("ranges"), QStringLiteral("parameter")} +
      angleKeys();
  const QString dimensions = QStringLiteral("dimensions");
  if (object.has(dimensions) && object.integer(dimensions, 2, 3) != nDimensions)
    object.fail(dimensions, QObject::tr("the model has %1 dimensions, the samples have %2")
                                .arg(object.integer(dimensions, 2, 3))
                                .arg(nDimensions));
  NgmVModel model(nVariables);
  model.setContextNDim(nDimensions);
  model.setContextIrfDegree(0);
  if (object.has(QStringLiteral("nugget")))
    model.setNuggetMatrix(readSills(object, QStringLiteral("nugget"), nVariables));
  if (object.has(QStringLiteral("structures"))) {
    for (const JobObject &structure : object.objects(QStringLiteral("structures"), structureKeys))
      readStructure(structure, nDimensions, model);
  }
  if (!model.isValid())
    object.fail(QObject::tr("the model is empty; give a nugget or a structure"));
  authorize(object, model);
  return model;
}

}  // namespace orvenal
