#include "TestFiles.h"

#include <QDirIterator>
#include <QRegularExpression>

#include <vector>

namespace {

/// Commands of a page, and what the page says that they print; nothing when it does not say.
struct Block
{
  QString commands;
  QString output;
};

/// The ```sh blocks of a page; a ```text block right behind one is its output.
std::vector<Block> blocksOf(const QString &page)
{
  static const QRegularExpression fence(
      QStringLiteral("^```sh\\n(.*?)^```\\n(?:\\n```text\\n(.*?)^```\\n)?"),
      QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption);
  std::vector<Block> blocks;
  const QString text = QString::fromUtf8(apptest::readFile(page));
  for (auto match = fence.globalMatch(text); match.hasNext();) {
    const QRegularExpressionMatch block = match.next();
    blocks.push_back({block.captured(1), block.captured(2)});
  }
  return blocks;
}

void copyTree(const QString &from, const QString &to)
{
  QDirIterator files(from, QDir::Files, QDirIterator::Subdirectories);
  while (files.hasNext()) {
    const QString file = files.next();
    const QString relative = QDir(from).relativeFilePath(file);
    if (relative.contains(QStringLiteral("out/")))
      continue;
    ASSERT_TRUE(QDir().mkpath(QFileInfo(to + '/' + relative).path()));
    ASSERT_TRUE(QFile::copy(file, to + '/' + relative));
  }
}

apptest::Outcome runShell(const QString &commands, const QString &folder)
{
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("PATH"), QFileInfo(ORVENAL_PROGRAM).path() + ':' +
                                                 environment.value(QStringLiteral("PATH")));
  environment.insert(QStringLiteral("COLUMNS"), QStringLiteral("100"));
  QProcess shell;
  shell.setProcessEnvironment(environment);
  shell.setWorkingDirectory(folder);
  shell.start(QStringLiteral("bash"), {"-e", "-o", "pipefail", "-c", commands});
  EXPECT_TRUE(shell.waitForFinished(300000));
  return {shell.exitCode(), shell.readAllStandardOutput().toStdString(),
          shell.readAllStandardError().toStdString()};
}

/// A line "..." of the page stands for any number of lines.
void expectOutput(const QString &shown, const QString &found)
{
  QString pattern;
  for (const QString &line : shown.split('\n', Qt::SkipEmptyParts)) {
    if (line.trimmed() == QLatin1String("..."))
      pattern += QStringLiteral("(?:.*\\n)*?");
    else
      pattern += QRegularExpression::escape(line) + QStringLiteral("[ ]*\\n+");
  }
  const QRegularExpression whole(QStringLiteral("^\\n*") + pattern + QStringLiteral("$"));
  EXPECT_TRUE(whole.match(found).hasMatch()) << "the page shows\n"
                                             << qPrintable(shown) << "\nand the program prints\n"
                                             << qPrintable(found);
}

}  // namespace

// Each page is followed as a reader would: in a fresh copy of the examples, from top to bottom.
TEST(Guide, DoesWhatItSays)
{
  const QDir guide(ORVENAL_EXAMPLES "/../docs/guide");
  int nCommands = 0;
  for (const QString &page : guide.entryList({"*.md"}, QDir::Files, QDir::Name)) {
    SCOPED_TRACE(qPrintable(page));
    const apptest::Folder folder;
    copyTree(ORVENAL_EXAMPLES, folder.path("examples"));
    for (const Block &block : blocksOf(guide.filePath(page))) {
      SCOPED_TRACE(qPrintable(block.commands));
      const apptest::Outcome outcome = runShell(block.commands, folder.path("examples/meuse"));
      EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
      if (!block.output.isEmpty())
        expectOutput(block.output, QString::fromStdString(outcome.output));
      ++nCommands;
    }
  }
  EXPECT_GT(nCommands, 10);
}

TEST(Guide, HasNoBrokenLink)
{
  static const QRegularExpression link(QStringLiteral("\\]\\(([^)#:]+)(?:#[^)]*)?\\)"));
  const QDir root(ORVENAL_EXAMPLES "/..");
  QStringList pages = {"README.md", "CONTRIBUTING.md"};
  for (const char *folder : {"docs", "examples"}) {
    QDirIterator files(root.filePath(folder), {"*.md"}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
      pages << root.relativeFilePath(files.next());
  }
  int nLinks = 0;
  for (const QString &page : pages) {
    const QDir folder = QFileInfo(root.filePath(page)).dir();
    const QString text = QString::fromUtf8(apptest::readFile(root.filePath(page)));
    for (auto match = link.globalMatch(text); match.hasNext(); ++nLinks) {
      const QString target = match.next().captured(1);
      EXPECT_TRUE(folder.exists(target)) << qPrintable(page) << ": " << qPrintable(target);
    }
  }
  EXPECT_GT(nLinks, 20);
}
