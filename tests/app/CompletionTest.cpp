#include "TestFiles.h"

#include <QProcess>

#include <gmock/gmock.h>

using apptest::Outcome;
using apptest::runProgram;
using testing::Contains;
using testing::Each;
using testing::StartsWith;

namespace {

/// What bash completes the words to, the last of which is the one being typed.
std::vector<std::string> complete(const QString &folder, const QStringList &words)
{
  QStringList quoted;
  for (const QString &word : words)
    quoted << '\'' + word + '\'';
  const QString script =
      QString(
          "source <('%1' completion bash)\n"
          "COMP_WORDS=(%2); COMP_CWORD=%3; _orvenal\n"
          "printf '%s\\n' \"${COMPREPLY[@]}\"")
          .arg(ORVENAL_PROGRAM, quoted.join(' '), QString::number(words.size() - 1));
  QProcess bash;
  bash.setWorkingDirectory(folder);
  bash.start("bash", {"--norc", "-c", script});
  EXPECT_TRUE(bash.waitForFinished(60000));
  EXPECT_EQ(bash.readAllStandardError(), "");
  std::vector<std::string> replies;
  const QStringList lines =
      QString::fromUtf8(bash.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
  for (const QString &line : lines)
    replies.push_back(line.toStdString());
  return replies;
}

}  // namespace

TEST(Completion, CompletesCommandsOptionsValuesAndFiles)
{
  const apptest::Folder folder;
  folder.write("my job.json", "{}");
  folder.write("other.csv", "");
  const QString here = folder.path("");
  EXPECT_EQ(complete(here, {"orvenal", "kr"}), std::vector<std::string>{"krige"});
  EXPECT_THAT(complete(here, {"orvenal", ""}), Contains("run"));

  const auto options = complete(here, {"orvenal", "krige", "--ma"});
  EXPECT_THAT(options, Each(StartsWith("--ma")));
  EXPECT_THAT(options, Contains("--maximum"));
  EXPECT_THAT(options, Contains("--mask"));
  EXPECT_EQ(complete(here, {"orvenal", "variogram", "--radi"}), std::vector<std::string>{});

  EXPECT_EQ(complete(here, {"orvenal", "krige", "--transform", "l"}),
            std::vector<std::string>{"log"});
  EXPECT_EQ(complete(here, {"orvenal", "fit", "--fit", "Matern (nu=1.0"}),
            std::vector<std::string>{"Matern\\ \\(nu=1.0\\)"});
  EXPECT_EQ(complete(here, {"orvenal", "krige", "--radius", ""}), std::vector<std::string>{});
  EXPECT_EQ(complete(here, {"orvenal", "run", "my"}), std::vector<std::string>{"my job.json"});
  EXPECT_EQ(complete(here, {"orvenal", "krige", "--mask", "ot"}),
            std::vector<std::string>{"other.csv"});
  EXPECT_EQ(complete(here, {"orvenal", "completion", "z"}), std::vector<std::string>{"zsh"});
}

TEST(Completion, KnowsItsShells)
{
  for (const char *shell : {"zsh", "fish"}) {
    const Outcome outcome = runProgram({"completion", shell});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.output, testing::HasSubstr("maximum"));
  }
  EXPECT_EQ(runProgram({"completion"}).exitCode, 2);
  EXPECT_EQ(runProgram({"completion", "tcsh"}).exitCode, 2);
}

TEST(ManPage, HasEveryCommand)
{
  const Outcome outcome = runProgram({"help", "--man"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.output, StartsWith(".TH ORVENAL 1"));
  for (const char *command : {"run", "init", "stats", "krige", "help"})
    EXPECT_THAT(outcome.output, testing::HasSubstr(std::string(".SS \"orvenal ") + command));
}
