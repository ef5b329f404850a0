#include "geos/matrix/NgmMatrix.h"

#include "MatrixTestSupport.h"
#include "basic/base/NbbGlobal.h"
#include "basic/geom/NbgRotationMatrix.h"
#include "geos/matrix/NgcMacros.h"
#include "support/SerializationFuzz.h"

#include <atomic>
#include <clocale>
#include <limits>
#include <thread>

using namespace testsupport;

namespace {

constexpr double UNDEFINED = NbbGlobal::D_FFFF;
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

}  // namespace

TEST(NgmMatrix, ConstructorsGiveShapeElementsAndDefaults)
{
  const NgmMatrix one(true);
  EXPECT_EQ(one.getNElements(), 1);
  EXPECT_EQ(one(0, 0), 0.);
  EXPECT_TRUE(one.mustBeSymmetrical());
  EXPECT_EQ(one.getPrecision(), 1e-10);

  const double values[] = {1., 2., 3.};
  const NgmMatrix column(3, values);
  EXPECT_EQ(column.getNColumns(), 1);
  EXPECT_EQ(column(2, 0), 3.);
  EXPECT_FALSE(column.mustBeSymmetrical());

  const double data[] = {0., 1., 0., -1., 0., 0., 0., 0., 1.};
  const NgmMatrix rotation{NbgRotationMatrix(data)};
  EXPECT_TRUE(std::equal(data, data + 9, rotation.constElements()));
  EXPECT_EQ(rotation.getUsedMemory(), 72);

  const NgmMatrix empty(-3, 2, false);
  EXPECT_EQ(empty.getNElements(), 0);
}

TEST(NgmMatrix, StoreIsColumnMajorAndAligned)
{
  const NgmMatrix a = matrixOf(2, 3, {1., 2., 3., 4., 5., 6.});
  const double stored[] = {1., 4., 2., 5., 3., 6.};
  EXPECT_TRUE(std::equal(stored, stored + 6, a.constElements()));
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a.constElements()) % 64, 0u);
}

TEST(NgmMatrix, CopiesShareElementsUntilWritten)
{
  NgmMatrix a = randomMatrix(1, 4, 4);
  const NgmMatrix before = matrixOf(1, 1, {a(0, 0)});
  NgmMatrix b(a);
  NgmMatrix c(false);
  c = a;
  NgmMatrix d(4, 4, false);
  d.copy(a);
  EXPECT_EQ(a.constElements(), b.constElements());
  EXPECT_EQ(a.constElements(), c.constElements());
  EXPECT_EQ(a.constElements(), d.constElements());

  b.setElement(0, 0, 42.);
  c.elements()[0] = 43.;
  d.fill(44.);
  EXPECT_EQ(a(0, 0), before(0, 0));
  EXPECT_EQ(b(0, 0), 42.);
  EXPECT_EQ(c(0, 0), 43.);
  EXPECT_EQ(d(3, 3), 44.);
  EXPECT_EQ(a(3, 3), b(3, 3));

  NgmMatrix deep(false);
  deep.copyDeep(a);
  EXPECT_NE(deep.constElements(), a.constElements());
  EXPECT_TRUE(sameBits(deep, a));
  const double *store = deep.constElements();
  deep.copyDeep(matrixOf(2, 2, {1., 2., 3., 4.}));
  EXPECT_EQ(deep.constElements(), store);
  EXPECT_EQ(deep(0, 1), 2.);
}

TEST(NgmMatrix, CopyConstructorAssignmentAndCopyDifferInWhatTheyTake)
{
  NgmMatrix source = randomSymmetric(2, 3);
  source.setPrecision(1e-3);

  const NgmMatrix constructed(source);
  EXPECT_EQ(constructed.getPrecision(), 1e-3);
  EXPECT_TRUE(constructed.mustBeSymmetrical());

  NgmMatrix assigned(1, 2, false);
  assigned.setPrecision(1e-5);
  assigned = source;
  EXPECT_EQ(assigned.getPrecision(), 1e-5);
  EXPECT_TRUE(assigned.mustBeSymmetrical());
  EXPECT_EQ(assigned.getNColumns(), 3);

  NgmMatrix copied(9, 1, false);
  copied.setPrecision(1e-6);
  copied.copy(source);
  EXPECT_EQ(copied.getNRows(), 9);
  EXPECT_EQ(copied.getPrecision(), 1e-6);
  EXPECT_FALSE(copied.mustBeSymmetrical());
  EXPECT_EQ(copied(8, 0), source(2, 2));
}

