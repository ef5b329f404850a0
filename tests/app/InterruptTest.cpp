#include "TestFiles.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>

#include <gmock/gmock.h>

#include <csignal>

using apptest::json;
using testing::HasSubstr;

namespace {

/// Ends well within what a busy machine makes of a second.
constexpr int patience = 10000;

/// Samples at random places, from a small generator of its own.
QByteArray randomSamples(int n)
{
  quint32 state = 1;
  const auto next = [&state] {
    state = state * 1664525u + 1013904223u;
    return QByteArray::number(state >> 16);
  };
  QByteArray data = "x,y,v\n";
  for (int i = 0; i < n; ++i)
    data += next() + ',' + next() + ',' + next() + '\n';
  return data;
}

/// Signals a program and expects that it ends soon with the code of the signal.
void expectStop(QProcess &program, int signal, int milliseconds = patience)
{
  QElapsedTimer timer;
  timer.start();
  const pid_t process = pid_t(program.processId());
  ASSERT_GT(process, 0);  // 0 would be this program and all that it was started by
  ::kill(process, signal);
  ASSERT_TRUE(program.waitForFinished(60000));
  EXPECT_LT(timer.elapsed(), milliseconds);
  EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(program.exitCode(), 128 + signal);
}

/// Waits until the program says how far an action is.
bool waitForProgress(QProcess &program, const QString &action)
{
  const QRegularExpression progress(action + ": \\d+% after");
  QString errors;
  while (!errors.contains(progress) && program.waitForReadyRead(60000))
    errors += QString::fromUtf8(program.readAllStandardError());
  EXPECT_TRUE(errors.contains(progress)) << qPrintable(errors);
  return errors.contains(progress);
}

void expectStopIn(const QString &action, int signal, const QStringList &arguments,
                  const QByteArray &data)
{
  SCOPED_TRACE(qPrintable(action));
  const apptest::Folder folder;
  folder.write("d.csv", data);
  QProcess program;
  program.setWorkingDirectory(folder.path(""));
  program.setReadChannel(QProcess::StandardError);
  program.start(ORVENAL_PROGRAM, arguments);
  if (waitForProgress(program, action))
    expectStop(program, signal);
  program.kill();
  program.waitForFinished();
  EXPECT_THAT(program.readAllStandardError().toStdString(), HasSubstr("nothing was written"));
  EXPECT_EQ(folder.list(), QStringList{"d.csv"});
}

/// Waits until a program has read some of a file: Linux says how far.
bool waitForReading(const QProcess &program, const QString &path)
{
  const QString process = QString("/proc/%1/").arg(program.processId());
  QElapsedTimer timer;
  for (timer.start(); timer.elapsed() < 60000 && program.state() == QProcess::Running;) {
    for (const QString &descriptor : QDir(process + "fd").entryList(QDir::Files | QDir::System)) {
      QFile state(process + "fdinfo/" + descriptor);
      if (QFile::symLinkTarget(process + "fd/" + descriptor) == path &&
          state.open(QIODevice::ReadOnly) &&
          state.readLine().mid(sizeof("pos:")).trimmed().toLongLong() > 2000000)
        return true;
    }
  }
  return false;
}

const QStringList samples = {"d.csv", "--x", "x", "--y", "y", "--variable", "v"};
const QStringList unique = {"--structure", "Spherical 1 20000", "--nugget", "0.1", "--unique"};

}  // namespace

TEST(Interrupt, EndsVariogramsAndFactorisations)
{
  expectStopIn("Variograms", SIGINT,
               QStringList{"variogram"} + samples +
                   QStringList{"--lag", "500", "--lags", "100", "--variogram-table", "out/v.csv"},
               randomSamples(200000));
  for (const int signal : {SIGTERM, SIGHUP})
    expectStopIn("Kriging", signal,
                 QStringList{"krige"} + samples + unique +
                     QStringList{"--cell", "1000", "--out", "out/deep/k.csv"},
                 randomSamples(7000));
}

TEST(Interrupt, EndsTheReadingOfAFile)
{
  const apptest::Folder folder;
  const QByteArray rows = randomSamples(20000);
  QFile file(folder.path("d.csv"));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(rows);
  for (int i = 0; i < 200; ++i)
    file.write(rows.mid(rows.indexOf('\n') + 1));
  file.close();
  const QList<QStringList> commands = {
      {"convert", "d.csv", "out/new/d.gpkg"},
      QStringList{"krige"} + samples + unique + QStringList{"--cell", "1000", "--out", "k.csv"}};
  for (const QStringList &command : commands) {
    SCOPED_TRACE(qPrintable(command[0]));
    QProcess program;
    program.setWorkingDirectory(folder.path(""));
    program.start(ORVENAL_PROGRAM, command);
    ASSERT_TRUE(program.waitForStarted());
    ASSERT_TRUE(waitForReading(program, QFileInfo(folder.path("d.csv")).canonicalFilePath()));
    constexpr int byItself = 900;  // before the program would be ended from within
    expectStop(program, SIGINT, byItself);
    EXPECT_EQ(program.readAllStandardError(), "orvenal: interrupted; nothing was written\n");
    EXPECT_EQ(folder.list(), QStringList{"d.csv"});
  }
}

TEST(Interrupt, IsQuietWhenTheReaderHasGone)
{
  const apptest::Folder folder;
  const QString job = apptest::MeuseJob().writeTo(folder);
  QProcess shell;
  shell.start("bash", {"-c", QString("set -e -o pipefail; '%1' help krige | head -n 1; "
                                     "'%1' run --set output.maps=null '%2' | head -n 1")
                                 .arg(ORVENAL_PROGRAM, job)});
  ASSERT_TRUE(shell.waitForFinished(120000));
  EXPECT_EQ(shell.exitCode(), 0);
  EXPECT_THAT(shell.readAllStandardError().toStdString(), testing::Not(HasSubstr("ipe")));
}
