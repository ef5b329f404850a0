#pragma once

#include <QList>

class QDataStream;
class QString;

/// Base of every persistent object: the envelope around its stream (magic number, version) and the
/// rule that a failed read leaves the object as it was.
///
/// serialize() writes magic (quint32), version (quint32) and the content. The stream is set to Qt
/// 5.15, big-endian and double precision for the call and restored afterwards.
class NbbASerializable
{
public:
  virtual ~NbbASerializable();

  /// Writes the object. Fails (NbeError of type STORAGE) when the stream cannot take it.
  void serialize(QDataStream &stream) const;

  /// Reads the object. A bad magic number, an unlisted version, an impossible count or a short
  /// stream is an NbeUserError that names the class and the reason.
  void unserialize(QDataStream &stream);

protected:
  /// Versions that this class can read, oldest first, as yymmdd.
  virtual QList<unsigned int> _serializedVersions() const = 0;

  /// The version that it writes.
  virtual unsigned int _currentSerializedVersion() const = 0;

  virtual void _serialize(QDataStream &stream) const = 0;

  /// Reads the content. Implementations read into temporaries, call _checkStream() and only then
  /// change the object, so that a failed read leaves it unchanged.
  virtual void _unserialize(QDataStream &stream, unsigned int version) = 0;

  /// Carried with each class; streams without magic number are never read.
  virtual bool _hasValidFirstVersion() const = 0;

  /// Name of the class in "Attempting to read a %1 with an older application."; when it is empty, a
  /// newer version is refused like any unlisted one.
  virtual QString _displayName() const;

  static void _serializeMagic(QDataStream &stream);

  /// False when the next word is not the magic number.
  static bool _unserializeMagic(QDataStream &stream);

  static unsigned int _unserializeVersion(QDataStream &stream);

  /// Throws the NbeUserError that names the class and `reason`.
  [[noreturn]] void _refuse(const QString &reason) const;

  /// Refuses when the stream's status is not Ok.
  void _checkStream(const QDataStream &stream) const;

  /// Refuses a count that is negative, above `maximum`, or that needs more bytes than the stream
  /// still holds (`bytesEach` per element). To be called before memory is taken.
  void _checkCount(const QDataStream &stream, qint64 count, qint64 bytesEach, qint64 maximum) const;
};