TEST(NgmMatrix, CopiesMayBeWrittenFromSeveralThreads)
{
  const NgmMatrix shared = randomMatrix(3, 20, 20);
  const double reference = shared(7, 7);
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&shared, &wrong, reference, t] {
      for (int round = 0; round < 200; ++round) {
        NgmMatrix mine(shared);
        mine.setElement(7, 7, t);
        if (mine(7, 7) != t || shared(7, 7) != reference)
          ++wrong;
      }
    });
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_EQ(wrong, 0);
}

TEST(NgmMatrix, SingleWritesAreMirroredAndBulkWritesAreNot)
{
  NgmMatrix a(3, 3, true);
  a.setElement(0, 2, 5.);
  EXPECT_EQ(a(2, 0), 5.);
  a.addToElement(2, 0, 1.);
  EXPECT_EQ(a(0, 2), 6.);
  a.setUpperTriangularElement(2, 1, 7.);
  EXPECT_EQ(a(1, 2), 7.);
  EXPECT_EQ(a(2, 1), 7.);
  EXPECT_EQ(a.getUpperTriangularElement(2, 1), 7.);

  const double row[] = {1., 2., 3.};
  a.setRow(1, row);
  EXPECT_EQ(a(0, 1), 1.);
  EXPECT_EQ(a(2, 1), 3.);
  a.setColumn(0, row);
  EXPECT_EQ(a(0, 1), 2.);
  EXPECT_EQ(a(0, 2), 3.);

  a.setSubMatrix(matrixOf(1, 1, {9.}), 2, 0);
  EXPECT_EQ(a(2, 0), 9.);
  EXPECT_EQ(a(0, 2), 3.);
  const double all[] = {1., 2., 3., 4., 5., 6., 7., 8., 9.};
  a.setAllElementsColumnWise(9, all);
  EXPECT_EQ(a(0, 1), 4.);
  EXPECT_EQ(a(1, 0), 2.);

  // A flagged matrix that is not square writes within its bounds only.
  NgmMatrix tall(3, 1, true);
  tall.setElement(2, 0, 1.);
  EXPECT_EQ(tall(0, 0), 0.);
}

TEST(NgmMatrix, AddingUndefinedGivesUndefined)
{
  NgmMatrix a(2, 2, true);
  a.addToElement(0, 1, UNDEFINED);
  EXPECT_EQ(a(1, 0), UNDEFINED);
  a.addToElement(1, 0, 3.);
  EXPECT_EQ(a(0, 1), UNDEFINED);
}

TEST(NgmMatrix, ExtractsAndSetsPartsInTheTargetsShape)
{
  const NgmMatrix a = matrixOf(3, 3, {1., 2., 3., 4., 5., 6., 7., 8., 9.});
  NgmMatrix row(1, 3, false);
  a.extractRow(1, row);
  EXPECT_TRUE(sameBits(row, matrixOf(1, 3, {4., 5., 6.})));
  NgmMatrix column(3, 1, false);
  a.extractColumn(2, column);
  EXPECT_TRUE(sameBits(column, matrixOf(3, 1, {3., 6., 9.})));

  NgmMatrix part(2, 1, false);
  a.getSubMatrix(part, 1, 2);
  EXPECT_TRUE(sameBits(part, matrixOf(2, 1, {6., 9.})));
  NgmMatrix chosen(2, 2, false);
  a.extractSubMatrix(chosen, {2, 0});
  EXPECT_TRUE(sameBits(chosen, matrixOf(2, 2, {9., 7., 3., 1.})));

  NgmMatrix b(a);
  b.setColumn(0, column);
  b.setRow(0, row);
  EXPECT_TRUE(sameBits(b, matrixOf(3, 3, {4., 5., 6., 6., 5., 6., 9., 8., 9.})));
}

