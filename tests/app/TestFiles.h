#pragma once

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

/// Files and jobs for the tests of the program.
namespace apptest {

/// A folder that lives as long as the object.
class Folder
{
public:
  QString path(const QString &name) const { return _folder.filePath(name); }

  QString write(const QString &name, const QByteArray &content) const
  {
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    return path(name);
  }

  /// Names of all files and folders below, hidden ones too, sorted.
  QStringList list(const QString &below = QString()) const
  {
    QStringList names;
    const QDir folder(path(below));
    for (const QString &name : folder.entryList(
             QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name)) {
      const QString full = below.isEmpty() ? name : below + '/' + name;
      names << full;
      if (QFileInfo(path(full)).isDir())
        names << list(full);
    }
    return names;
  }

private:
  QTemporaryDir _folder;
};

inline QByteArray readFile(const QString &path)
{
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
  return file.readAll();
}

/// `value` put at a place of a JSON value: "model.structures.0.sill". An undefined value removes.
inline QJsonValue withValue(const QJsonValue &root, const QStringList &place,
                            const QJsonValue &value)
{
  if (place.isEmpty())
    return value;
  const QString &first = place.first();
  if (root.isArray()) {
    QJsonArray array = root.toArray();
    const int index = first.toInt();
    const QJsonValue element = withValue(array.at(index), place.mid(1), value);
    if (index < array.size())
      array[index] = element;
    else
      array.append(element);
    return array;
  }
  QJsonObject object = root.toObject();
  const QJsonValue member = withValue(object.value(first), place.mid(1), value);
  if (member.isUndefined())
    object.remove(first);
  else
    object.insert(first, member);
  return object;
}

/// The value at a place of a JSON object; undefined when there is none.
inline QJsonValue valueAt(QJsonValue root, const QStringList &place)
{
  for (const QString &key : place)
    root = root.toObject().value(key);
  return root;
}

/// Ordinary kriging of the Meuse samples with a given model, reading its data where they are and
/// writing into `out` beside the job.
class MeuseJob
{
public:
  MeuseJob()
      : _job(QJsonDocument::fromJson(readFile(ORVENAL_EXAMPLES "/meuse/variants/ordinary.json"))
                 .object())
  {
    set("data.file", ORVENAL_EXAMPLES "/meuse/meuse.csv");
    set("grid.mask.file", ORVENAL_EXAMPLES "/meuse/meuse_grid.csv");
    set("output.directory", "out");
    set("output.overwrite", true);
  }

  MeuseJob &set(const QString &place, const QJsonValue &value)
  {
    _job = withValue(_job, place.split('.'), value).toObject();
    return *this;
  }
  MeuseJob &remove(const QString &place) { return set(place, QJsonValue(QJsonValue::Undefined)); }

  QByteArray text() const { return QJsonDocument(_job).toJson(); }

  /// Path of the job, written into the folder.
  QString writeTo(const Folder &folder, const QString &name = "job.json") const
  {
    return folder.write(name, text());
  }

private:
  QJsonObject _job;
};

inline QJsonValue json(const char *text)
{
  return QJsonDocument::fromJson(QByteArray("{\"v\":") + text + '}').object().value("v");
}

/// How a process ended, and what it said.
struct Outcome
{
  int exitCode = -1;
  std::string output;
  std::string errors;
};

/// Runs the program.
inline Outcome runProgram(const QStringList &arguments, const QString &folder = QDir::tempPath())
{
  QProcess program;
  program.setWorkingDirectory(folder);
  program.start(ORVENAL_PROGRAM, arguments);
  EXPECT_TRUE(program.waitForFinished(300000));
  EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
  return {program.exitCode(), program.readAllStandardOutput().toStdString(),
          program.readAllStandardError().toStdString()};
}

}  // namespace apptest
