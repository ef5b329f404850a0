#pragma once

#include <QList>
#include <QString>

namespace orvenal {

/// A page of help that is not about a command.
struct HelpTopic
{
  QString name;
  QString summary;  ///< one line of the list of topics
};

QList<HelpTopic> helpTopics();

/// Whether a word names a topic, or a key of the job: "formats", "job", "job.kriging".
bool isHelpTopic(const QString &name);

/// The page of a topic for a terminal, or as Markdown. A key that a job has not is a UsageError.
QString helpText(const QString &topic);
QString helpMarkdown(const QString &topic);

}  // namespace orvenal
