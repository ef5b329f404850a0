#include "app/commands/HelpTopics.h"

#include "TestFiles.h"
#include "app/base/UsageError.h"
#include "app/commands/JobReference.h"
#include "app/console/TextLayout.h"
#include "app/job/JobSchema.h"

#include <QProcess>

#include <gmock/gmock.h>

#include <algorithm>

using namespace orvenal;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr int columns = 80;

std::string text(const QString &topic)
{
  return helpText(topic).toStdString();
}

QByteArray outputOf(const QStringList &arguments)
{
  QProcess process;
  process.start(ORVENAL_PROGRAM, arguments);
  EXPECT_TRUE(process.waitForFinished());
  EXPECT_EQ(process.exitCode(), 0);
  return process.readAllStandardOutput();
}

QByteArray document(const char *name)
{
  return apptest::readFile(QStringLiteral(ORVENAL_EXAMPLES "/../docs/") + name);
}

}  // namespace

TEST(Help, WritesTheDocuments)
{
  // To renew it: orvenal help --markdown job > docs/job.md
  EXPECT_EQ(outputOf({"help", "--markdown", "job"}), document("job.md"));
  EXPECT_EQ(outputOf({"help", "schema"}), document("job.schema.json"));
}

TEST(Help, FitsATerminal)
{
  for (const HelpTopic &topic : helpTopics()) {
    if (topic.name == "schema")
      continue;
    const QString page = helpText(topic.name);
    EXPECT_FALSE(page.contains('`') || page.contains("**")) << page.toStdString();
    for (const QString &line : page.split('\n')) {
      const bool isOneWord = !line.trimmed().contains(' ');
      EXPECT_TRUE(line.size() <= columns || isOneWord) << line.toStdString();
      EXPECT_FALSE(line.endsWith(' ')) << line.toStdString();
    }
  }
}

TEST(Help, ShowsAnyPartOfTheJob)
{
  EXPECT_THAT(text("job.kriging"), StartsWith("kriging: how the grid"));
  EXPECT_THAT(text("job.kriging"), HasSubstr("\n  filter.nugget (true or false)\n"));
  EXPECT_THAT(text("job.kriging"), Not(HasSubstr("neighborhood: ")));
  EXPECT_EQ(text("job.model.structures"), text("job.model.structures[0]"));
  EXPECT_EQ(text("job.grid.mask"), text("job.grid.values"));
  EXPECT_EQ(text("job.neighborhood.maximum"),
            "  neighborhood.maximum (whole number 1 to 10000)\n"
            "      Samples used at most. Needed.");
  EXPECT_THAT(text("job.output.maps"), HasSubstr("output.maps.deviation (file name .png, .svg)"));
  EXPECT_THAT(text("job.variogram.directions[2].dip"), HasSubstr("Default: 0."));
  for (const JobSection &section : JobSchema::get().getSections()) {
    for (const QString &path : section.paths) {
      for (const JobKey &key : section.keys) {
        const QString full = path.isEmpty() ? key.name : path + '.' + key.name;
        EXPECT_FALSE(jobKeysText(full).isEmpty()) << full.toStdString();
        EXPECT_FALSE(key.meaning.isEmpty()) << full.toStdString();
        EXPECT_FALSE(key.meaning.endsWith('.')) << full.toStdString();
      }
    }
  }
}

TEST(Help, SuggestsAKeyThatThereIs)
{
  try {
    helpText("job.model.structures.rnage");
    ADD_FAILURE();
  } catch (const UsageError &error) {
    EXPECT_THAT(error.getMessage().toStdString(),
                HasSubstr("did you mean \"model.structures.range\"?"));
  }
}

TEST(Help, HasTheChaptersOfThePageAsTopics)
{
  EXPECT_THAT(text("conventions"), StartsWith("CONVENTIONS\n\n- Azimuth: clockwise"));
  EXPECT_THAT(text("conventions"), Not(HasSubstr("KEYS")));
  EXPECT_THAT(text("formats"), HasSubstr("GeoTIFF"));
  EXPECT_THAT(text("exit-codes"), HasSubstr("\n  0     done\n"));
}

TEST(TextLayout, BreaksLinesBetweenWords)
{
  const QString words = QString("word ").repeated(40);
  for (const QString &line : TextLayout::wrapped(words, 6, 2).split('\n')) {
    EXPECT_LE(line.size(), columns);
    EXPECT_GT(line.size(), columns / 2);
    EXPECT_TRUE(line.startsWith("      word") || line.startsWith("  word"));
  }
  EXPECT_EQ(TextLayout::page("# A *b*\n\none\ntwo\n\n- **x**: `y`\n  z\n- u\n\n```\nc  d\n```\n"),
            "A *B*\n\none two\n\n- x: y z\n- u\n\nc  d");
}
