#include "app/console/TextTable.h"

#include <gtest/gtest.h>

using namespace orvenal;

TEST(TextTable, AlignsLettersOfAnyWidth)
{
  // Chinese letters take two columns each, a combining accent none.
  EXPECT_EQ(shownWidth(QString::fromUtf8("锌 ζ")), 4);
  EXPECT_EQ(shownWidth(QString::fromUtf8("e\u0301")), 1);
  const QString table =
      alignedColumns({{QString(), "mean"}, {QString::fromUtf8("锌含量"), "1"}, {"zinc", "20"}}, 2);
  EXPECT_EQ(table, QString::fromUtf8("        mean\n锌含量     1\nzinc      20"));
}

TEST(TextTable, ShortensInTheMiddle)
{
  EXPECT_EQ(shortened("log zinc [log(mg/kg)]", 30), "log zinc [log(mg/kg)]");
  const QString name = QString::fromUtf8("Concentration en zinc (锌含量锌含量) totale [mg/kg]");
  for (const int width : {10, 25, 40}) {
    const QString text = shortened(name, width);
    EXPECT_LE(shownWidth(text), width);
    EXPECT_GE(shownWidth(text), width - 1);
    EXPECT_TRUE(text.startsWith("Con"));
    EXPECT_TRUE(text.endsWith("kg]"));
  }
}
