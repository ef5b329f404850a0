#include "geos/interpol/NgmNeighborhoodMoving.h"

#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgGeomEllipsoid.h"
#include "support/SerializationFuzz.h"

#include <QDataStream>

#include <gtest/gtest.h>

namespace {

/// Every rule on, with values that differ.
NgmNeighborhoodMoving everyRule()
{
  NgmNeighborhoodMoving n;
  n.setMovingNeighborhoodMode(NgcEMovNeighMode::FROM_BLOCK);
  n.setEllipseSize(NbgVector3D(30., 20., 10.));
  n.setEllipseRotation(NbgRotation(10., 20., 30.));
  n.setRuleAnisotropicDistances(true);
  n.setSectors(4, 5, true);
  n.setRuleMinimumNumber(true, 3);
  n.setRuleMaximumNumber(true, 33);
  n.setRuleHeterotopicSearch(true);
  n.setRuleIsotopicSearch(true);
  n.setRuleProximity(true, NbgVector3D(1., 2., 3.));
  n.setRuleKeepAllInBlock(true);
  n.setRuleMaximumPerBlock(true, 77);
  n.setRuleMinimumGap(true, 0.5);
  n.setRuleMaximumDistanceWithoutSample(true, 12.);
  n.setRuleMaximumEmptySectors(true, 2, false);
  n.setRuleCutLarge(true, NgcECutoffMode::CUTOFF_REMOVE, 99., NbgVector3D(4., 5., 6.));
  n.setRuleCutSmall(true, NgcECutoffMode::CUTOFF_IGNORE, -9., NbgVector3D(7., 8., 9.));
  n.setRuleOptimumPerCode(true, 6);
  n.setRuleMaximumPerCode(true, 7);
  n.setRuleMinimumCodeNumber(true, 2);
  n.setRuleMaximumCodeNumber(true, 5);
  return n;
}

/// A stream of an older version, field by field.
class OldStream
{
public:
  explicit OldStream(quint32 version) : _stream(&bytes, QIODevice::WriteOnly)
  {
    _stream.setVersion(QDataStream::Qt_5_15);
    *this << quint32(0x4F52564E) << version;
  }
  template <class T>
  OldStream &operator<<(const T &value)
  {
    _stream << value;
    return *this;
  }
  OldStream &operator<<(const NbgRotation &rotation)
  {
    rotation.serialize(_stream);
    return *this;
  }
  OldStream &ints(std::initializer_list<int> values)
  {
    for (const int value : values)
      _stream << quint32(value);
    return *this;
  }

  QByteArray bytes;

private:
  QDataStream _stream;
};

}  // namespace

TEST(NgmNeighborhoodMoving, CountsItsNeighbors)
{
  NgmNeighborhoodMoving neighborhood;
  EXPECT_EQ(neighborhood.getMaximumNeighborsCount(), 16);
  neighborhood.setSectors(4, 5, true);
  EXPECT_EQ(neighborhood.getMaximumNeighborsCount(), 40);
  neighborhood.setRuleMaximumNumber(true, 30);
  EXPECT_EQ(neighborhood.getMaximumNeighborsCount(), 30);
  neighborhood.setRuleMinimumNumber(true, 50);
  EXPECT_EQ(neighborhood.getMaximumNeighborsCount(), 50);
  neighborhood.setRuleMinimumNumber(true, -3);
  EXPECT_EQ(neighborhood.getMinimumNumber(), 0);
  EXPECT_FALSE(neighborhood.isRuleMinimumNumber());
}

