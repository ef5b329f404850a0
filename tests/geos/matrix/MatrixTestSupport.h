#pragma once

#include "basic/error/NbeError.h"
#include "geos/matrix/NgmMatrix.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <initializer_list>

namespace testsupport {

/// A matrix from its rows.
inline NgmMatrix matrixOf(int rows, int columns, std::initializer_list<double> byRow,
                          bool symmetrical = false)
{
  NgmMatrix matrix(rows, columns, symmetrical);
  double *a = matrix.elements();
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < columns; ++j)
      a[i + j * rows] = byRow.begin()[i * columns + j];
  return matrix;
}

inline NgmMatrix randomMatrix(std::uint64_t stream, int rows, int columns)
{
  NgmMatrix matrix(rows, columns, false);
  double *a = matrix.elements();
  for (qint64 i = 0; i < matrix.getNElements(); ++i)
    a[i] = normal(stream, std::uint64_t(i));
  return matrix;
}

inline NgmMatrix randomSymmetric(std::uint64_t stream, int n)
{
  NgmMatrix matrix = randomMatrix(stream, n, n);
  matrix.makeSymmetrical();
  return matrix;
}

/// G G' + n I: positive definite, condition number of a few units.
inline NgmMatrix randomPositiveDefinite(std::uint64_t stream, int n)
{
  const NgmMatrix g = randomMatrix(stream, n, n);
  NgmMatrix matrix = g * g.transpose();
  for (int i = 0; i < n; ++i)
    matrix.addToElement(i, i, n);
  matrix.makeSymmetrical();
  return matrix;
}

inline double maxAbs(const NgmMatrix &matrix)
{
  double largest = 0.;
  for (qint64 i = 0; i < matrix.getNElements(); ++i)
    largest = std::max(largest, std::abs(matrix.constElements()[i]));
  return largest;
}

inline double maxDifference(const NgmMatrix &a, const NgmMatrix &b)
{
  EXPECT_EQ(a.getNRows(), b.getNRows());
  EXPECT_EQ(a.getNColumns(), b.getNColumns());
  return maxAbs(a - b);
}

inline double maxDifferenceFromIdentity(const NgmMatrix &matrix)
{
  NgmMatrix identity(matrix.getNRows(), matrix.getNColumns(), false);
  identity.setIdentity();
  return maxDifference(matrix, identity);
}

inline bool sameBits(const NgmMatrix &a, const NgmMatrix &b)
{
  return a.getNRows() == b.getNRows() && a.getNColumns() == b.getNColumns() &&
         std::equal(a.constElements(), a.constElements() + a.getNElements(), b.constElements());
}

/// One misuse or failure and the text that it has to raise.
struct ErrorCase
{
  const char *name;
  NbeError::ErrorType type;
  QString message;
  std::function<void()> call;
};

/// Checks type and text; a message that starts with "..." is the end of a longer one.
inline void expectErrors(std::initializer_list<ErrorCase> cases)
{
  for (const ErrorCase &c : cases) {
    SCOPED_TRACE(c.name);
    try {
      c.call();
      ADD_FAILURE() << "nothing was raised";
    } catch (const NbeError &error) {
      EXPECT_EQ(error.getErrorType(), c.type);
      const bool isEnd = c.message.startsWith(QLatin1String("..."));
      const bool matches =
          isEnd ? error.getMessage().endsWith(c.message.mid(3)) : error.getMessage() == c.message;
      EXPECT_TRUE(matches) << qPrintable(error.getMessage());
    }
  }
}

/// The end of the assertion form for a source file.
inline QString assertion(const char *source, const char *condition)
{
  return QStringLiteral("...' in file 'matrix\\%1' failed:\n\n%2")
      .arg(QString::fromLatin1(source), QString::fromLatin1(condition));
}

}  // namespace testsupport
