#include "basic/base/NbbHtml.h"

#include "basic/base/NbbHtmlTable.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

namespace {

/// Elements of a table in order, as "tag[colspan]:text"; reading fails on what is not well formed.
QStringList cellsOf(const QString &html)
{
  QStringList cells;
  QXmlStreamReader reader(html);
  while (!reader.atEnd()) {
    if (reader.readNext() != QXmlStreamReader::StartElement)
      continue;
    const QString tag = reader.name().toString();
    if (tag == QLatin1String("tr"))
      cells.append(QStringLiteral("tr"));
    if (tag != QLatin1String("td") && tag != QLatin1String("th"))
      continue;
    const QString span = reader.attributes().value(QLatin1String("colspan")).toString();
    const QString text = reader.readElementText(QXmlStreamReader::IncludeChildElements);
    cells.append(tag + span + ':' + text);
  }
  EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString() << html.toStdString();
  return cells;
}

}  // namespace

TEST(NbbHtml, EscapesTextAndComesBack)
{
  const QString hostile = QStringLiteral("<script>alert(\"1 & 2\")</script>\nline 2 &amp;");
  const QString html = NbbHtml::toHtml(hostile);
  EXPECT_FALSE(html.contains(QStringLiteral("<script")));
  EXPECT_EQ(NbbHtml::toPlainText(html), hostile);
  EXPECT_EQ(NbbHtml::toPlainText(NbbHtml::bold(NbbHtml::toHtml(QStringLiteral("a < b")))),
            QStringLiteral("a < b"));
  EXPECT_EQ(NbbHtml::title(QStringLiteral("A & B"), 9), QStringLiteral("<h6>A &amp; B</h6>"));
  EXPECT_EQ(NbbHtml::reportInteger(QStringLiteral("Samples"), 1234567890123),
            QStringLiteral("Samples: 1234567890123<br>"));
  EXPECT_TRUE(NbbHtml::textWarning(QStringLiteral("x")).contains(NbbHtml::WarningColor));
}

TEST(NbbHtmlTable, RowsHeadersAndSpansMakeARectangle)
{
  NbbHtmlTable table(QStringLiteral("Statistics"));
  table.setSuperColumnHeader({QStringLiteral("all")}, {2});
  table.setColumnHeader({QStringLiteral("Cu"), QStringLiteral("Au")});
  table.setRowHeader({QStringLiteral("min"), QStringLiteral("max")});
  table.addRow({QStringLiteral("<1"), QStringLiteral("2")});
  table.addRow({QStringLiteral("3")});
  table.addSpanRow(QStringLiteral("end"));

  const QStringList expected = {
      QStringLiteral("tr"),     QStringLiteral("td:"),    QStringLiteral("th2:all"),
      QStringLiteral("tr"),     QStringLiteral("td:"),    QStringLiteral("th:Cu"),
      QStringLiteral("th:Au"),  QStringLiteral("tr"),     QStringLiteral("th:min"),
      QStringLiteral("td:<1"),  QStringLiteral("td:2"),   QStringLiteral("tr"),
      QStringLiteral("th:max"), QStringLiteral("td:3"),   QStringLiteral("td:"),
      QStringLiteral("tr"),     QStringLiteral("td3:end")};
  EXPECT_EQ(cellsOf(table.toHtml()), expected);
}

TEST(NbbHtmlTable, ColumnsAreAddedBehindTheWidestRow)
{
  NbbHtmlTable table;
  table.addRow({QStringLiteral("a")});
  NbbHtmlTable::CellProperties wide;
  wide.columnSpan = 2;
  table.addRow({QStringLiteral("b")}, wide);
  table.addColumn(QStringLiteral("H"),
                  {QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3")});

  EXPECT_EQ(table.getNRows(), 3);
  EXPECT_EQ(table.getNColumns(), 3);
  const QStringList expected = {
      QStringLiteral("tr"),    QStringLiteral("th:"),  QStringLiteral("th:"),
      QStringLiteral("th:H"),  QStringLiteral("tr"),   QStringLiteral("td:a"),
      QStringLiteral("td:"),   QStringLiteral("td:1"), QStringLiteral("tr"),
      QStringLiteral("td2:b"), QStringLiteral("td:2"), QStringLiteral("tr"),
      QStringLiteral("td:"),   QStringLiteral("td:"),  QStringLiteral("td:3")};
  EXPECT_EQ(cellsOf(table.toHtml()), expected);

  table.emptyTable();
  EXPECT_TRUE(table.isEmpty());
  EXPECT_EQ(table.getNColumns(), 0);
}

TEST(NbbHtmlTable, CellsKeepTheirPropertiesAndAlignment)
{
  NbbHtmlTable table;
  table.setAlignCell(NbbHtmlTable::ALIGN_RIGHT);
  table.setAlignCell(0, NbbHtmlTable::ALIGN_LEFT);
  NbbHtmlTable::CellProperties properties;
  properties.isHtml = true;
  properties.isBold = true;
  properties.backgroundColor = QStringLiteral("red\" onclick=\"x");
  table.addRow({QStringLiteral("plain"), QStringLiteral("<i>x</i>")},
               QVector<NbbHtmlTable::CellProperties>{NbbHtmlTable::CellProperties(), properties});

  const QString html = table.toHtml();
  EXPECT_TRUE(html.contains(QStringLiteral("<td style=\"text-align:left\">plain</td>")));
  EXPECT_TRUE(html.contains(QStringLiteral("<b><i>x</i></b>")));
  EXPECT_TRUE(html.contains(QStringLiteral("text-align:right;background-color:red&quot;")));
  EXPECT_FALSE(html.contains(QStringLiteral("\" onclick")));
}
