#include "app/commands/JobReference.h"

#include "app/base/Suggestion.h"
#include "app/base/UsageError.h"
#include "app/console/TextLayout.h"
#include "app/job/JobSchema.h"

#include <QObject>
#include <QRegularExpression>

namespace orvenal {

namespace {

QString code(const QString &text)
{
  return '`' + text + '`';
}

/// "`variable`, `covariates[]`: a variable of the samples"
QString headingOf(const JobSection &section)
{
  QStringList paths;
  for (const QString &path : section.paths) {
    if (!path.isEmpty())
      paths << code(path);
  }
  return paths.isEmpty() ? section.title
                         : paths.join(QStringLiteral(", ")) + QStringLiteral(": ") + section.title;
}

/// A paragraph between blank lines; nothing for an empty one.
QString paragraph(const QString &text)
{
  return text.isEmpty() ? QString() : text + QStringLiteral("\n\n");
}

/// A text inside a table, where a bar would end its cell.
QString cell(QString text)
{
  return text.replace('|', QLatin1String("\\|"));
}

QString tableOf(const JobSection &section)
{
  QString table = QObject::tr("| key | value | meaning | default |\n|---|---|---|---|\n");
  for (const JobKey &key : section.keys)
    table += QStringLiteral("| %1 | %2 | %3 | %4 |\n")
                 .arg(code(key.name), cell(key.value), cell(key.meaning), cell(key.fallback));
  return table;
}

QString keyText(const QString &name, const JobKey &key)
{
  const QString head = QStringLiteral("%1  (%2)").arg(name, key.value);
  QString meaning = key.meaning + '.';
  if (!key.fallback.isEmpty())
    meaning += key.fallback == QObject::tr("needed")
                   ? QObject::tr(" Needed.")
                   : QObject::tr(" Default: %1.").arg(key.fallback);
  return TextLayout::wrapped(TextLayout::plain(head), 6, 2) + '\n' +
         TextLayout::wrapped(TextLayout::plain(meaning), 6, 6) + '\n';
}

QString sectionText(const JobSection &section)
{
  QString text =
      TextLayout::wrapped(TextLayout::plain(headingOf(section)), 2, 0) + QStringLiteral("\n\n");
  if (!section.description.isEmpty())
    text += TextLayout::page(section.description) + QStringLiteral("\n\n");
  for (const JobKey &key : section.keys)
    text += keyText(key.name, key);
  if (!section.notes.isEmpty())
    text += '\n' + TextLayout::page(section.notes) + '\n';
  return text;
}

/// A text without the ends of its last lines; the beginning may be indented.
QString withoutEnd(QString text)
{
  while (text.endsWith('\n'))
    text.chop(1);
  return text;
}

/// A path without the marks of lists and their numbers.
QString withoutIndices(QString path)
{
  static const QRegularExpression index(QStringLiteral("\\[\\d*\\]"));
  return path.remove(index);
}

QString keyPath(const QString &sectionPath, const QString &name)
{
  return withoutIndices(sectionPath.isEmpty() ? name : sectionPath + '.' + name);
}

/// The keys at a path and below it that have no section of their own.
QString keysAt(const QString &path, QStringList &paths)
{
  QString text;
  for (const JobSection &section : JobSchema::get().getSections()) {
    for (const QString &sectionPath : section.paths) {
      for (const JobKey &key : section.keys) {
        const QString found = keyPath(sectionPath, key.name);
        paths << found;
        if (found == path || found.startsWith(path + '.'))
          text += keyText(found, key);
      }
    }
  }
  return text;
}

}  // namespace

QString jobKeysMarkdown()
{
  QString text;
  for (const JobSection &section : JobSchema::get().getSections())
    text += paragraph("### " + headingOf(section)) + paragraph(section.description) +
            paragraph(tableOf(section).trimmed()) + paragraph(section.notes);
  return text;
}

QString jobKeysText(const QString &path)
{
  const QString wanted = withoutIndices(path);
  QStringList texts;
  for (const JobSection &section : JobSchema::get().getSections()) {
    for (const QString &sectionPath : section.paths) {
      if (wanted.isEmpty() || withoutIndices(sectionPath) == wanted) {
        texts << sectionText(section);
        break;
      }
    }
  }
  if (!texts.isEmpty())
    return withoutEnd(texts.join('\n'));
  QStringList paths;
  const QString text = keysAt(wanted, paths);
  if (text.isEmpty())
    throw UsageError(QObject::tr("a job has no key \"%1\"%2\nSee: orvenal help job")
                         .arg(path, didYouMean(wanted, paths)));
  return withoutEnd(text);
}

}  // namespace orvenal
