#pragma once

#include "app/job/Conventions.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <limits>
#include <vector>

namespace orvenal {

/// A key of a job as text.
inline QString key(const char *name)
{
  return QString::fromLatin1(name);
}

/// An object of a job file that knows its place, and reads its members with their types.
///
/// Every error is a UsageError that names the file and the JSON path of the value
/// ("job.json: model.structures[0].range: ..."). Keys that are not among the known ones are refused
/// at once, with the nearest known one as a suggestion; asking for a key that is not known is a
/// programming error.
class JobObject
{
public:
  /// Parses the text of a job, see parseJobText(). A member "$schema" is passed over.
  static JobObject parse(const QString &file, const QByteArray &text, const QStringList &knownKeys);

  const QString &getFile() const { return _file; }

  /// Path of the object, or of one of its members.
  const QString &getPath() const { return _path; }
  QString getPath(const QString &key) const;

  /// What ranges and angles below this object mean; members have those of the object.
  const Conventions &getConventions() const { return _conventions; }

  /// Reads the member "conventions", which is among the known keys.
  void readConventions();

  bool has(const QString &key) const;

  bool isNumber(const QString &key) const;

  /// Without a fallback the member has to be there.
  QString text(const QString &key) const;
  QString text(const QString &key, const QString &fallback) const;
  QStringList texts(const QString &key) const;

  /// The text of a member that is one of the choices.
  QString choice(const QString &key, const QStringList &choices, const QString &fallback) const;

  /// A finite number, at least `minimum` (above it when it is excluded).
  enum Bound { INCLUDED, EXCLUDED };
  double number(const QString &key, double minimum = std::numeric_limits<double>::lowest(),
                Bound bound = INCLUDED) const;
  std::vector<double> numbers(const QString &key, int minCount, int maxCount,
                              double minimum = std::numeric_limits<double>::lowest(),
                              Bound bound = INCLUDED) const;

  /// A list of n lists of n numbers.
  std::vector<std::vector<double>> matrix(const QString &key, int n) const;

  int integer(const QString &key, int minimum, int maximum) const;
  std::vector<int> integers(const QString &key, int minCount, int maxCount, int minimum,
                            int maximum) const;

  bool flag(const QString &key, bool fallback) const;

  JobObject object(const QString &key, const QStringList &knownKeys) const;
  QList<JobObject> objects(const QString &key, const QStringList &knownKeys) const;

  /// Throws the error of a member, or of the object itself.
  [[noreturn]] void fail(const QString &key, const QString &message) const;
  [[noreturn]] void fail(const QString &message) const;

private:
  JobObject(const QString &file, const QString &path, const QJsonObject &object,
            const QStringList &knownKeys, const Conventions &conventions = Conventions());

  QJsonValue _value(const QString &key) const;
  QJsonArray _array(const QString &key, const QString &expected) const;
  double _toNumber(const QJsonValue &value, const QString &path, double minimum, Bound bound) const;
  int _toInteger(const QJsonValue &value, const QString &path, int minimum, int maximum) const;
  QString _toText(const QJsonValue &value, const QString &path) const;
  [[noreturn]] void _failType(const QString &path, const QString &expected,
                              const QJsonValue &found) const;
  [[noreturn]] void _failAt(const QString &path, const QString &message) const;

  QString _file;
  QString _path;
  QJsonObject _object;
  QStringList _knownKeys;
  Conventions _conventions;
};

}  // namespace orvenal
