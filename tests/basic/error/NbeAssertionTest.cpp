#include "basic/error/NbeAssertion.h"

#include "basic/error/NbeProgrammingError.h"

#include <gtest/gtest.h>

TEST(NbeAssertion, NamesSourcesFromTheRootOfTheirLibrary)
{
  const auto path = [](const char *file) { return NbeAssertion::sourcePath(file).toStdString(); };
  EXPECT_EQ(path("/home/src/orvenal/geos/src/data/NgdADataSet.cpp"), "data\\NgdADataSet");
  EXPECT_EQ(path("../basic/src/calc/private/Sort.cpp"), "calc\\private\\Sort");
  EXPECT_EQ(path("/w/geos/include/geos/vmodel/NgmVModel.h"), "vmodel\\NgmVModel");
  EXPECT_EQ(path("C:\\w\\geos\\src\\base\\NgcACalculator.cpp"), "base\\NgcACalculator");
  EXPECT_EQ(path("/w.x/geos/src/NgcEnumGlobal.cpp"), ".\\NgcEnumGlobal");
}

namespace {

QString messageOf(void (*call)())
{
  try {
    call();
  } catch (const NbeProgrammingError &error) {
    return error.getMessage();
  }
  return QString();
}

void failHere()
{
  NBE_FAIL(QStringLiteral("n < 0 is %1"));
}

void failElsewhere()
{
  NBE_FAIL_AT(QStringLiteral("stats\\Other"), QStringLiteral("bad"));
}

}  // namespace

TEST(NbeAssertion, NamesFunctionPathAndCondition)
{
  // Text that looks like a place holder is left alone.
  const QString message = messageOf(failHere);
  EXPECT_TRUE(message.startsWith('\'')) << message.toStdString();
  EXPECT_TRUE(message.contains(QStringLiteral("failHere"))) << message.toStdString();
  EXPECT_TRUE(message.endsWith(QStringLiteral("' failed:\n\nn < 0 is %1")))
      << message.toStdString();

  EXPECT_TRUE(
      messageOf(failElsewhere).endsWith(QStringLiteral("' in file 'stats\\Other' failed:\n\nbad")));
}
