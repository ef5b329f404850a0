#include "geos/base/NgaExactSum.h"

#include "basic/base/NbbGlobal.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

TEST(NgaExactSum, DoesNotDependOnTheOrderOfTerms)
{
  std::vector<double> terms;
  for (int i = 0; i < 20000; ++i)
    terms.push_back(testsupport::normal(1, i) * std::pow(10., i % 12 - 6));
  NgaExactSum forward;
  for (const double term : terms)
    forward.add(term);

  std::sort(terms.begin(), terms.end());
  NgaExactSum parts[3];
  for (std::size_t i = 0; i < terms.size(); ++i)
    parts[i % 3].add(terms[i]);
  parts[0] += parts[1];
  parts[0] += parts[2];
  EXPECT_EQ(parts[0].getValue(), forward.getValue());

  // Naive sums do depend on it, so the terms are a test.
  double ascending = 0., descending = 0.;
  for (std::size_t i = 0; i < terms.size(); ++i) {
    ascending += terms[i];
    descending += terms[terms.size() - 1 - i];
  }
  EXPECT_NE(ascending, descending);
  EXPECT_NEAR(forward.getValue(), ascending, 1e-6);  // rounding of 20,000 terms up to 1e6
}

TEST(NgaExactSum, KeepsWhatADoubleLoses)
{
  NgaExactSum sum;
  sum.add(0x1p40);
  for (int i = 0; i < 4; ++i)
    sum.add(0x1p-60);
  sum.add(-0x1p40);
  EXPECT_EQ(sum.getValue(), 0x1p-58);
}

TEST(NgaExactSum, BoundsHugeTermsAndSkipsUndefinedOnes)
{
  NgaExactSum sum;
  sum.add(NbbGlobal::D_FFFF);
  sum.add(std::nan(""));
  EXPECT_EQ(sum.getValue(), 0.);
  sum.add(-1e20);
  EXPECT_EQ(sum.getValue(), -0x1p40);
}