TEST(NgmMatrix, ResizeKeepsTheCommonBlockOrClears)
{
  NgmMatrix a = matrixOf(2, 2, {1., 2., 3., 4.});
  const double *store = a.constElements();
  a.resize(2, 2, true);
  EXPECT_EQ(a.constElements(), store);
  a.resize(3, 1, true);
  EXPECT_TRUE(sameBits(a, matrixOf(3, 1, {1., 3., 0.})));
  a.addColumn();
  EXPECT_TRUE(sameBits(a, matrixOf(3, 2, {1., 0., 3., 0., 0., 0.})));
  a.resize(2, false);
  EXPECT_TRUE(a.isNull(0.));
  a.resize(0, true);
  EXPECT_EQ(a.getNElements(), 0);

  NgmMatrix reused(20, 20, false);
  store = reused.constElements();
  reused.resize(5, 7, false);
  reused.resize(20, 20, false);
  EXPECT_EQ(reused.constElements(), store);
}

TEST(NgmMatrix, SwapsAndMovesRowsAndColumns)
{
  NgmMatrix a = matrixOf(3, 3, {11., 12., 13., 21., 22., 23., 31., 32., 33.});
  NgmMatrix b(a);
  b.swapColumns(0, 2);
  b.swapRows(0, 1);
  EXPECT_TRUE(sameBits(b, matrixOf(3, 3, {23., 22., 21., 13., 12., 11., 33., 32., 31.})));
  b = a;
  b.moveColumn(0, 2);
  EXPECT_TRUE(sameBits(b, matrixOf(3, 3, {12., 13., 11., 22., 23., 21., 32., 33., 31.})));
  b.moveColumn(2, 0);
  EXPECT_TRUE(sameBits(b, a));
  b.moveRow(2, 0);
  EXPECT_TRUE(sameBits(b, matrixOf(3, 3, {31., 32., 33., 11., 12., 13., 21., 22., 23.})));

  NgmMatrix symmetrical = randomSymmetric(4, 6);
  const NgmMatrix before(symmetrical);
  symmetrical.moveRow(1, 4);
  EXPECT_TRUE(symmetrical.isSymmetrical(0.));
  EXPECT_EQ(symmetrical(4, 4), before(1, 1));
  EXPECT_EQ(symmetrical(1, 3), before(2, 4));
  symmetrical.moveColumn(4, 1);
  EXPECT_TRUE(sameBits(symmetrical, before));
}

TEST(NgmMatrix, ArithmeticAgreesWithItsDefinition)
{
  const NgmMatrix a = randomMatrix(5, 7, 4);
  const NgmMatrix b = randomMatrix(6, 4, 5);
  const NgmMatrix product = a * b;
  for (int i = 0; i < 7; ++i)
    for (int j = 0; j < 5; ++j) {
      double sum = 0.;
      for (int k = 0; k < 4; ++k)
        sum += a(i, k) * b(k, j);
      // Four products of values of about 1.
      EXPECT_NEAR(product(i, j), sum, 1e-14);
    }
  EXPECT_TRUE(sameBits(a + a, a * 2.));
  EXPECT_TRUE((a - a).isNull(0.));
  EXPECT_TRUE(sameBits(a / 4., a * 0.25));

  NgmMatrix square = randomMatrix(7, 3, 3);
  const NgmMatrix expected = square * square;
  NgmMatrix::makeProduct(square, square, square);
  EXPECT_TRUE(sameBits(square, expected));
  square -= square;
  EXPECT_TRUE(square.isNull(0.));

  EXPECT_EQ((NgmMatrix(0, 3, false) * NgmMatrix(3, 2, false)).getNElements(), 0);
  EXPECT_TRUE((NgmMatrix(2, 0, false) * NgmMatrix(0, 2, false)).isNull(0.));
}