TEST(NgmNeighborhoodMoving, ChecksItsParameters)
{
  struct Case
  {
    int dimension;
    const char *error;
    std::function<void(NgmNeighborhoodMoving &)> change;
  };
  const auto size = [](double x, double y, double z) {
    return [=](NgmNeighborhoodMoving &n) { n.setEllipseSize(NbgVector3D(x, y, z)); };
  };
  const Case cases[] = {
      {3, nullptr, [](NgmNeighborhoodMoving &) {}},
      {1, "- Ellipsoid size along X cannot be null\n", size(0., 1., 1.)},
      {2, "- Ellipsoid size along Y cannot be null\n", size(1., 1e-11, 1.)},
      {1, nullptr, size(1., 0., 0.)},
      {3, "- Ellipsoid size along Z cannot be null\n", size(1., 1., 0.)},
      {2, nullptr, size(1., 1., 0.)},
      {2, "- Splitting sectors only available in 3D\n",
       [](NgmNeighborhoodMoving &n) { n.setSectors(1, 16, true); }},
      {2, "- Sector number cannot be negative or null\n",
       [](NgmNeighborhoodMoving &n) {
         n.setSectors(0, 16, false);
         n.setRuleMinimumNumber(false, 0);
       }},
      {2, "- Maximum number of samples per sector cannot be negative or null\n",
       [](NgmNeighborhoodMoving &n) {
         n.setSectors(1, 0, false);
         n.setRuleMinimumNumber(false, 0);
       }},
      {2, "- Maximum number of samples cannot be negative or null\n",
       [](NgmNeighborhoodMoving &n) { n.setRuleMaximumNumber(true, 0); }},
      {2,
       "- Total number of samples in sectors (maximum number * sectors number) must be greater or "
       "equal than minimum number of samples\n",
       [](NgmNeighborhoodMoving &n) { n.setRuleMinimumNumber(true, 17); }},
      {2, nullptr, [](NgmNeighborhoodMoving &n) { n.setRuleProximity(true, NbgVector3D()); }},
      {2, "- Proximity rectangle size along Z cannot be null\n",
       [](NgmNeighborhoodMoving &n) { n.setRuleProximity(true, NbgVector3D(1., 1., -1.)); }},
      {2, "- Minimum gap between two samples cannot be negative\n",
       [](NgmNeighborhoodMoving &n) { n.setRuleMinimumGap(true, -1.); }},
      {2,
       "- Minimum number of categories should be lower or equal to the Maximum number of "
       "categories\n- Maximum number of samples per category must be greater or equal than optimum "
       "number of samples per category\n",
       [](NgmNeighborhoodMoving &n) {
         n.setRuleMinimumCodeNumber(true, 4);
         n.setRuleMaximumCodeNumber(true, 3);
         n.setRuleOptimumPerCode(true, 3);
         n.setRuleMaximumPerCode(true, 2);
       }},
      {2,
       "- Maximum number of samples per block cannot be negative or null\n- Maximum distance "
       "without any sample cannot be negative\n- Maximum number of empty sectors cannot be "
       "negative\n- You must use Select all the samples in the target cell/block\n to use replace "
       "kriging by the average rule\n",
       [](NgmNeighborhoodMoving &n) {
         n.setRuleMaximumPerBlock(true, 0);
         n.setRuleMaximumDistanceWithoutSample(true, -1.);
         n.setRuleMaximumEmptySectors(true, -1, true);
       }},
      {2, nullptr,
       [](NgmNeighborhoodMoving &n) {
         n.setSectors(0, 0, true);
         n.setMovingNeighborhoodMode(NgcEMovNeighMode::FROM_BLOCK);
       }},
  };
  for (const Case &wrong : cases) {
    NgmNeighborhoodMoving neighborhood;
    wrong.change(neighborhood);
    QStringList errors = {QStringLiteral("left over")};
    QStringList warnings;
    EXPECT_EQ(neighborhood.checkParameters(wrong.dimension, errors, warnings), !wrong.error);
    EXPECT_EQ(errors.join(QString()).toStdString(), wrong.error ? wrong.error : "");
  }
}

TEST(NgmNeighborhoodMoving, ComparesWhatIsInForce)
{
  NgmNeighborhoodMoving a;
  NgmNeighborhoodMoving b;
  b.setRuleMaximumNumber(false, 12);
  EXPECT_EQ(a, b);
  a.setRuleMaximumNumber(true, 100);
  b.setRuleMaximumNumber(true, 12);
  EXPECT_NE(a, b);
  b = a;
  EXPECT_EQ(a, b);
  b.setEllipseRotation(NbgRotation(10., 0., 0.));
  EXPECT_NE(a, b);

  a.setEllipseSize(NbgVector3D(10., 4., 2.));
  EXPECT_TRUE(a.getEllipsoid().isIncluded(NbgVector3D(9.9, 0., 0.)));
  EXPECT_FALSE(a.getEllipsoid().isIncluded(NbgVector3D(0., 4.1, 0.)));
}

