#include "basic/error/NbeError.h"

#include "basic/error/NbeException.h"
#include "basic/error/NbeMemoryError.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

/// An error that crosses threads is cloned and raised: it must arrive with its class and content.
template <class Error>
void expectSurvivesCloneAndRaise(const Error &error, NbeError::ErrorType type)
{
  const NbeError &base = error;
  const std::unique_ptr<NbeError> copy(base.clone());
  try {
    copy->raise();
    FAIL() << "raise() did not throw";
  } catch (const Error &caught) {
    EXPECT_EQ(caught.getErrorType(), type);
    EXPECT_EQ(caught.getMessage(), error.getMessage());
    EXPECT_EQ(caught.getTextFormat(), error.getTextFormat());
  }
}

}  // namespace

TEST(NbeError, SurvivesCloneAndRaiseWithItsClass)
{
  const QString text = QStringLiteral("no data");
  expectSurvivesCloneAndRaise(NbeUserError(text, Qt::RichText), NbeError::USER);
  expectSurvivesCloneAndRaise(NbeProgrammingError(text), NbeError::PROGRAMMING);
  expectSurvivesCloneAndRaise(NbeMemoryError(text), NbeError::MEMORY);
  expectSurvivesCloneAndRaise(NbeException(), NbeError::INTERRUPTION);
  expectSurvivesCloneAndRaise(NbeError(NbeError::STORAGE, text), NbeError::STORAGE);
}

TEST(NbeError, IsCaughtAsStandardExceptionWithItsTextInUtf8)
{
  try {
    throw NbeUserError(QStringLiteral("Teneur négative"));
  } catch (const std::exception &exception) {
    EXPECT_STREQ(exception.what(), "Teneur n\xc3\xa9gative");
  }
}

TEST(NbeError, WrappingPutsTextInFrontAndKeepsTheType)
{
  const NbeUserError inner(QStringLiteral("bad angle"));
  const NbeError outer(inner, QStringLiteral("Structure 2: "));
  EXPECT_EQ(outer.getMessage(), QStringLiteral("Structure 2: bad angle"));
  EXPECT_EQ(outer.getErrorType(), NbeError::USER);
}
