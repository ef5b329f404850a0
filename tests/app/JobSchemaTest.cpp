#include "app/job/JobSchema.h"

#include "TestFiles.h"
#include "app/base/UsageError.h"
#include "app/job/JobReader.h"
#include "app/job/ModelReader.h"
#include "app/job/VariogramReader.h"

#include <QDirIterator>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>

#include <gmock/gmock.h>

using namespace orvenal;
using apptest::json;
using apptest::MeuseJob;
using apptest::withValue;

namespace {

const char *const schemaFile = ORVENAL_EXAMPLES "/../docs/job.schema.json";

/// Checks a list of jobs with a validator that is not ours; a text per job, empty for a valid one.
const char *const validator = R"(
import json, sys, jsonschema
schema = json.load(open(sys.argv[1]))
jsonschema.Draft7Validator.check_schema(schema)
validator = jsonschema.Draft7Validator(schema)
errors = (next(validator.iter_errors(job), None) for job in json.load(sys.stdin))
print(json.dumps([e.message[:200] if e else "" for e in errors]))
)";

QStringList complaintsOf(const QList<QJsonValue> &jobs)
{
  QJsonArray list;
  for (const QJsonValue &job : jobs)
    list.append(job);
  QProcess python;
  python.start("/usr/bin/python3", {"-c", validator, schemaFile});
  python.write(QJsonDocument(list).toJson(QJsonDocument::Compact));
  python.closeWriteChannel();
  EXPECT_TRUE(python.waitForFinished());
  EXPECT_EQ(python.exitCode(), 0) << "is python3-jsonschema installed?\n"
                                  << python.readAllStandardError().constData();
  QStringList complaints;
  for (const QJsonValue &text : QJsonDocument::fromJson(python.readAllStandardOutput()).array())
    complaints << text.toString();
  EXPECT_EQ(complaints.size(), jobs.size());
  return complaints;
}

QJsonObject parse(const QByteArray &text)
{
  return QJsonDocument::fromJson(text).object();
}

/// The jobs of the examples by their files.
QMap<QString, QJsonObject> examples()
{
  QMap<QString, QJsonObject> jobs;
  QDirIterator files(ORVENAL_EXAMPLES, {"*.json"}, QDir::Files, QDirIterator::Subdirectories);
  while (files.hasNext()) {
    const QString file = files.next();
    if (QFileInfo(file).dir().dirName() != "out")
      jobs.insert(file, parse(apptest::readFile(file)));
  }
  EXPECT_GE(jobs.size(), 14);
  return jobs;
}

/// What the reader says of a job in the place of the file; nothing when it takes it.
QString readerError(const QJsonObject &job, const QString &file)
{
  try {
    parseJob(file, QJsonDocument(job).toJson());
  } catch (const UsageError &error) {
    return error.getMessage().section(": ", 1);
  }
  return QString();
}

/// The objects of the schema by their paths, and their keys.
class SchemaKeys
{
public:
  SchemaKeys() : _root(parse(JobSchema::get().getText())) { _visit(_root, QString()); }

  const QMap<QString, QSet<QString>> &get() const { return _keys; }

private:
  QJsonObject _resolved(const QJsonObject &node) const
  {
    if (!node.contains("$ref"))
      return node;
    QJsonObject target = _root;
    for (const QString &key : node.value("$ref").toString().mid(2).split('/'))
      target = target.value(key).toObject();
    return _resolved(target);
  }

  void _visit(const QJsonObject &reference, const QString &path)
  {
    const QJsonObject node = _resolved(reference);
    if (node.contains("items"))
      _visit(node.value("items").toObject(), path + ".0");
    const QJsonObject properties = node.value("properties").toObject();
    if (properties.isEmpty())
      return;
    EXPECT_EQ(node.value("additionalProperties"), QJsonValue(false)) << path.toStdString();
    for (const QString &key : properties.keys()) {
      _keys[path].insert(key);
      _visit(properties.value(key).toObject(), path.isEmpty() ? key : path + '.' + key);
    }
  }

  QJsonObject _root;
  QMap<QString, QSet<QString>> _keys;
};