TEST(NgmNeighborhoodMoving, WarnsOfCapsBeyondTheEllipsoid)
{
  NgmNeighborhoodMoving n;
  n.setEllipseSize(NbgVector3D(10., 10., 1.));
  QStringList errors;
  QStringList warnings;
  n.setRuleCutSmall(true, NgcECutoffMode::CUTOFF_REPLACE, 0., NbgVector3D(1., 11., 1.));
  n.setRuleCutLarge(true, NgcECutoffMode::CUTOFF_REPLACE, 0., NbgVector3D(1., 1., 2.));
  EXPECT_TRUE(n.checkParameters(2, errors, warnings));
  EXPECT_EQ(warnings.size(), 1);
  EXPECT_TRUE(n.checkParameters(3, errors, warnings));
  EXPECT_EQ(
      warnings.join(QString()),
      QStringLiteral("- Bottom cap area is larger than main ellipsoid. This might be useless.\n"
                     "- Top cap area is larger than main ellipsoid. This might be useless.\n"));
}

TEST(NgmNeighborhoodMoving, ComparesValuesOfRulesThatAreOn)
{
  const auto one = NbgVector3D(1., 1., 1.);
  const std::function<void(NgmNeighborhoodMoving &, bool, int)> rules[] = {
      [&](auto &n, bool on, int v) { n.setRuleProximity(on, v * one); },
      [](auto &n, bool on, int v) { n.setRuleMaximumPerBlock(on, v); },
      [](auto &n, bool on, int v) { n.setRuleMinimumGap(on, v); },
      [](auto &n, bool on, int v) { n.setRuleMaximumDistanceWithoutSample(on, v); },
      [](auto &n, bool on, int v) { n.setRuleMaximumEmptySectors(on, v, true); },
      [](auto &n, bool on, int v) { n.setRuleMaximumEmptySectors(on, 1, v == 1); },
      [&](auto &n, bool on, int v) {
        n.setRuleCutLarge(on, NgcECutoffMode::CUTOFF_IGNORE, v, one);
      },
      [&](auto &n, bool on, int v) {
        n.setRuleCutSmall(on, NgcECutoffMode::CUTOFF_IGNORE, 1., v * one);
      },
      [](auto &n, bool on, int v) { n.setRuleOptimumPerCode(on, v); },
      [](auto &n, bool on, int v) { n.setRuleMaximumPerCode(on, v); },
      [](auto &n, bool on, int v) { n.setRuleMinimumCodeNumber(on, v); },
      [](auto &n, bool on, int v) { n.setRuleMaximumCodeNumber(on, v); },
  };
  int index = 0;
  for (const auto &rule : rules) {
    SCOPED_TRACE(index++);
    NgmNeighborhoodMoving a, b;
    rule(a, false, 1);
    rule(b, false, 2);
    EXPECT_EQ(a, b);
    rule(a, true, 1);
    EXPECT_NE(a, b);
    rule(b, true, 2);
    EXPECT_NE(a, b);
    rule(b, true, 1);
    EXPECT_EQ(a, b);
  }
  NgmNeighborhoodMoving a, b;
  a.setRuleMinimumGap(true, std::nan(""));
  b.setRuleMinimumGap(true, std::nan(""));
  EXPECT_NE(a, b);
}