TEST(NgmMatrix, TransposeOfASymmetricalMatrixLeavesTheTargetAsItIs)
{
  const NgmMatrix symmetrical = randomSymmetric(8, 3);
  NgmMatrix out = matrixOf(1, 2, {1., 2.});
  symmetrical.transpose(out);
  EXPECT_TRUE(sameBits(out, matrixOf(1, 2, {1., 2.})));
  EXPECT_TRUE(sameBits(symmetrical.transpose(), NgmMatrix(1, 1, false)));
}

TEST(NgmMatrix, TransposeExchangesRowsAndColumns)
{
  const NgmMatrix a = matrixOf(2, 3, {1., 2., 3., 4., 5., 6.});
  EXPECT_TRUE(sameBits(a.transpose(), matrixOf(3, 2, {1., 4., 2., 5., 3., 6.})));
  NgmMatrix inPlace(a);
  inPlace.transpose(inPlace);
  EXPECT_TRUE(sameBits(inPlace, a.transpose()));

  const NgmMatrix row = matrixOf(1, 3, {1., 2., 3.});
  const NgmMatrix column = row.transpose();
  EXPECT_EQ(column.getNRows(), 3);
  EXPECT_EQ(column.constElements(), row.constElements());
}

TEST(NgmMatrix, TestsCompareWithinThePrecision)
{
  NgmMatrix a = matrixOf(2, 2, {1., 1e-11, 0., 1.});
  EXPECT_TRUE(a.isIdentity());
  EXPECT_FALSE(a.isIdentity(1e-12));
  EXPECT_TRUE(a.isSymmetrical());
  EXPECT_FALSE(a.isSymmetrical(0.));
  EXPECT_FALSE(a.isNull());
  EXPECT_TRUE(a.isNull(1.));
  EXPECT_FALSE(matrixOf(1, 1, {NOT_A_NUMBER}).isNull(1e300));

  NgmMatrix b(a);
  b.setElement(0, 0, 1. + 1e-6);
  EXPECT_NE(a, b);
  b.setPrecision(1e-3);
  EXPECT_NE(a, b);
  a.setPrecision(1e-5);
  EXPECT_EQ(a, b);
  EXPECT_NE(a, matrixOf(1, 1, {1.}));

  for (int columns : {0, 1}) {
    const NgmMatrix small(columns, columns, false);
    EXPECT_TRUE(small.isSymmetrical());
    EXPECT_TRUE(small.isUpperTriangular());
  }
  EXPECT_TRUE(NgmMatrix(0, 0, false).isIdentity());
  EXPECT_FALSE(NgmMatrix(1, 3, false).isSymmetrical());
  EXPECT_FALSE(NgmMatrix(2, 3, false).isIdentity());
}

TEST(NgmMatrix, UpperTriangularExaminesTheAntiDiagonalPart)
{
  EXPECT_FALSE(matrixOf(2, 2, {1., 1., 0., 1.}).isUpperTriangular());
  EXPECT_TRUE(matrixOf(2, 2, {0., 1., 0., 1.}).isUpperTriangular());
  EXPECT_TRUE(matrixOf(3, 3, {0., 0., 1., 0., 0., 2., 0., 3., 4.}).isUpperTriangular());
  EXPECT_FALSE(matrixOf(3, 3, {0., 0., 1., 0., 5., 2., 0., 3., 4.}).isUpperTriangular());
}

TEST(NgmMatrix, SymmetryIsSetOnSymmetricalMatricesOnly)
{
  NgmMatrix a = matrixOf(2, 2, {1., 2., 3., 4.});
  EXPECT_THROW(a.setMustBeSymmetrical(true), NbeError);
  EXPECT_FALSE(a.mustBeSymmetrical());
  a.makeSymmetrical();
  EXPECT_TRUE(a.mustBeSymmetrical());
  EXPECT_EQ(a(1, 0), 2.);
  NgmMatrix wide(2, 3, false);
  wide.makeSymmetrical();
  EXPECT_FALSE(wide.mustBeSymmetrical());
}

