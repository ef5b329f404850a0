#include "app/report/ReportPage.h"

#include "app/plot/Picture.h"
#include "basic/base/NbbHtml.h"
#include "basic/base/NbbHtmlTable.h"

#include <QObject>
#include <QtEndian>

namespace orvenal {

namespace {

const char *const style = R"(
:root { color-scheme: light; }
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 62rem; padding: 1rem 1.25rem 3rem; background: #fff;
  color: #1c2733; font: 1rem/1.5 system-ui, "Segoe UI", "DejaVu Sans", sans-serif;
  counter-reset: figure; }
h1 { font-size: 1.7rem; line-height: 1.2; margin: .5rem 0 .25rem; overflow-wrap: anywhere; }
h2 { font-size: 1.2rem; margin: 2rem 0 .5rem; border-bottom: 1px solid #cfd8e3;
  padding-bottom: .2rem; }
h3 { font-size: 1rem; margin: 1.25rem 0 .5rem; }
p { margin: .4rem 0; }
.lead, figcaption { color: #4a5a6a; }
nav ul { display: flex; flex-wrap: wrap; gap: .1rem 1.1rem; list-style: none; margin: .8rem 0;
  padding: .5rem 0; border-top: 1px solid #cfd8e3; border-bottom: 1px solid #cfd8e3; }
nav li { padding: .1rem 0; }
a { color: #00558c; }
figure { margin: 1rem 0; }
figure img { max-width: 100%; height: auto; }
#variograms > figure { max-width: 44rem; }
.maps { display: flex; flex-wrap: wrap; gap: 1rem; margin-top: 1rem; }
.maps figure { flex: 1 1 22rem; margin: 0; }
.maps img { width: 100%; height: auto; }
figcaption { font-size: .85rem; }
figcaption::before { counter-increment: figure; content: "Figure " counter(figure) ". "; }
figure.huge { overflow-x: auto; }
figure.huge img { max-width: none; }
.scroll { overflow-x: auto; margin: .5rem 0; }
#model .scroll td { white-space: nowrap; }
table { border-collapse: collapse; font-size: .9rem; font-variant-numeric: tabular-nums; }
th, td { padding: .25rem .6rem; border: 1px solid #dbe3ec; vertical-align: top; }
th { font-weight: 600; }
.scroll th[scope="row"] { position: sticky; left: 0; }
pre { overflow-x: auto; background: #f4f7fa; border: 1px solid #dbe3ec; padding: .75rem;
  font: .8rem/1.4 "DejaVu Sans Mono", monospace; }
.warning { border-left: 4px solid #b35900; background: #fff6ec; padding: .4rem .75rem; }
.hash { overflow-wrap: anywhere; font: .75rem "DejaVu Sans Mono", monospace; }
@media screen and (max-width: 40rem) {
  body { padding: .75rem .75rem 2rem; }
  th, td { padding: .2rem .4rem; }
  figure.wide { overflow-x: auto; }
  figure.wide img { max-width: none; width: 44rem; }
}
@media print {
  @page { margin: 15mm; }
  body { max-width: none; padding: 0; font-size: 10pt; }
  nav { display: none; }
  h2, h3 { break-after: avoid; }
  h2 { margin-top: 1.2rem; }
  figure, table, tr { break-inside: avoid; }
  #variograms table { break-inside: auto; }
  figure img, figure.huge img { max-height: 115mm; max-width: 100%; width: auto; }
  .sections figure img { max-height: 190mm; }
  .maps figure { flex-basis: 40%; }
  .maps img { width: 100%; }
  .scroll { overflow: visible; }
  table { font-size: 7.5pt; }
  th, td { padding: .15rem .4rem; }
  pre { white-space: pre-wrap; overflow-wrap: anywhere; font-size: 7.5pt; }
}
)";

/// Width at which a picture has the size of its layout: its header says how many pixels it has.
int shownWidth(const QByteArray &png)
{
  constexpr int place = 16;
  return int(qFromBigEndian<quint32>(png.constData() + place) / pixelsPerUnit);
}

}  // namespace

QString ReportPage::paragraph(const QString &text, const QString &cssClass)
{
  if (text.isEmpty())
    return QString();
  const QString attribute =
      cssClass.isEmpty() ? QString() : QStringLiteral(" class=\"") + cssClass + '"';
  return "<p" + attribute + '>' + NbbHtml::toHtml(text) + "</p>\n";
}

QString ReportPage::scrolling(const NbbHtmlTable &table)
{
  return QStringLiteral("<div class=\"scroll\">\n") + table.toHtml() + QStringLiteral("</div>\n");
}

QString ReportPage::rowsTable(const Rows &rows)
{
  NbbHtmlTable table;
  QStringList names;
  for (const auto &row : rows) {
    names << row.first;
    table.addRow({row.second});
  }
  table.setRowHeader(names);
  return scrolling(table);
}

QString ReportPage::headedTable(const QList<QStringList> &rows)
{
  NbbHtmlTable table;
  table.setAlignCell(NbbHtmlTable::ALIGN_RIGHT);
  table.setColumnHeader(rows.first());
  for (const QStringList &row : rows.mid(1))
    table.addRow(row);
  return scrolling(table);
}

QString ReportPage::figure(const QByteArray &png, const QString &caption, const QString &seen)
{
  if (png.isEmpty())
    return QString();
  constexpr int wide = 800;   // one with several plot areas can be moved on a narrow screen
  constexpr int huge = 1150;  // and one that would be too small on the page on any
  const int width = shownWidth(png);
  return QStringLiteral("<figure%1><img width=\"%2\" alt=\"")
             .arg(width > huge   ? QStringLiteral(" class=\"wide huge\"")
                  : width > wide ? QStringLiteral(" class=\"wide\"")
                                 : QString(),
                  QString::number(width)) +
         NbbHtml::toHtml(seen) + QStringLiteral("\" src=\"data:image/png;base64,") +
         QString::fromLatin1(png.toBase64()) + QStringLiteral("\"><figcaption>") +
         NbbHtml::toHtml(caption) + QStringLiteral("</figcaption></figure>\n");
}

void ReportSections::add(const QString &id, const QString &title, const QString &content)
{
  _sections.append({id, title, content});
}

QString ReportSections::_contents() const
{
  QString html =
      QStringLiteral("<nav aria-label=\"%1\"><ul>\n").arg(NbbHtml::toHtml(QObject::tr("Contents")));
  for (const Section &section : _sections)
    html += QStringLiteral("<li><a href=\"#") + section.id + QStringLiteral("\">") +
            NbbHtml::toHtml(section.title) + QStringLiteral("</a></li>\n");
  return html + QStringLiteral("</ul></nav>\n");
}

QByteArray ReportSections::toHtml(const QString &lead) const
{
  QString html = QStringLiteral(
                     "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n"
                     "<meta charset=\"utf-8\">\n"
                     "<meta name=\"viewport\" "
                     "content=\"width=device-width, initial-scale=1\">\n<title>") +
                 NbbHtml::toHtml(_title) + QStringLiteral("</title>\n<style>") +
                 QLatin1String(style) + QStringLiteral("</style>\n</head>\n<body>\n") +
                 NbbHtml::title(_title, 1) + '\n' + lead + _contents();
  for (const Section &section : _sections)
    html += QStringLiteral("<section id=\"") + section.id + QStringLiteral("\">\n") +
            NbbHtml::title(section.title, 2) + '\n' + section.content +
            QStringLiteral("</section>\n");
  html += QStringLiteral("</body>\n</html>\n");
  return html.toUtf8();
}

}  // namespace orvenal
