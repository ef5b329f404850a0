#include "basic/base/NbbASerializable.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"

#include <QDataStream>
#include <QObject>

#include <algorithm>
#include <typeinfo>

namespace {

/// Gives the stream the settings of our format while it lives.
class StreamSettings
{
public:
  explicit StreamSettings(QDataStream &stream)
      : _stream(stream),
        _version(stream.version()),
        _byteOrder(stream.byteOrder()),
        _precision(stream.floatingPointPrecision())
  {
    stream.setVersion(QDataStream::Qt_5_15);
    stream.setByteOrder(QDataStream::BigEndian);
    stream.setFloatingPointPrecision(QDataStream::DoublePrecision);
  }
  ~StreamSettings()
  {
    _stream.setVersion(_version);
    _stream.setByteOrder(_byteOrder);
    _stream.setFloatingPointPrecision(_precision);
  }
  Q_DISABLE_COPY(StreamSettings)

private:
  QDataStream &_stream;
  int _version;
  QDataStream::ByteOrder _byteOrder;
  QDataStream::FloatingPointPrecision _precision;
};

QString classNameOf(const NbbASerializable &object)
{
  return NbbGlobal::demangle(typeid(object).name());
}

}  // namespace

NbbASerializable::~NbbASerializable() = default;

void NbbASerializable::serialize(QDataStream &stream) const
{
  const StreamSettings settings(stream);
  _serializeMagic(stream);
  stream << quint32(_currentSerializedVersion());
  _serialize(stream);
  if (stream.status() != QDataStream::Ok)
    throw NbeError(NbeError::STORAGE, QObject::tr("Cannot write %1.").arg(classNameOf(*this)));
}

void NbbASerializable::unserialize(QDataStream &stream)
{
  const StreamSettings settings(stream);
  _checkStream(stream);
  const bool hasMagic = _unserializeMagic(stream);
  _checkStream(stream);
  if (!hasMagic)
    _refuse(QObject::tr("bad magic number"));

  const unsigned int version = _unserializeVersion(stream);
  _checkStream(stream);
  const QList<unsigned int> versions = _serializedVersions();
  if (!versions.contains(version)) {
    const QString name = _displayName();
    const auto isOlder = [version](unsigned int known) { return known < version; };
    if (!name.isEmpty() && std::all_of(versions.begin(), versions.end(), isOlder))
      throw NbeUserError(
          QObject::tr("Attempting to read a %1 with an older application.").arg(name));
    _refuse(QObject::tr("unknown version %1").arg(version));
  }

  _unserialize(stream, version);
  _checkStream(stream);
}

QString NbbASerializable::_displayName() const
{
  return QString();
}

void NbbASerializable::_serializeMagic(QDataStream &stream)
{
  stream << NbbGlobal::UI32_MAGIC;
}

bool NbbASerializable::_unserializeMagic(QDataStream &stream)
{
  quint32 magic = 0;
  stream >> magic;
  return magic == NbbGlobal::UI32_MAGIC;
}

unsigned int NbbASerializable::_unserializeVersion(QDataStream &stream)
{
  quint32 version = 0;
  stream >> version;
  return version;
}

void NbbASerializable::_refuse(const QString &reason) const
{
  throw NbeUserError(QObject::tr("Cannot read %1: %2.").arg(classNameOf(*this), reason));
}

void NbbASerializable::_checkStream(const QDataStream &stream) const
{
  switch (stream.status()) {
    case QDataStream::Ok:
      return;
    case QDataStream::ReadPastEnd:
      _refuse(QObject::tr("the stream is too short"));
    default:
      _refuse(QObject::tr("the stream is corrupt"));
  }
}

void NbbASerializable::_checkCount(const QDataStream &stream, qint64 count, qint64 bytesEach,
                                   qint64 maximum) const
{
  _checkStream(stream);
  if (count < 0 || count > maximum)
    _refuse(QObject::tr("bad count %1").arg(count));
  const QIODevice *device = stream.device();
  const bool sizeIsKnown = device && !device->isSequential();
  if (sizeIsKnown && bytesEach > 0 && count > device->bytesAvailable() / bytesEach)
    _refuse(QObject::tr("count %1 is more than the stream holds").arg(count));
}
