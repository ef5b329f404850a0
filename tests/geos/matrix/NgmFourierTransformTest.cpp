#include "geos/matrix/NgmFourierTransform.h"

#include "support/Errors.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

std::vector<double> randomValues(std::size_t n)
{
  std::vector<double> values(n);
  for (std::size_t i = 0; i < n; ++i)
    values[i] = testsupport::normal(11, i);
  return values;
}

/// The defining sum at the frequency (k0, k1, k2).
std::complex<double> definition(const std::vector<int> &sizes, const std::vector<double> &values,
                                int k0, int k1, int k2)
{
  std::complex<double> sum = 0.;
  std::size_t position = 0;
  for (int x0 = 0; x0 < sizes[0]; ++x0) {
    for (int x1 = 0; x1 < sizes[1]; ++x1) {
      for (int x2 = 0; x2 < sizes[2]; ++x2, ++position) {
        const double turns =
            double(k0 * x0) / sizes[0] + double(k1 * x1) / sizes[1] + double(k2 * x2) / sizes[2];
        sum += values[position] * std::polar(1., -2. * M_PI * turns);
      }
    }
  }
  return sum;
}

}  // namespace

TEST(NgmFourierTransform, IsItsDefinition)
{
  for (const std::vector<int> &sizes :
       {std::vector<int>{4, 5, 6}, {5, 1, 7}, {1, 6, 3}, {3, 8, 1}, {1, 1, 1}}) {
    const NgmFourierTransform transform(sizes);
    ASSERT_EQ(transform.getNValues(), std::size_t(sizes[0]) * sizes[1] * sizes[2]);
    const int half = sizes[2] / 2 + 1;
    ASSERT_EQ(transform.getNFrequencies(), std::size_t(sizes[0]) * sizes[1] * half);
    const std::vector<double> values = randomValues(transform.getNValues());
    std::vector<std::complex<double>> frequencies(transform.getNFrequencies());
    transform.forward(values.data(), frequencies.data());
    std::size_t position = 0;
    for (int k0 = 0; k0 < sizes[0]; ++k0) {
      for (int k1 = 0; k1 < sizes[1]; ++k1) {
        for (int k2 = 0; k2 < half; ++k2, ++position) {
          const std::complex<double> expected = definition(sizes, values, k0, k1, k2);
          // Sums of some hundred terms of size 1.
          ASSERT_NEAR(std::abs(frequencies[position] - expected), 0., 1e-12);
        }
      }
    }
    std::vector<double> back(values.size());
    transform.backward(frequencies.data(), back.data());
    for (std::size_t i = 0; i < values.size(); ++i)
      ASSERT_NEAR(back[i], values[i], 1e-14);
  }
}

TEST(NgmFourierTransform, TransformsOneDimension)
{
  const NgmFourierTransform transform({12});
  const std::vector<double> values = randomValues(12);
  std::vector<std::complex<double>> frequencies(7);
  transform.forward(values.data(), frequencies.data());
  for (int k = 0; k < 7; ++k)
    EXPECT_NEAR(std::abs(frequencies[k] - definition({1, 1, 12}, values, 0, 0, k)), 0., 1e-13);
}

TEST(NgmFourierTransform, ThreadsShareAPlan)
{
  const NgmFourierTransform transform({64, 45});
  const std::vector<double> values = randomValues(transform.getNValues());
  std::vector<std::complex<double>> alone(transform.getNFrequencies());
  transform.forward(values.data(), alone.data());
  std::vector<std::vector<std::complex<double>>> shared(4, alone);
  std::vector<std::thread> threads;
  for (std::vector<std::complex<double>> &frequencies : shared)
    threads.emplace_back([&] {
      for (int run = 0; run < 20; ++run) {
        frequencies.assign(frequencies.size(), 0.);
        transform.forward(values.data(), frequencies.data());
      }
    });
  for (std::thread &thread : threads)
    thread.join();
  for (const std::vector<std::complex<double>> &frequencies : shared)
    EXPECT_EQ(frequencies, alone);
}

TEST(NgmFourierTransform, FastSizesHaveSmallFactors)
{
  EXPECT_EQ(NgmFourierTransform::getFastSize(-3), 1);
  EXPECT_EQ(NgmFourierTransform::getFastSize(7), 7);
  EXPECT_EQ(NgmFourierTransform::getFastSize(11), 12);
  EXPECT_EQ(NgmFourierTransform::getFastSize(769), 784);
  EXPECT_EQ(NgmFourierTransform::getFastSize(1025), 1029);
}

TEST(NgmFourierTransform, RefusesSizesBelowOne)
{
  for (const std::vector<int> &sizes : {std::vector<int>{}, {4, 0}, {-1, 4, 4}})
    EXPECT_EQ(testsupport::errorOf([&] { const NgmFourierTransform transform(sizes); }),
              QStringLiteral("Error: FFTNS() - dimension error"));
}
