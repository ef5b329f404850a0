#include "app/io/CsvReader.h"

#include "TestFiles.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"
#include "support/Random.h"

#include <gmock/gmock.h>

using namespace orvenal;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr double undefined = NbbGlobal::D_FFFF;

std::vector<std::vector<double>> readNumbers(const QString &path, const TableFormat &format)
{
  CsvReader reader(path, "t.csv", format);
  std::vector<std::vector<double>> rows;
  while (reader.next()) {
    rows.emplace_back();
    for (int column = 0; column < reader.getColumns().size(); ++column)
      rows.back().push_back(reader.getNumber(column));
  }
  return rows;
}

std::string errorOf(const QByteArray &content, const TableFormat &format = TableFormat())
{
  const apptest::Folder folder;
  const QString path = folder.write("t.csv", content);
  try {
    readNumbers(path, format);
  } catch (const NbeUserError &error) {
    return error.getMessage().toStdString();
  }
  return "no error";
}

TableFormat format(char separator, char decimal = '.', const QStringList &undefinedTexts = {""})
{
  TableFormat result;
  result.separator = separator;
  result.decimal = decimal;
  result.undefined = undefinedTexts;
  return result;
}

/// With a byte-order mark.
QByteArray toUtf16(const QString &text, bool isBigEndian)
{
  QByteArray bytes;
  for (const QChar character : QChar(0xFEFF) + text) {
    const char high = char(character.unicode() >> 8);
    const char low = char(character.unicode() & 0xFF);
    bytes += isBigEndian ? high : low;
    bytes += isBigEndian ? low : high;
  }
  return bytes;
}

}  // namespace

TEST(CsvReader, ReadsOneTableInAllItsSpellings)
{
  struct Case
  {
    const char *name;
    QByteArray content;
    TableFormat format;
  };
  const Case cases[] = {
      {"comma", "a,b\n1,2\n3,-999\n", format(0, '.', {"-999"})},
      {"no final line end", "a,b\n1,2\n3,-999", format(0, '.', {"-999.0"})},
      {"byte-order mark, Windows line ends",
       "\xEF\xBB\xBF"
       "a;b\r\n1;2\r\n3;\r\n",
       format(0)},
      {"old Macintosh line ends", "a\tb\r1\t2\r3\t\r", format(0)},
      {"tabs, empty lines", "\na\tb\n\n1\t2\n\n3\tNA\n\n", format('\t', '.', {"NA"})},
      {"blanks", "  a   b\n 1  2 \n3 NaN\n", format(0, '.', {"NaN"})},
      {"quotes", "\"a\",\"b\"\n\"1\",\"2\"\n\"3\",\"\"\n", format(0)},
      {"decimal comma", "a;b\n1,0;2,0e0\n3,0;\n", format(0, ',')},
      {"UTF-16, little ends first", toUtf16("a\tb\r\n1\t2\r\n3\t\r\n", false), format(0)},
      {"UTF-16, big ends first", toUtf16("a,b\n1,2\n3,", true), format(0)},
      {"the separator in a line of its own", "SEP=;\r\na;b\r\n1;2\r\n3;\r\n", format(0)},
      {"blanks around fields", " a , b \n 1 ,\t2\n+3, \n", format(',')},
  };
  const apptest::Folder folder;
  for (const Case &c : cases) {
    SCOPED_TRACE(c.name);
    const QString path = folder.write("t.csv", c.content);
    const CsvReader reader(path, "t.csv", c.format);
    EXPECT_EQ(reader.getColumns(), (QStringList{"a", "b"}));
    EXPECT_THAT(readNumbers(path, c.format),
                ElementsAre(ElementsAre(1., 2.), ElementsAre(3., undefined)));
  }
}

TEST(CsvReader, TakesQuotedFieldsAsTheyAre)
{
  const apptest::Folder folder;
  const QString path = folder.write(
      "t.csv", "\"zinc, \"\"total\"\"\",\"two\nlines\",\xE9t\xE9\n1,\"x;y\",3\n\"4\",5,6\n");
  CsvReader reader(path, "t.csv", TableFormat());
  EXPECT_EQ(reader.getColumns(), (QStringList{"zinc, \"total\"", "two\nlines", "\u00E9t\u00E9"}));
  ASSERT_TRUE(reader.next());
  EXPECT_EQ(reader.getField(1), "x;y");
  EXPECT_EQ(reader.getLine(), 3);  // the header takes two
  ASSERT_TRUE(reader.next());
  EXPECT_EQ(reader.getNumber(0), 4.);
  EXPECT_FALSE(reader.next());
}