TEST(NgmNeighborhoodMoving, IsReadAsWritten)
{
  NgmNeighborhoodMoving n = everyRule();
  NgmNeighborhoodMoving read;
  test::fromBytes(test::toBytes(n), read);
  // Both rules on numbers of categories come back as that of the maximum.
  n.setRuleMinimumCodeNumber(false, 1);
  EXPECT_EQ(read, n);
  EXPECT_EQ(read.getMinimumCodeNb(), 1);
  EXPECT_EQ(read.getMaximumCodeNb(), 5);

  // Their values are looked for under the flag of the maximum per category: what follows of a
  // stream without it is left over.
  n = everyRule();
  n.setRuleMaximumPerCode(false, 1);
  ASSERT_NO_THROW(test::fromBytes(test::toBytes(n), read));
  EXPECT_TRUE(read.isRuleMaximumCodeNb());
  EXPECT_EQ(read.getMaximumCodeNb(), 1);

  // Under that flag a pair without value ends the stream early.
  n = everyRule();
  n.setRuleMinimumCodeNumber(false, 1);
  n.setRuleMaximumCodeNumber(false, 1);
  const QByteArray bytes = test::toBytes(n);
  test::fromBytes(bytes, read);
  EXPECT_EQ(read, n);
  for (int length = 0; length < bytes.size(); ++length)
    EXPECT_THROW(test::fromBytes(bytes.left(length), read), NbeUserError) << length;
  n.setRuleMinimumCodeNumber(true, 2);
  test::fromBytes(test::toBytes(n), read);
  EXPECT_FALSE(read.isRuleMinimumCodeNb());
  EXPECT_FALSE(read.isRuleMaximumCodeNb());
  EXPECT_EQ(read.getMaximumPerCode(), 7);
  EXPECT_THROW(test::fromBytes(test::toBytes(n).chopped(4), read), NbeUserError);

  NgmNeighborhoodMoving plain;
  plain.setIsRectangular(true);
  test::fromBytes(test::toBytes(plain), read);
  EXPECT_FALSE(read.isRectangular());
  plain.setIsRectangular(false);
  EXPECT_EQ(read, plain);

  n = everyRule();
  n.setRuleMaximumPerCode(false, 1);
  n.setRuleMinimumCodeNumber(false, 1);
  n.setRuleMaximumCodeNumber(false, 1);
  test::fuzzSerialization(n);
}

TEST(NgmNeighborhoodMoving, ReadsEveryVersion)
{
  const NbgVector3D size(30., 20., 10.);
  const NbgRotation rotation(10., 20., 30.);
  for (const quint32 version : {161102u, 170104u, 170119u, 220214u, 220919u}) {
    SCOPED_TRACE(version);
    OldStream stream(version);
    if (version >= 170104u)
      stream.ints({1});
    stream.ints({4, 1, 8, 5, 3});
    if (version > 170119u)
      stream.ints({1, 33});
    stream << size << rotation;
    stream.ints({1, 0, 1, 1}) << NbgVector3D(1., 2., 3.);
    stream.ints({1});
    if (version < 170104u)
      stream.ints({2}) << 0.25 << 0.75;
    stream.ints({77});
    if (version < 170119u)
      stream.ints({4711});
    if (version > 170104u)
      stream.ints({1});
    stream.ints({1}) << 0.5;
    stream.ints({1}) << 12.;
    stream.ints({1, 2});
    if (version > 170119u)
      stream.ints({0});
    stream.ints({1, 1}) << 99. << 4.;
    if (version > 220214u)
      stream << 5. << 6.;
    stream.ints({0});
    stream.ints({1, 6, 1, 7});
    if (version > 170119u)
      stream.ints({1, 2, 1, 5});

    NgmNeighborhoodMoving expected = everyRule();
    if (version < 170104u)
      expected.setMovingNeighborhoodMode(NgcEMovNeighMode::FROM_ELLIPSOID);
    expected.setRuleIsotopicSearch(false);
    expected.setRuleMaximumNumber(version > 170119u, 33);
    expected.setRuleKeepAllInBlock(version > 170104u);
    expected.setRuleMaximumEmptySectors(true, 2, version <= 170119u);
    expected.setRuleCutLarge(true, NgcECutoffMode::CUTOFF_REMOVE, 99.,
                             version > 220214u ? NbgVector3D(4., 5., 6.) : NbgVector3D(4., 4., 4.));
    expected.setRuleCutSmall(false, NgcECutoffMode::CUTOFF_REPLACE, 0., NbgVector3D());
    expected.setRuleMinimumCodeNumber(false, 1);
    expected.setRuleMaximumCodeNumber(version > 170119u, 5);
    NgmNeighborhoodMoving read = everyRule();
    test::fromBytes(stream.bytes, read);
    EXPECT_EQ(read, expected) << qPrintable(read.debug(0));
    EXPECT_EQ(read.getCutSmallMode(), NgcECutoffMode::CUTOFF_REPLACE);
    EXPECT_EQ(read.getCutSmallThreshold(), 0.);

    for (int length = 0; length < stream.bytes.size(); length += 3)
      EXPECT_THROW(test::fromBytes(stream.bytes.left(length), read), NbeUserError);
  }
  NgmNeighborhoodMoving read;
  EXPECT_THROW(test::fromBytes(OldStream(161101u).bytes, read), NbeUserError);
}
