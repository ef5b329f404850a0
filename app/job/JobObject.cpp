#include "app/job/JobObject.h"

#include "app/base/Suggestion.h"
#include "app/base/UsageError.h"
#include "app/job/JobError.h"
#include "app/job/JobText.h"
#include "basic/error/NbeAssertion.h"

#include <QJsonArray>
#include <QObject>

#include <cmath>

namespace orvenal {

namespace {

QString elementPath(const QString &path, int index)
{
  return QStringLiteral("%1[%2]").arg(path).arg(index);
}

QString describe(const QJsonValue &value)
{
  switch (value.type()) {
    case QJsonValue::Null:
      return QObject::tr("null");
    case QJsonValue::Bool:
      return value.toBool() ? QObject::tr("true") : QObject::tr("false");
    case QJsonValue::Double:
      return QObject::tr("the number %1").arg(value.toDouble());
    case QJsonValue::String: {
      const QString text = value.toString();
      return text.size() <= 40 ? QObject::tr("the text \"%1\"").arg(text) : QObject::tr("a text");
    }
    case QJsonValue::Array:
      return QObject::tr("a list");
    case QJsonValue::Object:
      return QObject::tr("an object");
    default:
      return QObject::tr("nothing");
  }
}

}  // namespace

JobObject JobObject::parse(const QString &file, const QByteArray &text,
                           const QStringList &knownKeys)
{
  const QJsonValue root = parseJobText(file, text).root;
  if (!root.isObject())
    throw UsageError(QObject::tr("%1: a job is a JSON object, { ... }").arg(file));
  const QString schema = QStringLiteral("$schema");  // names the schema for editors
  QJsonObject object = root.toObject();
  if (object.contains(schema) && !object.take(schema).isString())
    throw UsageError(QObject::tr("%1: %2: expected a text in quotes").arg(file, schema));
  return JobObject(file, QString(), object, knownKeys);
}

JobObject::JobObject(const QString &file, const QString &path, const QJsonObject &object,
                     const QStringList &knownKeys, const Conventions &conventions)
    : _file(file), _path(path), _object(object), _knownKeys(knownKeys), _conventions(conventions)
{
  for (const QString &key : object.keys()) {
    if (knownKeys.contains(key))
      continue;
    QString hint = didYouMean(key, knownKeys);
    if (hint.isEmpty())
      hint = QObject::tr("; known keys: %1").arg(quotedList(knownKeys));
    fail(key, QObject::tr("unknown key") + hint);
  }
}

QString JobObject::getPath(const QString &key) const
{
  return _path.isEmpty() ? key : _path + '.' + key;
}

void JobObject::readConventions()
{
  const QString name = QStringLiteral("conventions");
  if (!has(name))
    return;
  const QString ranges = QStringLiteral("ranges");
  const QString angles = QStringLiteral("angles");
  const QStringList rangeNames = {QStringLiteral("practical"), QStringLiteral("scale")};
  const QStringList angleNames = {QStringLiteral("azimuth"), QStringLiteral("mathematical")};
  const JobObject given = object(name, {ranges, angles});
  _conventions.ranges =
      RangeConvention(rangeNames.indexOf(given.choice(ranges, rangeNames, rangeNames.first())));
  _conventions.angles =
      AngleConvention(angleNames.indexOf(given.choice(angles, angleNames, angleNames.first())));
}

bool JobObject::has(const QString &key) const
{
  if (!_knownKeys.contains(key))
    NBE_FAIL(QStringLiteral("known key"));
  return _object.contains(key);
}

bool JobObject::isNumber(const QString &key) const
{
  return has(key) && _value(key).isDouble();
}

QString JobObject::text(const QString &key) const
{
  return _toText(_value(key), getPath(key));
}

QString JobObject::text(const QString &key, const QString &fallback) const
{
  return has(key) ? text(key) : fallback;
}

QStringList JobObject::texts(const QString &key) const
{
  QStringList texts;
  const QJsonArray array = _array(key, QObject::tr("a list of texts"));
  for (int i = 0; i < array.size(); ++i)
    texts << _toText(array[i], elementPath(getPath(key), i));
  return texts;
}

QString JobObject::choice(const QString &key, const QStringList &choices,
                          const QString &fallback) const
{
  const QString word = text(key, fallback);
  const bool isWord = word.size() > 2;  // a sign is near to any other one
  if (!choices.contains(word))
    fail(key, QObject::tr("\"%1\" is not known%2; allowed: %3")
                  .arg(word, isWord ? didYouMean(word, choices) : QString(), quotedList(choices)));
  return word;
}

double JobObject::number(const QString &key, double minimum, Bound bound) const
{
  return _toNumber(_value(key), getPath(key), minimum, bound);
}

std::vector<double> JobObject::numbers(const QString &key, int minCount, int maxCount,
                                       double minimum, Bound bound) const
{
  const QJsonArray array = _array(key, QObject::tr("a list of numbers"));
  if (array.size() < minCount || array.size() > maxCount)
    fail(key, minCount == maxCount
                  ? QObject::tr("expected %1 numbers, found %2").arg(minCount).arg(array.size())
                  : QObject::tr("expected %1 to %2 numbers, found %3")
                        .arg(minCount)
                        .arg(maxCount)
                        .arg(array.size()));
  std::vector<double> values;
  for (int i = 0; i < array.size(); ++i)
    values.push_back(_toNumber(array[i], elementPath(getPath(key), i), minimum, bound));
  return values;
}

std::vector<std::vector<double>> JobObject::matrix(const QString &key, int n) const
{
  const QString expected = QObject::tr("%1 lists of %1 numbers, one per variable").arg(n);
  const QJsonArray rows = _array(key, expected);
  std::vector<std::vector<double>> values;
  for (int i = 0; i < rows.size(); ++i) {
    const QString path = elementPath(getPath(key), i);
    const QJsonArray row = rows[i].toArray();
    if (rows.size() != n || row.size() != n)
      fail(key, QObject::tr("expected %1").arg(expected));
    values.emplace_back();
    for (int j = 0; j < n; ++j)
      values.back().push_back(
          _toNumber(row[j], elementPath(path, j), std::numeric_limits<double>::lowest(), INCLUDED));
  }
  if (int(values.size()) != n)
    fail(key, QObject::tr("expected %1").arg(expected));
  return values;
}

int JobObject::integer(const QString &key, int minimum, int maximum) const
{
  return _toInteger(_value(key), getPath(key), minimum, maximum);
}

std::vector<int> JobObject::integers(const QString &key, int minCount, int maxCount, int minimum,
                                     int maximum) const
{
  std::vector<int> values;
  const std::vector<double> given = numbers(key, minCount, maxCount);
  for (std::size_t i = 0; i < given.size(); ++i)
    values.push_back(_toInteger(given[i], elementPath(getPath(key), int(i)), minimum, maximum));
  return values;
}

bool JobObject::flag(const QString &key, bool fallback) const
{
  if (!has(key))
    return fallback;
  const QJsonValue value = _value(key);
  if (!value.isBool())
    _failType(getPath(key), QObject::tr("true or false"), value);
  return value.toBool();
}

JobObject JobObject::object(const QString &key, const QStringList &knownKeys) const
{
  const QJsonValue value = _value(key);
  if (!value.isObject())
    _failType(getPath(key), QObject::tr("an object"), value);
  return JobObject(_file, getPath(key), value.toObject(), knownKeys, _conventions);
}

QList<JobObject> JobObject::objects(const QString &key, const QStringList &knownKeys) const
{
  QList<JobObject> objects;
  const QJsonArray array = _array(key, QObject::tr("a list of objects"));
  for (int i = 0; i < array.size(); ++i) {
    const QString path = elementPath(getPath(key), i);
    if (!array[i].isObject())
      _failType(path, QObject::tr("an object"), array[i]);
    objects.append(JobObject(_file, path, array[i].toObject(), knownKeys, _conventions));
  }
  return objects;
}

void JobObject::fail(const QString &key, const QString &message) const
{
  _failAt(getPath(key), message);
}

void JobObject::fail(const QString &message) const
{
  _failAt(_path, message);
}

QJsonValue JobObject::_value(const QString &key) const
{
  if (!has(key))
    fail(key, QObject::tr("missing"));
  return _object.value(key);
}

QJsonArray JobObject::_array(const QString &key, const QString &expected) const
{
  const QJsonValue value = _value(key);
  if (!value.isArray())
    _failType(getPath(key), expected, value);
  return value.toArray();
}

double JobObject::_toNumber(const QJsonValue &value, const QString &path, double minimum,
                            Bound bound) const
{
  if (!value.isDouble())
    _failType(path, QObject::tr("a number"), value);
  const double number = value.toDouble();
  constexpr double largest = 1e30;  // from there on the libraries take a number for undefined
  if (!(std::abs(number) < largest))
    _failAt(path, QObject::tr("%1 is too large").arg(number));
  if (number < minimum && bound == INCLUDED)
    _failAt(path, QObject::tr("%1 is too small, the least is %2").arg(number).arg(minimum));
  if (bound == EXCLUDED && number <= minimum)
    _failAt(path, QObject::tr("must be greater than %1").arg(minimum));
  return number;
}

int JobObject::_toInteger(const QJsonValue &value, const QString &path, int minimum,
                          int maximum) const
{
  const double number = _toNumber(value, path, std::numeric_limits<double>::lowest(), INCLUDED);
  if (number != std::floor(number))
    _failType(path, QObject::tr("a whole number"), value);
  if (number < minimum || number > maximum)
    _failAt(path, QObject::tr("%1 is not between %2 and %3")
                      .arg(number, 0, 'f', 0)
                      .arg(minimum)
                      .arg(maximum));
  return int(number);
}

QString JobObject::_toText(const QJsonValue &value, const QString &path) const
{
  if (!value.isString())
    _failType(path, QObject::tr("a text in quotes"), value);
  return value.toString();
}

void JobObject::_failType(const QString &path, const QString &expected,
                          const QJsonValue &found) const
{
  _failAt(path, QObject::tr("expected %1, found %2").arg(expected, describe(found)));
}

void JobObject::_failAt(const QString &path, const QString &message) const
{
  throw JobError(_file, path, message);
}

}  // namespace orvenal
