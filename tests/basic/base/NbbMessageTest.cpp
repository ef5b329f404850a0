#include "basic/base/NbbMessage.h"

#include "basic/base/NbbDebug.h"
#include "basic/base/NbbError.h"
#include "basic/base/NbbHtml.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

/// Collects what is printed while it lives.
class Capture
{
public:
  Capture()
  {
    _previous = NbbAMessage::setSink(
        [this](const NbbAMessage::Record &record) { records.push_back(record); });
  }
  ~Capture() { NbbAMessage::setSink(_previous); }
  Q_DISABLE_COPY(Capture)

  std::vector<NbbAMessage::Record> records;

private:
  NbbAMessage::Sink _previous;
};

QStringList logged;

void keepLogged(QtMsgType type, const QMessageLogContext &, const QString &text)
{
  logged.append(QString::number(int(type)) + ' ' + text);
}

}  // namespace

TEST(NbbMessage, SendsRecordsToTheInstalledSink)
{
  Capture capture;
  NbbAMessage::print(QStringLiteral("coloured"), NbbHtml::WarningColor);
  NbbMessage::printHtml(QStringLiteral("<b>x</b>"));
  NbbDebug::printWarning(QStringLiteral("User selection ignored"));
  NbbError::popupWarning(QStringLiteral("look"));

  ASSERT_EQ(capture.records.size(), 4u);
  EXPECT_EQ(capture.records[0].channel, NbbAMessage::MESSAGE_CHANNEL);
  EXPECT_EQ(capture.records[0].severity, NbbAMessage::INFORMATION);
  EXPECT_EQ(capture.records[0].color, NbbHtml::WarningColor);
  EXPECT_TRUE(capture.records[1].isHtml);
  EXPECT_EQ(capture.records[2].channel, NbbAMessage::DEBUG_CHANNEL);
  EXPECT_EQ(capture.records[2].severity, NbbAMessage::WARNING);
  EXPECT_EQ(capture.records[2].text, QStringLiteral("User selection ignored"));
  EXPECT_EQ(capture.records[3].channel, NbbAMessage::ERROR_CHANNEL);
  EXPECT_TRUE(capture.records[3].isPopup);
}

TEST(NbbMessage, FlushEndsAnOpenLineAndNothingElse)
{
  Capture capture;
  NbbMessage::printInline(QStringLiteral("half"));
  NbbMessage::flush();
  NbbMessage::flush();
  ASSERT_EQ(capture.records.size(), 2u);
  EXPECT_FALSE(capture.records[0].endsLine);
  EXPECT_TRUE(capture.records[1].endsLine);
}

TEST(NbbMessage, DefaultSinkLogsWholeLinesAsPlainText)
{
  const auto previous = qInstallMessageHandler(keepLogged);
  NbbMessage::printInline(QStringLiteral("Parcel "));
  NbbMessage::print(QStringLiteral("1"));
  NbbMessage::printHtml(QStringLiteral("<b>a &lt; b</b><br>c"));
  NbbMessage::printWarning(QStringLiteral("w"));
  NbbError::printError(QStringLiteral("e"));
  qInstallMessageHandler(previous);

  const QStringList expected = {QStringLiteral("4 Parcel 1"), QStringLiteral("4 a < b\nc"),
                                QStringLiteral("1 w"), QStringLiteral("2 e")};
  EXPECT_EQ(logged, expected);
}

TEST(NbbMessage, SinkIsCalledByOneThreadAtATime)
{
  // The vector of the capture has no lock of its own: a race shows under the sanitizers or as loss.
  Capture capture;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([] {
      for (int i = 0; i < 500; ++i)
        NbbMessage::print(QStringLiteral("x"));
    });
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_EQ(capture.records.size(), 2000u);
}
