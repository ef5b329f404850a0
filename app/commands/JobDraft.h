#pragma once

#include "app/study/Job.h"

#include <QJsonObject>
#include <QMap>
#include <QString>

namespace orvenal {

/// Whether a file is a job by its name: its ending is .json or .jsonc.
bool isJobFile(const QString &file);

/// A job in the making: that of a file, or none but a data file, with the members that options set.
///
/// What is set is JSON, and only the reader of jobs reads it; so options and jobs cannot differ.
/// Names of files in options are relative to the current folder.
class JobDraft
{
public:
  /// The job of a file. One that holds a table instead is told from a damaged job.
  static JobDraft ofJob(const QString &path);

  /// A job that names its data and nothing else.
  static JobDraft ofData(const QString &path);

  bool isOfData() const { return _text.isNull(); }

  QJsonValue get(const QString &path) const;
  bool has(const QString &path) const { return !get(path).isUndefined(); }

  /// Whether an option has set a member, or something within it.
  bool isGiven(const QString &path) const;

  /// The option that has set a member; empty if none has.
  QString getOrigin(const QString &path) const { return _origins.value(path); }

  /// A member that the option `origin` ("--radius") sets; an undefined value removes it.
  void set(const QString &path, const QJsonValue &value, const QString &origin);

  /// The assignment "PATH=VALUE"; a value is JSON, or else a text. null removes the member.
  void assign(const QString &text);

  /// A member that nobody has to give.
  void setDefault(const QString &path, const QJsonValue &value);

  /// Leaves out all outputs of the job but those of the keys.
  void keepOutputs(const QStringList &keys);

  /// The name of a file as an option gives it, as the job has to name it.
  QString toJobPath(const QString &file) const;

  /// The table of the samples, and the variables if there are any: what can be known before the
  /// other parts are read.
  Job readData() const;

  /// The job. Errors of a member that an option set, or could set where there is no job file, name
  /// the option.
  Job read() const;

  QByteArray getText() const;

private:
  JobDraft(const QString &path, const QByteArray &text, const QJsonObject &root);

  [[noreturn]] void _fail(const class JobError &error) const;
  QString _findOption(const QString &path) const;

  QString _path;
  QByteArray _text;  ///< of the job file; null without one
  QJsonObject _root;
  bool _isChanged = false;
  QMap<QString, QString> _origins;  ///< options by the members that they set
};

}  // namespace orvenal
