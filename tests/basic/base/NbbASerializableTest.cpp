#include "basic/base/NbbASerializable.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"
#include "support/SerializationFuzz.h"

#include <QBuffer>
#include <QDataStream>
#include <QVector>

#include <gtest/gtest.h>

namespace {

/// A vector of doubles as the classes of the libraries write it.
class Series : public NbbASerializable
{
public:
  QVector<double> values;
  unsigned int writtenVersion = 200101;
  QString displayName;
  bool checksCount = true;

protected:
  QList<unsigned int> _serializedVersions() const override { return {190101, 200101}; }
  unsigned int _currentSerializedVersion() const override { return writtenVersion; }
  bool _hasValidFirstVersion() const override { return true; }
  QString _displayName() const override { return displayName; }

  void _serialize(QDataStream &stream) const override
  {
    stream << quint32(values.size());
    for (double value : values)
      stream << value;
  }

  void _unserialize(QDataStream &stream, unsigned int) override
  {
    quint32 count = 0;
    stream >> count;
    if (checksCount)
      _checkCount(stream, count, 8, 1 << 30);
    QVector<double> read(int(count), 0.);
    for (double &value : read)
      stream >> value;
    _checkStream(stream);
    values.swap(read);
  }
};

QString refusalOf(const QByteArray &bytes, Series &series)
{
  try {
    test::fromBytes(bytes, series);
  } catch (const NbeUserError &error) {
    return error.getMessage();
  }
  return QString();
}

Series makeSeries()
{
  Series series;
  series.values = {1., -2.5, NbbGlobal::D_FFFF};
  return series;
}

}  // namespace

TEST(NbbASerializable, WritesMagicVersionAndContentInBigEndianDoubles)
{
  Series series;
  series.values = {1.};
  EXPECT_EQ(test::toBytes(series).toHex(), QByteArray("4f52564e"             // magic "ORVN"
                                                      "00030da5"             // 200101
                                                      "00000001"             // count
                                                      "3ff0000000000000"));  // 1.0
}

TEST(NbbASerializable, RestoresTheSettingsOfTheStream)
{
  const auto expectOwnSettings = [](const QDataStream &stream) {
    EXPECT_EQ(stream.version(), int(QDataStream::Qt_4_6));
    EXPECT_EQ(stream.byteOrder(), QDataStream::LittleEndian);
    EXPECT_EQ(stream.floatingPointPrecision(), QDataStream::SinglePrecision);
  };
  const auto setOwnSettings = [](QDataStream &stream) {
    stream.setVersion(QDataStream::Qt_4_6);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
  };

  QByteArray bytes;
  QDataStream out(&bytes, QIODevice::WriteOnly);
  setOwnSettings(out);
  makeSeries().serialize(out);
  expectOwnSettings(out);
  EXPECT_EQ(bytes, test::toBytes(makeSeries()));

  Series read;
  QDataStream in(bytes);
  setOwnSettings(in);
  read.unserialize(in);
  expectOwnSettings(in);
  EXPECT_EQ(read.values, makeSeries().values);

  QDataStream refused(bytes.left(20));
  setOwnSettings(refused);
  EXPECT_THROW(read.unserialize(refused), NbeUserError);
  expectOwnSettings(refused);
}

TEST(NbbASerializable, RefusalsNameTheClassAndTheReason)
{
  Series series;
  const QByteArray bytes = test::toBytes(makeSeries());
  const QString start = QStringLiteral("Cannot read (anonymous namespace)::Series: ");

  EXPECT_EQ(refusalOf(QByteArray("12345678"), series), start + QStringLiteral("bad magic number."));
  EXPECT_EQ(refusalOf(bytes.left(7), series), start + QStringLiteral("the stream is too short."));

  Series other = makeSeries();
  other.writtenVersion = 195001;
  EXPECT_EQ(refusalOf(test::toBytes(other), series),
            start + QStringLiteral("unknown version 195001."));

  QByteArray manyValues = bytes;
  manyValues[8] = char(0x7f);
  EXPECT_EQ(refusalOf(manyValues, series), start + QStringLiteral("bad count 2130706435."));
  manyValues[8] = 0;
  manyValues[9] = char(0x7f);
  EXPECT_EQ(refusalOf(manyValues, series),
            start + QStringLiteral("count 8323075 is more than the stream holds."));
}

TEST(NbbASerializable, NewerVersionIsNamedWhenTheClassHasADisplayName)
{
  Series written = makeSeries();
  written.writtenVersion = 300101;
  const QByteArray bytes = test::toBytes(written);

  Series reader;
  EXPECT_TRUE(refusalOf(bytes, reader).endsWith(QStringLiteral("unknown version 300101.")));
  reader.displayName = QStringLiteral("Series of Values");
  EXPECT_EQ(refusalOf(bytes, reader),
            QStringLiteral("Attempting to read a Series of Values with an older application."));
}

TEST(NbbASerializable, AStreamThatTakesNothingIsAStorageError)
{
  QByteArray bytes;
  QBuffer buffer(&bytes);
  ASSERT_TRUE(buffer.open(QIODevice::ReadOnly));
  QDataStream stream(&buffer);
  try {
    makeSeries().serialize(stream);
    FAIL() << "written to a device open for reading";
  } catch (const NbeError &error) {
    EXPECT_EQ(error.getErrorType(), NbeError::STORAGE);
  }
}

TEST(NbbASerializable, FuzzHelperAcceptsTheChecksAndSeesThatTheyAreMissing)
{
  test::fuzzSerialization(makeSeries());

#ifndef ORVENAL_TEST_ADDRESS_SANITIZER
  // 8 GB announced by 8 bytes of content: only the guard of the address space notices.
  Series careless;
  careless.checksCount = false;
  QByteArray bytes = test::toBytes(makeSeries());
  bytes[8] = char(0x3f);
  const test::AddressSpaceGuard guard(rlim_t(128) << 20);
  EXPECT_THROW(test::fromBytes(bytes, careless), std::bad_alloc);
#endif
}
