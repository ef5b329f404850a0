#include "geos/vmodel/NgmVModel.h"

#include "basic/interval/NbiIntervalData.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmVStructFactory.h"

#include <QDataStream>
#include <QObject>

#include <algorithm>
#include <limits>

// Texts and stream of the model.

namespace {

constexpr unsigned int VERSION = 151016;

void writeVector(QDataStream &stream, qint64 n, const double *values)
{
  stream << quint32(n);
  for (qint64 i = 0; i < n; ++i)
    stream << values[i];
}

}  // namespace

QString NgmVModel::briefSummary(int axis, int digits) const
{
  static const char *const axes[] = {"X", "Y", "Z"};
  QStringList items;
  if (hasNugget())
    items << QObject::tr("Nugget");
  for (const auto &structure : _structures)
    items << QObject::tr("%1 [Range(%2)=%3]")
                 .arg(structure->getType().getLabel(), QLatin1String(axes[qBound(0, axis, 2)]),
                      QString::number(structure->getPracticalRanges()[qBound(0, axis, 2)], 'g',
                                      digits));
  return items.join(QStringLiteral(", "));
}

QStringList NgmVModel::summary(bool withDimensions, bool withSills, int digits) const
{
  const QString indent = QStringLiteral("    ");
  QStringList lines;
  if (withDimensions) {
    lines << QObject::tr("- Number of variables    = %1").arg(_nVariables);
    lines << QObject::tr("- Space dimension        = %1").arg(_context.getNDimensions());
    lines << QObject::tr("- Number of covariances  = %1").arg(getNStructures());
  }
  const auto addSills = [&](const NgmMatrix &sills) {
    if (!withSills)
      return;
    if (_nVariables == 1)
      lines << QObject::tr("%1Sill: %2").arg(indent, QString::number(sills(0, 0), 'g', digits));
    else
      lines << QObject::tr("%1Coregionalisation matrix:").arg(indent)
            << sills.toString(-1, digits, QStringLiteral(" "));
  };
  lines << QObject::tr("- Structures:");
  if (hasNugget()) {
    lines << QObject::tr("-1 : Nugget Effect");
    addSills(_nugget);
  }
  for (int k = 0; k < getNStructures(); ++k) {
    lines << QObject::tr("%1 : %2").arg(QString::number(k), getStructureLabel(k));
    lines << getStructure(k).summary(indent);
    addSills(_sills[std::size_t(k)]);
  }
  return lines;
}

QString NgmVModel::debug(int level) const
{
  QString text = QStringLiteral("Variogram Model\n");
  text += QStringLiteral("NB_VARIABLES=%1\n").arg(_nVariables);
  text += QStringLiteral("EFFECTIVE_IRF_DEGREE=%1\n").arg(_effectiveIrfDegree);
  text += QStringLiteral("USE_AT_LEAST_ONE_ROTATION=%1\n").arg(_hasRotation);
  text += QStringLiteral("USE_GLOBAL_ROTATION=%1\n").arg(_hasGlobalRotation);
  text += QStringLiteral("GLOBAL ROTATION\n") + _globalRotation.debug(level);
  const auto coreg = [level](const NgmMatrix &sills) {
    return QStringLiteral("COREG\n") + sills.debug(level);
  };
  text += QStringLiteral("Structure Type= Nugget\n") + coreg(_nugget);
  for (int k = 0; k < getNStructures(); ++k)
    text += getStructure(k).debug(level) + coreg(_sills[std::size_t(k)]);
  return text;
}

QList<unsigned int> NgmVModel::_serializedVersions() const
{
  return {VERSION};
}

unsigned int NgmVModel::_currentSerializedVersion() const
{
  return VERSION;
}

bool NgmVModel::_hasValidFirstVersion() const
{
  return false;
}

void NgmVModel::_serialize(QDataStream &stream) const
{
  stream << quint32(_nVariables) << quint32(getNStructures());
  writeVector(stream, _nugget.getNElements(), _nugget.constElements());
  for (int k = 0; k < getNStructures(); ++k) {
    const NgmAVStruct &structure = getStructure(k);
    stream << structure.getType().getKeyString() << structure.getPracticalScaleFactor();
    writeVector(stream, 3, structure.getAnisotropy().getData());
    structure.getRotation().serialize(stream);
    QVector<double> parameters;
    for (int i = 0; i < structure.getNAuxiliaryParameters(); ++i)
      parameters << structure.getAuxiliaryValue(i);
    stream << quint32(parameters.size());
    if (!parameters.isEmpty())
      writeVector(stream, parameters.size(), parameters.constData());
    const NgmMatrix &sills = _sills[std::size_t(k)];
    writeVector(stream, sills.getNElements(), sills.constElements());
  }
}

