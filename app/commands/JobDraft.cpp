#include "app/commands/JobDraft.h"

#include "app/base/UsageError.h"
#include "app/commands/JobOptions.h"
#include "app/io/InputFile.h"
#include "app/io/TableReader.h"
#include "app/job/DataReader.h"
#include "app/job/JobError.h"
#include "app/job/JobObject.h"
#include "app/job/JobReader.h"
#include "app/job/JsonPath.h"
#include "app/job/ModelFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QObject>

#include <algorithm>

namespace orvenal {

namespace {

/// A value as the command line gives it: JSON, or else the text itself.
QJsonValue toValue(const QString &text)
{
  const QJsonArray list = QJsonDocument::fromJson('[' + text.toUtf8() + ']').array();
  return list.size() == 1 ? list.first() : QJsonValue(text);
}

/// Whether a file that is no job holds a table, of several columns if it is a text.
bool isTable(const QString &path)
{
  QFile file(path);
  if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
    return false;
  const QByteArray head = file.read(1024).trimmed();
  if (head.startsWith('{') || head.startsWith('/'))
    return false;
  try {
    return TableReader::listLayers(path, path, TableFormat()).size() > 1 ||
           TableReader::open(path, path, TableFormat())->getColumns().size() > 1;
  } catch (const NbeUserError &) {
    return false;
  }
}

[[noreturn]] void failTable(const QString &path)
{
  throw UsageError(
      QObject::tr("%1 looks like a table, not a job; for a job to start with: orvenal init %1")
          .arg(path));
}

[[noreturn]] void failModel(const QString &path)
{
  throw UsageError(
      QObject::tr(
          "%1 is a variogram model, not a job; a job names it as model.file, a data file is "
          "kriged with it by --model")
          .arg(path));
}

}  // namespace

bool isJobFile(const QString &file)
{
  return file.endsWith(QLatin1String(".json"), Qt::CaseInsensitive) ||
         file.endsWith(QLatin1String(".jsonc"), Qt::CaseInsensitive);
}

JobDraft JobDraft::ofJob(const QString &path)
{
  try {
    const QByteArray text = readJobText(path);
    const QJsonObject root = parseJobRoot(path, text);
    if (root.contains(QStringLiteral("features")))
      failTable(path);
    if (root.contains(QStringLiteral("structures")) || root.contains(QStringLiteral("nugget")))
      failModel(path);
    return JobDraft(path, text, root);
  } catch (const UsageError &) {
    if (isBinaryModel(path))
      failModel(path);
    if (isTable(path))
      failTable(path);
    throw;
  }
}

JobDraft JobDraft::ofData(const QString &path)
{
  requireInput(path);
  JobDraft draft(QStringLiteral("job.json"), QByteArray(), QJsonObject());
  draft.setDefault(QStringLiteral("title"), QFileInfo(path).completeBaseName());
  draft.setDefault(QStringLiteral("data.file"), path);
  return draft;
}

JobDraft::JobDraft(const QString &path, const QByteArray &text, const QJsonObject &root)
    : _path(path), _text(text), _root(root)
{
}

QJsonValue JobDraft::get(const QString &path) const
{
  return JsonPath::parse(path).get(_root);
}

bool JobDraft::isGiven(const QString &path) const
{
  for (auto origin = _origins.begin(); origin != _origins.end(); ++origin) {
    const bool isPart = isWithin(origin.key(), path);
    if (has(isPart ? origin.key() : path) && (isPart || isWithin(path, origin.key())))
      return true;
  }
  return false;
}

void JobDraft::set(const QString &path, const QJsonValue &value, const QString &origin)
{
  _root = JsonPath::parse(path).set(_root, value).toObject();
  _origins.insert(path, origin);
  _isChanged = true;
}

void JobDraft::assign(const QString &text)
{
  const int equals = text.indexOf('=');
  const QString path = text.left(std::max(0, equals)).trimmed();
  if (!JsonPath::parse(path).isValid())
    throw UsageError(QObject::tr("--set: expected PATH=VALUE, such as neighborhood.maximum=32 or "
                                 "model.structures[0].range=500, found \"%1\"")
                         .arg(text));
  const QJsonValue value = toValue(text.mid(equals + 1));
  try {
    set(path, value.isNull() ? QJsonValue(QJsonValue::Undefined) : value,
        QStringLiteral("--set ") + path);
  } catch (const UsageError &error) {
    throw UsageError(QStringLiteral("--set ") + error.getMessage());
  }
}

void JobDraft::setDefault(const QString &path, const QJsonValue &value)
{
  if (has(path))
    return;
  _root = JsonPath::parse(path).set(_root, value).toObject();
  _isChanged = true;
}

void JobDraft::keepOutputs(const QStringList &keys)
{
  if (!get(QStringLiteral("output")).isObject())
    return;
  QJsonObject output = get(QStringLiteral("output")).toObject();
  for (const QString &key : output.keys()) {
    if (!keys.contains(key))
      output.remove(key);
  }
  _root.insert(QStringLiteral("output"), output);
  _isChanged = true;
}

QString JobDraft::toJobPath(const QString &file) const
{
  const bool isRelative = isOfData() && !has(QStringLiteral("output.directory"));
  return isRelative ? file : QDir::current().absoluteFilePath(file);
}

Job JobDraft::readData() const
{
  JobDraft part = *this;
  const QStringList names = {key("data"), key("variable"), key("covariates")};
  for (const QString &name : part._root.keys()) {
    if (!names.contains(name))
      part._root.remove(name);
  }
  Job job;
  job.file = QFileInfo(_path).absoluteFilePath();
  try {
    const JobObject root = JobObject::parse(_path, part.getText(), names);
    orvenal::readData(root, QFileInfo(job.file).absoluteDir(), job);
    if (root.has(key("variable")))
      readVariables(root, job);
  } catch (const JobError &error) {
    _fail(error);
  }
  return job;
}

Job JobDraft::read() const
{
  if (!_isChanged)
    return parseJob(_path, _text);
  try {
    return parseJob(_path, getText());
  } catch (const JobError &error) {
    _fail(error);
  }
}

QByteArray JobDraft::getText() const
{
  return QJsonDocument(_root).toJson();
}

void JobDraft::_fail(const JobError &error) const
{
  const QString option = _findOption(error.getPath());
  if (option.isEmpty())
    throw error;
  if (isOfData() && error.getPath() == QLatin1String("data.file"))
    throw UsageError(error.getReason());
  throw UsageError(
      QStringLiteral("%1: %2").arg(option, error.getReason()) +
      (isOfData() ? QString() : QStringLiteral(" (%1: %2)").arg(_path, error.getPath())));
}

QString JobDraft::_findOption(const QString &path) const
{
  for (auto origin = _origins.begin(); origin != _origins.end(); ++origin) {
    if (isWithin(path, origin.key()))
      return origin.value();
  }
  for (auto origin = _origins.begin(); origin != _origins.end(); ++origin) {
    if (isWithin(origin.key(), path) && origin.value().startsWith(QLatin1String("--set")))
      return origin.value();  // it has made what is wrong
  }
  if (!isOfData())
    return QString();
  for (const JobOption &option : jobOptions()) {
    if (isWithin(path, option.path) || isWithin(option.path, path))
      return QStringLiteral("--") + option.name;
  }
  return path == QLatin1String("data.file") ? path : QString();
}

}  // namespace orvenal