TEST(NgmMatrix, TextsShowElementsAndElisions)
{
  const NgmMatrix a = matrixOf(2, 2, {1., 2., 3., 0.1});
  EXPECT_EQ(a.toString1(17), QStringLiteral("1, 3, 2, 0.10000000000000001"));
  const QString text = a.toString(-1, -1, QStringLiteral("|"));
  EXPECT_EQ(text.count('\n'), 2);
  EXPECT_EQ(text.simplified().remove(' '), QStringLiteral("1|23|0.1"));
  EXPECT_FALSE(text.contains(QStringLiteral(".....")));

  const NgmMatrix large(12, 11, false);
  const QString shortened = large.debug(1);
  EXPECT_TRUE(
      shortened.startsWith(QStringLiteral("Columns  : 11\nRows     : 12\nElements : 132\n")));
  EXPECT_EQ(shortened.count(QStringLiteral(" .....\n")), 10);
  EXPECT_TRUE(shortened.endsWith(QStringLiteral("\n......\n")));
  EXPECT_EQ(large.debug(2).count('\n'), 15);
  EXPECT_EQ(large.debug(-1).count('\n'), 12);
}

TEST(NgmMatrix, ReadsNumbersFromTextInEveryLocale)
{
  NgmMatrix a(5, 5, false);
  EXPECT_TRUE(a.fromString(QStringLiteral("1.5, 2e3,,-.25,0x10"), false, 2, -1));
  EXPECT_TRUE(sameBits(a, matrixOf(2, 2, {1.5, -0.25, 2000., 16.})));
  EXPECT_FALSE(a.fromString(QStringLiteral("1,2,3"), true, 2, 2));
  EXPECT_EQ(a(0, 0), 1.5);
  EXPECT_FALSE(a.mustBeSymmetrical());
  EXPECT_TRUE(a.fromString(QStringLiteral("1,2,2,nonsense"), true, 2, 2));
  EXPECT_TRUE(a.mustBeSymmetrical());
  EXPECT_EQ(a(1, 1), 0.);
}

TEST(NgmMatrix, StreamKeepsEverythingAndRefusesDamage)
{
  NgmMatrix written = randomSymmetric(9, 3);
  written.setElement(0, 1, UNDEFINED);
  written.setPrecision(1e-4);
  NgmMatrix read(2, 1, false);
  test::fromBytes(test::toBytes(written), read);
  EXPECT_TRUE(sameBits(read, written));
  EXPECT_TRUE(read.mustBeSymmetrical());
  EXPECT_EQ(read.getPrecision(), 1e-4);

  NgmMatrix target = randomMatrix(10, 1, 2);
  test::fuzzSerialization(written, target);
}

TEST(NgmMatrix, StreamRefusesCountsThatDisagree)
{
  // After magic and version: rows, columns, count.
  const auto damaged = [](int offset, qint32 value) {
    QByteArray bytes = test::toBytes(NgmMatrix(2, 3, false));
    QByteArray word;
    QDataStream(&word, QIODevice::WriteOnly) << value;
    return bytes.replace(8 + offset, 4, word);
  };
  NgmMatrix target(1, 1, false);
  for (const QByteArray &bytes :
       {damaged(0, -2), damaged(4, 4), damaged(8, 5), damaged(0, 1 << 30)})
    EXPECT_THROW(test::fromBytes(bytes, target), NbeUserError);

  QByteArray huge = damaged(0, 1 << 15);
  QByteArray words;
  QDataStream(&words, QIODevice::WriteOnly)
      << qint32(1 << 15) << qint32(1 << 15) << quint32(1 << 30);
  huge.replace(8, 12, words);
  EXPECT_THROW(test::fromBytes(huge, target), NbeUserError);
}

TEST(NgcMacros, IndexFormulas)
{
  int expected = 0;
  for (int i = 0; i < 6; ++i)
    for (int j = 0; j <= i; ++j, ++expected) {
      EXPECT_EQ(NgcMacros::TRI_ADDR(i, j), expected);
      EXPECT_EQ(NgcMacros::TRI_ADDR(j, i), expected);
    }
  EXPECT_EQ(NgcMacros::SQR_ADDR(7, 2, 3), 17);
}