TEST(CsvReader, NamesFileLineAndColumnOfWhatIsWrong)
{
  struct Case
  {
    QByteArray content;
    TableFormat format;
    std::vector<const char *> parts;
  };
  const Case cases[] = {
      {"", format(0), {"t.csv: the file is empty"}},
      {"\n\n", format(0), {"t.csv: the file has no header line"}},
      {"a,b\n1,2\n3,x1\n", format(0), {"t.csv, line 3: column 2 (\"b\"): \"x1\" is not a number"}},
      {"a,b\n1,2 3\n", format(0), {"line 2", "\"2 3\" is not a number"}},
      {"a,b\n1,\n", format(0, '.', {"NA"}), {"line 2: column 2", "empty"}},
      {"a;b\n1,5;2\n", format(0), {"\"1,5\" is not a number", "\"decimal\": \",\""}},
      {"a;b\n1.5;2\n", format(0, ','), {"\"1.5\" is not a number", "\"decimal\": \".\""}},
      {"a,b\n1,2\n1\n", format(0), {"line 3: 1 fields, but the header has 2 columns"}},
      {"a,b\n1,2,3\n", format(0), {"line 2: 3 fields"}},
      {"a,b\n1,inf\n", format(0), {"inf is not finite"}},
      {"a,b\n1,1e999\n", format(0), {"1e999 is not finite"}},
      {"a,b\n1,1e30\n", format(0), {"1e30 is too large"}},
      {"a,b\n1,\"2\n3,4\n", format(0), {"line 2: a quote"}},
      {"a,b\n1,\"2\"3\n", format(0), {"line 2: text behind a closing quote"}},
      {QByteArray("a,b\n1,\0"
                  "2\n",
                  9),
       format(0),
       {"line 2: a null byte"}},
      {"\x1F\x8B\x08", format(0), {"t.csv: the file is compressed (gzip)"}},
      {"PK\x03\x04\x14", format(0), {"t.csv: the file is a ZIP archive", ".xlsx"}},
      {"1,2\n3,4\n", format(0), {"line 1: the names of the columns are missing"}},
      {"sep=,\na,b\n1,2\n3\n", format(0), {"t.csv, line 4: 1 fields"}},
      {"sep=;\n", format(0), {"t.csv: the file has no header line"}},
      {"a;b\n1;1.234,5\n", format(0), {"\"1.234,5\" is not a number; numbers are written without"}},
      {"a;b\n1;< 0.5\n", format(0), {"\"< 0.5\" is not a number; for a value below a limit"}},
      {"a,b\n1,\"-12,345,678.9\"\n", format(0), {"marks between thousands"}},
      {"a;b\n1;1\xC2\xA0"
       "234\n",
       format(0),
       {"marks between thousands"}},
      {"a,b\n1,2\n", format(',', ','), {"decimal mark"}},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.content.constData());
    const std::string error = errorOf(c.content, c.format);
    for (const char *part : c.parts)
      EXPECT_THAT(error, HasSubstr(part));
  }
}

TEST(CsvReader, ReadsTheSmallestNumbersAsTheyAre)
{
  const apptest::Folder folder;
  const QString path =
      folder.write("t.csv", "a,b\n1e-400,4.9e-324\n-0.000,0." + QByteArray(400, '0') + "1\n");
  EXPECT_THAT(readNumbers(path, format(0)),
              ElementsAre(ElementsAre(0., 4.9e-324), ElementsAre(-0., 0.)));
}

TEST(CsvReader, FindsColumnsAndListsThem)
{
  const apptest::Folder folder;
  const CsvReader reader(folder.write("t.csv", "zinc,lead,lead\n1,2,3\n"), "t.csv", TableFormat());
  EXPECT_EQ(reader.findColumn("zinc", "variable.column"), 0);
  try {
    reader.findColumn("zink", "variable.column");
    FAIL();
  } catch (const NbeUserError &error) {
    EXPECT_EQ(error.getMessage(),
              "t.csv, line 1: there is no column \"zink\" (variable.column); did you mean "
              "\"zinc\"?; columns: \"zinc\", \"lead\", \"lead\"");
  }
  EXPECT_THROW(reader.findColumn("lead", "variable.column"), NbeUserError);
}

TEST(CsvReader, ReadsFilesLargerThanItsMemory)
{
  const apptest::Folder folder;
  QByteArray content = "rank,square\n";
  constexpr int n = 150000;  // about three chunks
  for (int i = 0; i < n; ++i)
    content += QByteArray::number(i) + ',' + QByteArray::number(double(i) * i, 'g', 17) + "\r\n";
  folder.write("wide.csv", toUtf16(QString::fromLatin1(content), false));
  for (const QString &path : {folder.write("t.csv", content), folder.path("wide.csv")}) {
    CsvReader reader(path, "t.csv", TableFormat());
    for (int i = 0; i < n; ++i) {
      ASSERT_TRUE(reader.next());
      ASSERT_EQ(reader.getNumber(0), i);
      ASSERT_EQ(reader.getNumber(1), double(i) * i);
      ASSERT_EQ(reader.getLine(), i + 2);
    }
    EXPECT_FALSE(reader.next());
  }
}

TEST(CsvReader, SurvivesDamagedFiles)
{
  const QByteArray whole = "\"a\";b;\"c \"\"d\"\"\"\n1;\"2.5\";3\n\"4\";NA;-999\r\n7;8;9\n";
  const apptest::Folder folder;
  EXPECT_EQ(readNumbers(folder.write("t.csv", whole), TableFormat()).size(), 3u);
  int nRead = 0;
  for (int round = 0; round < 500; ++round) {
    QByteArray damaged = whole;
    damaged[testsupport::uniformInt(7, 2 * round, whole.size())] =
        char(testsupport::uniformInt(7, 2 * round + 1, 256));
    if (round % 2 == 0)
      damaged.truncate(testsupport::uniformInt(8, round, whole.size()));
    const QString path = folder.write("t.csv", damaged);
    try {
      EXPECT_LE(readNumbers(path, TableFormat()).size(), 5u);
      ++nRead;
    } catch (const NbeUserError &error) {
      EXPECT_TRUE(error.getMessage().startsWith("t.csv"));
    }
  }
  EXPECT_GT(nRead, 50);
  EXPECT_LT(nRead, 450);
}
