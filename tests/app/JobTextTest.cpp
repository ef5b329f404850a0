#include "app/job/JobText.h"

#include "TestFiles.h"
#include "app/base/UsageError.h"
#include "app/job/JobReader.h"

#include <gmock/gmock.h>

using namespace orvenal;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

QJsonValue valueOf(const QByteArray &text)
{
  return parseJobText("job.json", text).root;
}

std::string errorOf(const QByteArray &text)
{
  try {
    parseJobText("job.json", text);
  } catch (const UsageError &error) {
    return error.getMessage().toStdString();
  }
  return "no error";
}

}  // namespace

TEST(JobText, ReadsTheSameValuesAsJsonDoes)
{
  const QByteArray texts[] = {
      R"({"a": [1, -2.5, 1e-3, 0, 9007199254740992, 123456789012345678901234567890], "b": null,
          "c": {"d": true, "e": false, "f": "\u00e9\ud83d\ude00\"\\\/\n", "": {}}, "é": []})",
      "[]", "{}", "  [[[]]]\n", apptest::readFile(ORVENAL_EXAMPLES "/meuse/job.json")};
  for (const QByteArray &text : texts) {
    const QJsonDocument document = QJsonDocument::fromJson(text);
    EXPECT_EQ(valueOf(text),
              document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object()))
        << text.constData();
  }
  EXPECT_EQ(valueOf("\xEF\xBB\xBF{\"a\": 1}"), apptest::json("{\"a\": 1}"));
}

TEST(JobText, KeepsTheOrderOfKeys)
{
  const JobText text = parseJobText("job.json", R"({"z": [{"b": 1, "a": 2}, 3], "y": {"c": 1}})");
  EXPECT_EQ(text.keys.value(""), (QStringList{"z", "y"}));
  EXPECT_EQ(text.keys.value("z[0]"), (QStringList{"b", "a"}));
  EXPECT_EQ(text.keys.value("y"), QStringList{"c"});
}

TEST(JobText, PassesOverComments)
{
  const QJsonValue plain = apptest::json("{\"a\": [1, \"/* no */ // no\"]}");
  EXPECT_EQ(valueOf("// one\n/* two\n * lines **/{/**/\"a\"// b\r\n:/*{*/[1 /*,2*/,"
                    "\"/* no */ // no\"]} // the end"),
            plain);
  EXPECT_THAT(errorOf("{ \"a\": 1 /* ends nowhere }"), HasSubstr("missing closing '*/'"));
  EXPECT_THAT(errorOf("{ \"a\": 1 } / x"), HasSubstr("line 1, column 13: not valid JSON"));
  EXPECT_THAT(errorOf("{ # no\n}"), HasSubstr("line 1, column 3"));
}

TEST(JobText, NamesPlaceAndLinesOfAKeyGivenTwice)
{
  EXPECT_EQ(errorOf("{ \"model\": { // two of them\n\"nugget\": 1,\n\n\"nugget\": 1 } }"),
            "job.json: model.nugget: the key is given twice, in line 2 and in line 4");
  EXPECT_EQ(errorOf("{ \"a\": [0, { \"b\": 1,\n \"\\u0062\": 2 } ] }"),  // \u0062 is b
            "job.json: a[1].b: the key is given twice, in line 1 and in line 2");
  EXPECT_EQ(errorOf("{ \"a\": { \"b\": 1 }, \"b\": [{ \"b\": 1 }, { \"b\": 1 }] }"), "no error");
}

TEST(JobText, NamesLineAndColumnOfSyntaxErrors)
{
  struct Case
  {
    QByteArray text;
    const char *part;
  };
  const Case cases[] = {
      {"", "job.json, line 1, column 1: not valid JSON: unexpected end of input"},
      {"{\n  \"title\": \"x\",\n  \"data\" {}\n}",
       "line 3, column 10: not valid JSON: unexpected '{'"},
      {"{ \"é\": x }", "line 1, column 8"},  // characters, not bytes
      {"{ \"a\": 1, }", "line 1, column 11"},
      {"{ \"a\": 1 } {}", "line 1, column 12"},
      {"{ \"a\": NaN }", "line 1, column 8"},
      {"{ \"a\": 01 }", "line 1, column 9"},
      {"{ \"a\": \"b\nc\" }", "line 1, column 10"},
      {"{ a: 1 }", "line 1, column 3"},
      {"\xFF\xFE{", "line 1, column 1"},
      {"{ \"a\": \"\xC3(\" }",
       "line 1, column 10: not valid JSON: invalid string: ill-formed UTF-8"},
      {"{ \"a\": \"\xED\xA0\x80\" }", "ill-formed UTF-8"},  // a lone surrogate
      {"{ \"a\": \"\xC0\xAF\" }", "ill-formed UTF-8"},      // longer than it need be
      {"{ \"a\": \"\\ud800\" }", "surrogate"},
      {QByteArray("{ \0 }", 5), "line 1, column 3"},
  };
  for (const Case &c : cases)
    EXPECT_THAT(errorOf(c.text), HasSubstr(c.part)) << c.text.constData();
}

TEST(JobText, RefusesWhatNoDoubleHolds)
{
  EXPECT_EQ(errorOf("{ \"model\": {\n\"nugget\": [0, 1e999] } }"),
            "job.json: model.nugget[1]: 1e999 is too large for a number (line 2)");
  EXPECT_THAT(errorOf("[-" + QByteArray(400, '9') + ']'), StartsWith("job.json: [0]: -999"));
  EXPECT_EQ(valueOf("[1e-999]"), QJsonValue(QJsonArray{0.}));
}

TEST(JobText, BoundsDepthAndKeys)
{
  const std::string deep = "job.json, line 1: nested deeper than 64 levels";
  EXPECT_EQ(errorOf(QByteArray(100000, '[')), deep);
  EXPECT_EQ(errorOf(QByteArray("{\"a\":").repeated(100000)), deep);
  EXPECT_EQ(errorOf(QByteArray(64, '[') + QByteArray(64, ']')), "no error");
  QByteArray wide("{");
  for (int i = 0; i < 100000; ++i)
    wide += "\"k" + QByteArray::number(i) + "\": 0,\n";
  EXPECT_EQ(errorOf(wide), "job.json, line 1001: an object has more than 1000 keys");
}

TEST(JobText, IsWhatJobsAndModelsAreReadWith)
{
  const apptest::Folder folder;
  folder.write("model.json",
               "{ \"$schema\": \"x\", /* alone */ \"structures\": [{ \"type\": \"Spherical\", "
               "\"sill\": 0.59, \"range\": 897 }] }");
  const QByteArray job =
      apptest::MeuseJob().set("model", apptest::json("{\"file\": \"model.json\"}")).text();
  const QString path =
      folder.write("job.json", "// mine\n{ \"$schema\": \"job.schema.json\", " + job.mid(1));
  EXPECT_EQ(readJob(path).model.getNStructures(), 1);

  folder.write("model.json", "{ \"nugget\": 1,\n \"nugget\": 2 }");
  try {
    readJob(path);
    ADD_FAILURE();
  } catch (const UsageError &error) {
    EXPECT_THAT(error.getMessage().toStdString(),
                HasSubstr("model.json: nugget: the key is given twice, in line 1 and in line 2"));
  }
}
