#include "basic/data/NbdMacroIndex.h"
#include "basic/data/NbdMacroIndexInfo.h"
#include "basic/error/NbeProgrammingError.h"

#include <gtest/gtest.h>

#include <QDataStream>

#include <algorithm>

namespace {

const NbdMacroIndexInfo INTEGERS(NbdEMacroIndexType::INTEGER, QStringLiteral("Realization"));
const NbdMacroIndexInfo TEXTS(NbdEMacroIndexType::STRING, QStringLiteral("Scenario"));

}  // namespace

TEST(MacroIndex, OrdersInvalidIntegersTexts)
{
  const NbdMacroIndex invalid, two(2), ten(10), a(QStringLiteral("a")), b(QStringLiteral("b"));
  QList<NbdMacroIndex> indices = {b, ten, a, invalid, two};
  std::sort(indices.begin(), indices.end());
  EXPECT_EQ(indices, (QList<NbdMacroIndex>{invalid, two, ten, a, b}));
  EXPECT_NE(NbdMacroIndex(1), NbdMacroIndex(QStringLiteral("1")));
  EXPECT_NE(NbdMacroIndex(0), NbdMacroIndex());
}

TEST(MacroIndex, TextsReadBackByTheTypeOfTheInfo)
{
  const NbdMacroIndex seven(7), text(QStringLiteral("7"));
  EXPECT_EQ(NbdMacroIndex::fromString(seven.toString(INTEGERS), INTEGERS), seven);
  EXPECT_EQ(NbdMacroIndex::fromString(text.toString(TEXTS), TEXTS), text);
  EXPECT_FALSE(NbdMacroIndex::fromString(QStringLiteral("seven"), INTEGERS).isValid());
  EXPECT_FALSE(NbdMacroIndex::fromString(QString(), TEXTS).isValid());
}

TEST(MacroIndex, InfoRefusesOtherTypesAndRepeatedIndices)
{
  const NbdMacroIndex one(1), two(2), text(QStringLiteral("base"));
  EXPECT_NO_THROW(INTEGERS.checkConsistency({one, two}));
  EXPECT_NO_THROW(TEXTS.checkConsistency({text}));
  EXPECT_THROW(INTEGERS.checkConsistency({one, text}), NbeProgrammingError);
  EXPECT_THROW(INTEGERS.checkConsistency({one, NbdMacroIndex()}), NbeProgrammingError);
  EXPECT_THROW(INTEGERS.checkConsistency({one, two, one}), NbeProgrammingError);
  EXPECT_NE(INTEGERS, NbdMacroIndexInfo());
}

TEST(MacroIndex, StreamsKeepIndexAndInfo)
{
  QByteArray bytes;
  QDataStream out(&bytes, QIODevice::WriteOnly);
  out << NbdMacroIndex() << NbdMacroIndex(-3) << NbdMacroIndex(QStringLiteral("b")) << TEXTS
      << qint8(9);
  QDataStream in(bytes);
  NbdMacroIndex invalid(1), integer, text;
  NbdMacroIndexInfo info;
  in >> invalid >> integer >> text >> info;
  EXPECT_EQ(invalid, NbdMacroIndex());
  EXPECT_EQ(integer, NbdMacroIndex(-3));
  EXPECT_EQ(text, NbdMacroIndex(QStringLiteral("b")));
  EXPECT_EQ(info, TEXTS);
  in >> info;
  EXPECT_NE(in.status(), QDataStream::Ok);
  EXPECT_EQ(info, TEXTS);
}
