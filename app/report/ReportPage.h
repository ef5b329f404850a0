#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

class NbbHtmlTable;

namespace orvenal {

/// Pieces of a report in HTML; texts are plain and are escaped.
namespace ReportPage {

using Rows = QVector<QPair<QString, QString>>;

QString paragraph(const QString &text, const QString &cssClass = QString());

/// A table that can be moved sideways where the page is too narrow for it.
QString scrolling(const NbbHtmlTable &table);

/// A name and its value in each row.
QString rowsTable(const Rows &rows);

/// A table whose first row is its header.
QString headedTable(const QList<QStringList> &rows);

/// A picture (PNG) with its caption, which is numbered; nothing without a picture. `seen` says what
/// is to be seen, for those who do not see it.
QString figure(const QByteArray &png, const QString &caption, const QString &seen);

}  // namespace ReportPage

/// An HTML page of sections with their contents at its top. It loads nothing from elsewhere.
class ReportSections
{
public:
  explicit ReportSections(const QString &title) : _title(title) {}

  void add(const QString &id, const QString &title, const QString &content);

  /// The page; `lead` stands below its title, and the contents behind it.
  QByteArray toHtml(const QString &lead) const;

private:
  struct Section
  {
    QString id;
    QString title;
    QString content;
  };

  QString _contents() const;

  QString _title;
  QVector<Section> _sections;
};

}  // namespace orvenal