/// A job in which the reader comes to the object at the path.
MeuseJob jobWith(const QString &path)
{
  MeuseJob job;
  if (path == "fit" || path == "output.fit")
    job.remove("model").set("variogram", json("{}"));
  if (path.startsWith("output.") && !path.startsWith("output.maps") && path != "output.data" &&
      path != "output.variogram")
    job.set(path.section('.', 1, 1), json("{}"));
  if (path == "output.variogram")
    job.set("variogram", json("{}"));
  if (path == "output.maps.sections.0")
    job.set("data.z", "elev")
        .remove("grid.mask")
        .set("grid.origin", json("[178460, 329620, 4]"))
        .set("grid.cell", json("[40, 40, 1]"))
        .set("grid.nodes", json("[78, 104, 3]"))
        .set("output.grid", json("[\"k.csv\"]"));
  if (path.startsWith("kriging.localMeans"))
    job.set("kriging.mode", "simple");
  if (path.startsWith("kriging.externalDrifts"))
    job.set("kriging.mode", "drift");
  if (path == "kriging.superKriging")
    job.set("kriging.block", json("[2, 2]"));
  if (path.startsWith("kriging.collocated"))
    job.set("covariates", json("[{\"column\": \"lead\"}]"))
        .set("model", json("{\"nugget\": [[1, 0], [0, 1]]}"));
  return job;
}

/// Keys that the reader says it knows at a path.
QSet<QString> keysOfReader(const QString &path)
{
  const QString unknown = "qqqqqqqqqqqqqqqqqqqqqqqq";
  MeuseJob job = jobWith(path);
  const QJsonObject object{{unknown, 1}};
  if (path.isEmpty())
    job.set(unknown, 1);
  else if (path.endsWith(".0"))
    job.set(path.chopped(2), QJsonArray{object});
  else
    job.set(path, object);
  const QString error = readerError(parse(job.text()), ORVENAL_EXAMPLES "/meuse/job.json");
  EXPECT_TRUE(error.contains(unknown + ": unknown key; known keys: ")) << error.toStdString();
  QSet<QString> keys;
  QRegularExpression quoted("\"([^\"]+)\"");
  for (auto match = quoted.globalMatch(error); match.hasNext();)
    keys.insert(match.next().captured(1));
  return keys;
}

std::vector<std::string> sorted(const QSet<QString> &texts)
{
  std::vector<std::string> list;
  for (const QString &text : texts)
    list.push_back(text.toStdString());
  std::sort(list.begin(), list.end());
  return list;
}

/// Texts among which a key of the schema may choose.
QStringList choicesAt(const char *place)
{
  QJsonValue node = parse(JobSchema::get().getText());
  for (const QString &key : QString(place).split('.'))
    node = node.toObject().value(key);
  QStringList choices;
  for (const QJsonValue &choice : node.toArray())
    choices << choice.toString();
  return choices;
}

/// A job with one thing that may be wrong.
struct Fault
{
  QString file;
  QString place;
  QJsonObject job;
};

/// Every example with each of its values left out, of another type, or out of bounds, and with one
/// more key in each object; every place once.
class Faults
{
public:
  Faults()
  {
    const QMap<QString, QJsonObject> jobs = examples();
    for (auto job = jobs.begin(); job != jobs.end(); ++job) {
      _file = job.key();
      _job = job.value();
      _visit(_job, {});
    }
  }

  const QList<Fault> &get() const { return _faults; }

private:
  void _add(const QStringList &place, const QJsonValue &value)
  {
    _faults.append({_file, place.join('.'), withValue(_job, place, value).toObject()});
  }

  void _visit(const QJsonValue &value, const QStringList &place)
  {
    QString general = place.join('.') + QString::number(value.type());
    general.replace(QRegularExpression("\\.[0-9]+(?=\\.)"), ".0");
    const bool isKnown = _seen.contains(general);
    _seen.insert(general);
    if (!isKnown && !place.isEmpty())
      _addAt(place, value);
    if (!isKnown && value.isObject())
      _add(place + QStringList("unknownKey"), 1);
    if (value.isArray()) {
      for (int i = 0; i < value.toArray().size(); ++i)
        _visit(value.toArray().at(i), place + QStringList(QString::number(i)));
    }
    const QJsonObject object = value.toObject();
    for (const QString &key : object.keys())
      _visit(object.value(key), place + QStringList(key));
  }

