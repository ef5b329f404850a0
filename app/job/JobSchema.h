#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

namespace orvenal {

/// What the schema of jobs says of one key. Texts are Markdown of one line.
struct JobKey
{
  QString name;      ///< within its section: "mode", "maps.estimate", "directions[].dip"
  QString value;     ///< "number above 0"
  QString meaning;   ///< ends without a full stop
  QString fallback;  ///< its default, or "needed"
};

/// A part of the job with keys of its own, at one or several places.
struct JobSection
{
  QStringList paths;    ///< "model.structures[]"; empty for the job itself
  QString title;        ///< "a structure of the model"
  QString description;  ///< what stands before the keys, Markdown
  QList<JobKey> keys;
  QString notes;  ///< what stands after them
};

/// The schema of jobs, docs/job.schema.json, as the program carries it.
class JobSchema
{
public:
  static const JobSchema &get();

  /// The text of the file.
  const QByteArray &getText() const { return _text; }

  /// The job itself first; each part follows the one that it is a member of.
  const QList<JobSection> &getSections() const { return _sections; }

private:
  JobSchema();

  QByteArray _text;
  QList<JobSection> _sections;
};

}  // namespace orvenal
