#include "basic/base/NbbHtml.h"

#include <QRegularExpression>

#include <algorithm>

const QString NbbHtml::WarningColor = QStringLiteral("#b35900");
const QString NbbHtml::ErrorColor = QStringLiteral("#b00020");
const QString NbbHtml::Table::HeaderColor = QStringLiteral("#e6ecf2");

namespace {

const QLatin1String GREEN("#1b7f3b");

}

QString NbbHtml::toHtml(const QString &text)
{
  QString html = text.toHtmlEscaped();
  html.replace(QLatin1String("\r\n"), QLatin1String("\n"));
  html.replace('\n', QLatin1String("<br>"));
  return html;
}

QString NbbHtml::toPlainText(const QString &html)
{
  static const QRegularExpression lineEnds(
      QStringLiteral("<br\\s*/?>|</(?:p|div|tr|li|h[1-6])\\s*>"),
      QRegularExpression::CaseInsensitiveOption);
  static const QRegularExpression tags(QStringLiteral("</?[A-Za-z][^>]*>|<!--.*?-->"),
                                       QRegularExpression::DotMatchesEverythingOption);
  QString text = html;
  text.replace(lineEnds, QStringLiteral("\n"));
  text.remove(tags);
  text.replace(QLatin1String("&nbsp;"), QLatin1String(" "));
  text.replace(QLatin1String("&lt;"), QLatin1String("<"));
  text.replace(QLatin1String("&gt;"), QLatin1String(">"));
  text.replace(QLatin1String("&quot;"), QLatin1String("\""));
  text.replace(QLatin1String("&#39;"), QLatin1String("'"));
  text.replace(QLatin1String("&amp;"), QLatin1String("&"));  // last: its result is plain text
  return text;
}

QString NbbHtml::title(const QString &text, int level)
{
  const QString tag = QStringLiteral("h%1").arg(std::clamp(level, 1, 6));
  return QStringLiteral("<%1>%2</%1>").arg(tag, toHtml(text));
}

QString NbbHtml::bold(const QString &html)
{
  return QStringLiteral("<b>") + html + QStringLiteral("</b>");
}

QString NbbHtml::color(const QString &html, const QString &color)
{
  return QStringLiteral("<span style=\"color:%1\">").arg(color.toHtmlEscaped()) + html +
         QStringLiteral("</span>");
}

QString NbbHtml::textGreen(const QString &html)
{
  return color(html, GREEN);
}

QString NbbHtml::textWarning(const QString &html)
{
  return color(html, WarningColor);
}

QString NbbHtml::emptyLine()
{
  return QStringLiteral("<br>");
}

QString NbbHtml::reportInteger(const QString &label, qint64 value)
{
  return QStringLiteral("%1: %2<br>").arg(toHtml(label), QString::number(value));
}
