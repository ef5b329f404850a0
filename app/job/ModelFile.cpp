#include "app/job/ModelFile.h"

#include "app/job/JobObject.h"
#include "app/job/JobText.h"
#include "app/job/ModelJson.h"
#include "app/job/ModelReader.h"
#include "basic/error/NbeUserError.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmVModel.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QObject>

namespace orvenal {

namespace {

const QByteArray magic("\x89ORVMDL\n", 8);
constexpr quint32 currentVersion = 1;
constexpr int hashSize = 32;
constexpr int headSize = 8 + 4 + 8 + hashSize;
constexpr qint64 largestFile = 256 << 20;

QByteArray hashOf(const QByteArray &bytes)
{
  return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

QJsonObject toJson(const NgmVModel &model, int nDimensions)
{
  QJsonObject object = modelToJson(model, nDimensions);
  object.insert(QStringLiteral("dimensions"), nDimensions);
  return object;
}

/// The stream of a model does not say for how many dimensions it is.
QByteArray toBinary(const NgmVModel &model, int nDimensions)
{
  QByteArray body;
  QDataStream bodyStream(&body, QIODevice::WriteOnly);
  bodyStream << quint32(nDimensions);
  model.serialize(bodyStream);
  QByteArray bytes = magic;
  QDataStream stream(&bytes, QIODevice::WriteOnly | QIODevice::Append);
  stream << currentVersion << quint64(body.size());
  return bytes + hashOf(body) + body;
}

QByteArray readAll(const QString &path, const QString &shownName)
{
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
    throw NbeUserError(QObject::tr("%1: cannot be read: %2").arg(shownName, file.errorString()));
  if (file.size() > largestFile)
    throw NbeUserError(QObject::tr("%1: larger than 256 MB; this is not a model").arg(shownName));
  return file.readAll();
}

[[noreturn]] void failDamaged(const QString &shownName, const QString &reason)
{
  throw NbeUserError(QObject::tr("%1: the model is damaged: %2").arg(shownName, reason));
}

NgmVModel fromBinary(const QByteArray &bytes, const QString &shownName)
{
  if (bytes.size() < headSize)
    failDamaged(shownName, QObject::tr("the file is too short"));
  QDataStream head(bytes.mid(magic.size(), 12));
  quint32 version = 0;
  quint64 length = 0;
  head >> version >> length;
  if (version != currentVersion)
    throw NbeUserError(QObject::tr("%1: a model of version %2, which this program does not read")
                           .arg(shownName, QString::number(version)));
  const QByteArray body = bytes.mid(headSize);
  if (quint64(body.size()) != length)
    failDamaged(shownName, QObject::tr("%1 bytes instead of %2")
                               .arg(QString::number(body.size()), QString::number(length)));
  if (hashOf(body) != bytes.mid(headSize - hashSize, hashSize))
    failDamaged(shownName, QObject::tr("its bytes do not have the sum that they should have"));
  NgmVModel model(1);
  QDataStream stream(body);
  quint32 nDimensions = 0;
  stream >> nDimensions;
  if (nDimensions != 2 && nDimensions != 3)
    failDamaged(shownName, QObject::tr("%1 dimensions").arg(nDimensions));
  try {
    model.unserialize(stream);
    model.setContextNDim(int(nDimensions));
  } catch (const NbeError &error) {
    failDamaged(shownName, error.getMessage());
  }
  return model;
}

/// What the text of a model says of its dimensions and variables, without checking it.
struct ModelSize
{
  int nDimensions = 2;
  int nVariables = 1;

  ModelSize(const QString &file, const QByteArray &text)
  {
    const QJsonObject model = parseJobText(file, text).root.toObject();
    QList<QJsonValue> sills = {model.value(QStringLiteral("nugget"))};
    for (const QJsonValue structure : model.value(QStringLiteral("structures")).toArray()) {
      const QJsonObject object = structure.toObject();
      sills << object.value(QStringLiteral("sill"));
      if (object.value(QStringLiteral("ranges")).toArray().size() > 2 ||
          object.contains(QStringLiteral("dip")) || object.contains(QStringLiteral("pitch")))
        nDimensions = 3;
    }
    nDimensions = model.value(QStringLiteral("dimensions")).toInt(nDimensions) > 2 ? 3 : 2;
    for (const QJsonValue &sill : sills)
      nVariables = std::max(nVariables, sill.toArray().size());
  }
};

NgmVModel fromJson(const QByteArray &text, const QString &shownName, int nDimensions,
                   int nVariables)
{
  return readModel(parseModelText(shownName, text), nDimensions, nVariables);
}

bool hasBinaryEnding(const QString &file)
{
  return QFileInfo(file).suffix().toLower() == QLatin1String("bin");
}

/// Whether the bytes are in the binary form; a file that should be and is not is an error.
bool isBinary(const QByteArray &bytes, const QString &shownName)
{
  if (bytes.startsWith(magic))
    return true;
  if (hasBinaryEnding(shownName))
    throw NbeUserError(QObject::tr("%1: not a binary model of this program").arg(shownName));
  return false;
}

}  // namespace

QStringList modelEndings()
{
  return {QStringLiteral("json"), QStringLiteral("bin")};
}

bool isBinaryModel(const QString &path)
{
  QFile file(path);
  return file.open(QIODevice::ReadOnly) && file.read(magic.size()) == magic;
}

QByteArray modelToBytes(const QString &file, const NgmVModel &model, int nDimensions)
{
  return hasBinaryEnding(file) ? toBinary(model, nDimensions)
                               : QJsonDocument(toJson(model, nDimensions)).toJson();
}

NgmVModel readModelFile(const QString &path, const QString &shownName, int nDimensions,
                        int nVariables)
{
  const QByteArray bytes = readAll(path, shownName);
  if (!isBinary(bytes, shownName))
    return fromJson(bytes, shownName, nDimensions, nVariables);
  const NgmVModel model = fromBinary(bytes, shownName);
  if (model.getNVariables() != nVariables)
    throw NbeUserError(
        QObject::tr("%1: the model has %2 variables, the job has %3")
            .arg(shownName, QString::number(model.getNVariables()), QString::number(nVariables)));
  if (model.getContext().getNDimensions() != nDimensions)
    throw NbeUserError(QObject::tr("%1: the model has %2 dimensions, the samples have %3")
                           .arg(shownName, QString::number(model.getContext().getNDimensions()),
                                QString::number(nDimensions)));
  if (!model.isValid())
    throw NbeUserError(QObject::tr("%1: the model is empty").arg(shownName));
  for (int i = 0; i < model.getNStructures(); ++i) {
    const QString type = model.getStructure(i).getType().getLabel();
    if (!structureLabels().contains(type))
      throw NbeUserError(
          QObject::tr("%1: a structure \"%2\" is not for kriging here").arg(shownName, type));
  }
  return model;
}

NgmVModel readModelFile(const QString &path, const QString &shownName)
{
  const QByteArray bytes = readAll(path, shownName);
  if (isBinary(bytes, shownName))
    return fromBinary(bytes, shownName);
  const ModelSize size(shownName, bytes);
  return fromJson(bytes, shownName, size.nDimensions, size.nVariables);
}

NgmVModel modelAsWritten(const NgmVModel &model, int nDimensions)
{
  NgmVModel kept(model);
  kept.removeNullStructures();
  if (!kept.isValid())
    return model;
  const QByteArray text = QJsonDocument(toJson(kept, nDimensions)).toJson();
  return fromJson(text, QObject::tr("model"), nDimensions, model.getNVariables());
}

}  // namespace orvenal
