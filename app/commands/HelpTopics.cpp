#include "app/commands/HelpTopics.h"

#include "app/base/Documents.h"
#include "app/base/UsageError.h"
#include "app/commands/JobReference.h"
#include "app/console/TextLayout.h"
#include "app/job/JobSchema.h"

#include <QObject>

namespace orvenal {

namespace {

QString jobName()
{
  return QStringLiteral("job");
}

QString schemaName()
{
  return QStringLiteral("schema");
}

/// Topics that are chapters of the page on jobs, and their headings there.
struct Chapter
{
  const char *topic;
  const char *heading;
};
constexpr Chapter chapters[] = {
    {"conventions", "Conventions"}, {"formats", "Files"}, {"exit-codes", "Exit codes"}};

QString jobPage()
{
  return QString::fromUtf8(readDocument(QStringLiteral("job.in.md")))
      .replace(QLatin1String("@KEYS@\n"), jobKeysMarkdown());
}

/// A chapter of the page, with its heading.
QString chapterOf(const QString &topic)
{
  for (const Chapter &chapter : chapters) {
    if (topic != QLatin1String(chapter.topic))
      continue;
    const QString heading = "\n## " + QString::fromLatin1(chapter.heading) + '\n';
    const QString text = jobPage().section(heading, 1);
    return heading.mid(1) + text.section(QStringLiteral("\n## "), 0, 0).trimmed().prepend('\n');
  }
  throw UsageError(QObject::tr("there is no topic \"%1\"").arg(topic));
}

QString resultsName()
{
  return QStringLiteral("results");
}

QString resultsPage()
{
  return QString::fromUtf8(readDocument(QStringLiteral("results.md"))).trimmed();
}

QString schemaText()
{
  return QString::fromUtf8(JobSchema::get().getText()).trimmed();
}

}  // namespace

QList<HelpTopic> helpTopics()
{
  return {{jobName(), QObject::tr("the job file; job.KEY for a part of it, such as job.kriging")},
          {QStringLiteral("conventions"), QObject::tr("angles, axes and ranges")},
          {QStringLiteral("formats"), QObject::tr("files that are read and written")},
          {schemaName(), QObject::tr("the JSON schema of jobs, for editors")},
          {resultsName(), QObject::tr("what --json prints")},
          {QStringLiteral("exit-codes"), QObject::tr("what the program returns")}};
}

bool isHelpTopic(const QString &name)
{
  for (const HelpTopic &topic : helpTopics()) {
    if (name == topic.name)
      return true;
  }
  return name.startsWith(jobName() + '.');
}

QString helpText(const QString &topic)
{
  if (topic == schemaName())
    return schemaText();
  if (topic == resultsName())
    return TextLayout::page(resultsPage());
  if (topic == jobName()) {
    const QString page = jobPage();
    const QString before = page.section(QStringLiteral("\n### "), 0, 0);
    return TextLayout::page(before) + QStringLiteral("\n\n") + jobKeysText(QString()) +
           QObject::tr("\n\nSee also: orvenal help formats, orvenal help exit-codes");
  }
  if (topic.startsWith(jobName() + '.'))
    return jobKeysText(topic.mid(jobName().size() + 1));
  return TextLayout::page(chapterOf(topic));
}

QString helpMarkdown(const QString &topic)
{
  if (topic == schemaName())
    return schemaText();
  if (topic == resultsName())
    return resultsPage();
  if (topic == jobName())
    return jobPage().trimmed();
  if (topic.startsWith(jobName() + '.'))
    throw UsageError(QObject::tr("--markdown gives whole topics: orvenal help --markdown job"));
  return chapterOf(topic);
}

}  // namespace orvenal
