#include "basic/error/NbeGuard.h"

#include "basic/error/NbeException.h"
#include "basic/error/NbeMemoryError.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <typeinfo>

namespace {

struct Silent : std::exception
{
  const char *what() const noexcept override { return nullptr; }
};

/// The guard turns `thrown` into an error of class Expected.
template <class Expected, class Thrown>
void expectTranslated(const Thrown &thrown, NbeError::ErrorType type, const QString &text)
{
  try {
    NbeGuard::run([&thrown] { throw thrown; });
    FAIL() << "nothing was thrown";
  } catch (const Expected &error) {
    EXPECT_EQ(error.getErrorType(), type);
    EXPECT_EQ(error.getMessage(), text);
  }
}

}  // namespace

TEST(NbeGuard, TranslatesStandardExceptions)
{
  expectTranslated<NbeMemoryError>(std::bad_alloc(), NbeError::MEMORY,
                                   QStringLiteral("std::bad_alloc: std::bad_alloc"));
  expectTranslated<NbeMemoryError>(std::bad_array_new_length(), NbeError::MEMORY,
                                   QStringLiteral("std::bad_alloc: std::bad_array_new_length"));
  expectTranslated<NbeProgrammingError>(std::bad_cast(), NbeError::PROGRAMMING,
                                        QStringLiteral("std::bad_cast: std::bad_cast"));
  expectTranslated<NbeProgrammingError>(std::bad_typeid(), NbeError::PROGRAMMING,
                                        QStringLiteral("std::bad_typeid: std::bad_typeid"));
  expectTranslated<NbeProgrammingError>(std::bad_exception(), NbeError::PROGRAMMING,
                                        QStringLiteral("std::bad_exception: std::bad_exception"));
  expectTranslated<NbeError>(std::runtime_error("disk on fire"), NbeError::UNKNOWN,
                             QStringLiteral("std::exception: disk on fire"));
  expectTranslated<NbeError>(Silent(), NbeError::UNKNOWN,
                             QStringLiteral("std::exception: Unknown exception"));
  expectTranslated<NbeError>(42, NbeError::UNKNOWN, QStringLiteral("Unknown exception."));
}

TEST(NbeGuard, LetsOwnErrorsPassUnchanged)
{
  expectTranslated<NbeUserError>(NbeUserError(QStringLiteral("no data")), NbeError::USER,
                                 QStringLiteral("no data"));
  expectTranslated<NbeException>(NbeException(), NbeError::INTERRUPTION, QString());
}

TEST(NbeGuard, RunsTheBody)
{
  int calls = 0;
  NbeGuard::run([&calls] { ++calls; });
  EXPECT_EQ(calls, 1);
}