void NgmVModel::_unserialize(QDataStream &stream, unsigned int /*version*/)
{
  quint32 nVariables = 0;
  quint32 nStructures = 0;
  stream >> nVariables >> nStructures;
  _checkStream(stream);
  _checkCount(stream, nVariables, 8 * qint64(nVariables), MAXIMUM_VARIABLES);
  // Key, scale, anisotropy, number of parameters and sills; the rotation comes on top.
  const qint64 bytesOfMatrix = 4 + 8 * qint64(nVariables) * nVariables;
  _checkCount(stream, nStructures, 4 + 8 + 28 + 4 + bytesOfMatrix,
              std::numeric_limits<qint32>::max());

  NgmVModel model{int(nVariables)};
  model._context = _context;
  model._nugget = model._readMatrix(stream);
  for (quint32 k = 0; k < nStructures; ++k)
    model._readStructure(stream);
  _checkStream(stream);
  model.setContext(model._context);
  model._validateModel();
  _take(model);
}

void NgmVModel::_readStructure(QDataStream &stream)
{
  QString key;
  double practicalScale = 0.;
  NbgVector3D anisotropy;
  stream >> key >> practicalScale >> anisotropy;
  _checkStream(stream);
  std::unique_ptr<NgmAVStruct> structure =
      NgmVStructFactory::createTemplateVStruct(NgmEVStruct::fromKey(key, NgmEVStruct::UNKNOWN));
  if (!structure)
    _refuse(QObject::tr("unknown structure type"));
  if (!NbbGlobal::isDefined(practicalScale) || practicalScale <= 1e-30)
    _refuse(QObject::tr("invalid range of a structure"));
  if (!anisotropy.isDefined() || anisotropy.minimum() < 0.)
    _refuse(QObject::tr("invalid anisotropy of a structure"));
  NbgRotation rotation;
  rotation.unserialize(stream);

  quint32 nParameters = 0;
  stream >> nParameters;
  _checkStream(stream);
  if (nParameters != quint32(structure->getNAuxiliaryParameters()))
    _refuse(QObject::tr("wrong number of parameters of a structure"));
  const std::vector<double> parameters =
      nParameters > 0 ? _readVector(stream, nParameters) : std::vector<double>();
  for (int i = 0; i < int(nParameters); ++i) {
    const double value = parameters[std::size_t(i)];
    if (!structure->getAuxiliaryBounds(i).isIncluded(value))
      _refuse(QObject::tr("parameter of a structure out of bounds"));
    structure->setAuxiliaryParameter(i, value);
  }
  // After the parameters, on which the ratio of practical range and scale depends.
  structure->_setScaleFactor(practicalScale);
  structure->_matchPracticalScale(practicalScale);
  // Some parameters of shape have a practical range beyond all numbers.
  if (!(structure->getTheoScaleFactor() > 0.) ||
      !NbbGlobal::isDefined(structure->getPracticalScaleFactor()))
    _refuse(QObject::tr("invalid range of a structure"));
  structure->_setAnisotropy(anisotropy);
  structure->setRotation(rotation);
  // The degree of the drift is not part of the stream: at least what the structures need.
  _context.setMaxIrfDegree(std::max(_context.getMaxIrfDegree(), structure->getIRFDegree()));
  _sills.push_back(_readMatrix(stream));
  _structures.push_back(std::move(structure));
}

NgmMatrix NgmVModel::_readMatrix(QDataStream &stream) const
{
  const std::vector<double> values = _readVector(stream, qint64(_nVariables) * _nVariables);
  NgmMatrix matrix(_nVariables, _nVariables, false);
  std::copy(values.begin(), values.end(), matrix.elements());
  if (!matrix.isSymmetrical())
    _refuse(QObject::tr("a matrix is not symmetrical"));
  matrix.setMustBeSymmetrical(true);
  return matrix;
}

std::vector<double> NgmVModel::_readVector(QDataStream &stream, qint64 expected) const
{
  quint32 count = 0;
  stream >> count;
  _checkStream(stream);
  if (count != expected)
    _refuse(QObject::tr("wrong number of values"));
  _checkCount(stream, count, sizeof(double), expected);
  std::vector<double> values(count);
  for (double &value : values) {
    stream >> value;
    if (!NbbGlobal::isDefined(value))
      _refuse(QObject::tr("undefined value"));
  }
  _checkStream(stream);
  return values;
}