  void _addAt(const QStringList &place, const QJsonValue &value)
  {
    bool isElement = false;
    place.last().toInt(&isElement);
    if (!isElement)
      _add(place, QJsonValue(QJsonValue::Undefined));
    for (const char *other : {"null", "true", "\"text\"", "[]", "{}", "[null]", "[\"text\"]"}) {
      if (json(other) != value)
        _add(place, json(other));
    }
    if (value.isDouble()) {
      for (const double number : {-1., 0., 0.5, 1e5, 1e30})
        _add(place, number);
    }
  }

  QString _file;
  QJsonObject _job;
  QSet<QString> _seen;
  QList<Fault> _faults;
};

/// What the reader says of jobs that a schema cannot refuse: it compares values, counts, and looks
/// at files.
bool isBeyondSchemas(const QString &error)
{
  static const QRegularExpression reasons(
      "there is no file|is not a coordinate reference system|is not between 1 and 1$|"
      "expected \\d+ lists of \\d+ numbers|not symmetric|not positive semi-definite|not "
      "admissible|model is empty|"
      "expected \\d+ (numbers|columns)|missing; it says where the first axis|more than the maximum|"
      "has no parameter|is not in [\\[\\]]|is an input of the job|would be written twice|"
      "too many nodes|outside the grid|two variables named|\"file\" is a folder");
  return reasons.match(error).hasMatch();
}

}  // namespace

TEST(JobSchema, TakesTheExamples)
{
  const QMap<QString, QJsonObject> jobs = examples();
  QList<QJsonValue> values;
  for (const QJsonObject &job : jobs)
    values << job;
  values << QJsonObject{{"data", 1}};
  QStringList complaints = complaintsOf(values);
  EXPECT_FALSE(complaints.takeLast().isEmpty());
  for (int i = 0; i < complaints.size(); ++i)
    EXPECT_EQ(complaints[i].toStdString(), "") << jobs.keys()[i].toStdString();
}

TEST(JobSchema, HasTheKeysOfTheReader)
{
  const SchemaKeys schema;
  EXPECT_GT(schema.get().size(), 20);
  for (auto object = schema.get().begin(); object != schema.get().end(); ++object) {
    SCOPED_TRACE(object.key().toStdString());
    QSet<QString> keys = object.value();
    keys.remove("$schema");  // which the reader passes over
    EXPECT_EQ(sorted(keys), sorted(keysOfReader(object.key())));
  }
}

TEST(JobSchema, HasTheChoicesOfTheReader)
{
  EXPECT_EQ(choicesAt("definitions.structure.properties.type.enum"), structureLabels());
  EXPECT_EQ(choicesAt("properties.variogram.properties.curve.enum"), curveLabels());
  EXPECT_EQ(choicesAt("definitions.variable.properties.transform.enum"), transformNames());
  QStringList extras;
  for (const ExtraOutput &extra : extraOutputs())
    extras << extra.key;
  QStringList extraChoices = choicesAt("properties.kriging.properties.extra.items.enum");
  std::sort(extras.begin(), extras.end());
  std::sort(extraChoices.begin(), extraChoices.end());
  EXPECT_EQ(extraChoices.join(' ').toStdString(), extras.join(' ').toStdString());
}

TEST(JobSchema, RefusesWhatTheReaderRefuses)
{
  const Faults faults;
  QList<QJsonValue> jobs;
  for (const Fault &fault : faults.get())
    jobs << fault.job;
  const QStringList complaints = complaintsOf(jobs);
  int nRefused = 0;
  int nBeyond = 0;
  for (int i = 0; i < jobs.size(); ++i) {
    const Fault &fault = faults.get()[i];
    const QString error = readerError(fault.job, fault.file);
    nRefused += error.isEmpty() ? 0 : 1;
    if (error.isEmpty() == complaints[i].isEmpty())
      continue;
    nBeyond += 1;
    EXPECT_TRUE(complaints[i].isEmpty() && isBeyondSchemas(error))
        << fault.place.toStdString() << " of " << fault.file.toStdString()
        << "\n  reader: " << error.toStdString() << "\n  schema: " << complaints[i].toStdString()
        << "\n  value: "
        << QJsonDocument(QJsonArray{apptest::valueAt(fault.job, fault.place.split('.'))})
               .toJson(QJsonDocument::Compact)
               .constData();
  }
  EXPECT_GT(nRefused, 500);
  EXPECT_LT(nBeyond, nRefused / 5);
}
