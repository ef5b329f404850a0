#include "basic/data/NbdDataLines.h"

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeProgrammingError.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace {

/// Lines 4, 9, 2 and 7 of a file with 2, 0, 3 and 0 samples; V is 0 ... 4.
NbdDataLines makeBuffer()
{
  NbdDataLines lines;
  NbdAVariableNumeric &v = *lines.getDataTable().createVariableNumeric(Nbd::Role::V);
  lines.setLines({4, 9, 2, 7}, {2, 0, 3, 0});
  for (int position = 0; position < 5; ++position)
    v.setValue(position, position);
  return lines;
}

std::vector<double> values(const NbdDataLines &lines)
{
  const NbdAVariableNumeric &v = *lines.getVariableNumeric(Nbd::Role::V, 0);
  std::vector<double> all;
  for (int position = 0; position < lines.getNSamples(); ++position)
    all.push_back(v.isUndefined(position) ? -1. : v.getValue(position));
  return all;
}

}  // namespace

TEST(NbdDataLines, WalksItsLines)
{
  const NbdDataLines lines = makeBuffer();
  EXPECT_EQ(lines.getNSamples(), 5);
  NbdDataLines::Iterator iterator = lines.getLinesIterator();
  const int expected[4][3] = {{4, 0, 2}, {9, 2, 0}, {2, 2, 3}, {7, 5, 0}};
  for (const auto &line : expected) {
    ASSERT_TRUE(iterator.hasNext());
    const NbdDataLines::Line next = iterator.next();
    EXPECT_EQ(next.rank, line[0]);
    EXPECT_EQ(next.first, line[1]);
    EXPECT_EQ(next.count, line[2]);
  }
  EXPECT_FALSE(iterator.hasNext());
  EXPECT_THROW(lines.getLineRef(4), NbeProgrammingError);
}

TEST(NbdDataLines, AddsAndRemovesSamplesWithinALine)
{
  NbdDataLines lines = makeBuffer();
  NbdVariableSelection selection;
  selection.resizeAndFill(5);
  selection.setBoolValue(3, false);
  lines.setSelection(selection);

  EXPECT_EQ(lines.addSample(0), 2);
  lines.addSamples(1, 2);
  EXPECT_EQ(lines.getNSamplesPerLine(), (QVector<int>{3, 2, 3, 0}));
  EXPECT_EQ(values(lines), (std::vector<double>{0., 1., -1., -1., -1., 2., 3., 4.}));
  EXPECT_EQ(lines.getSelectedPositions(), (std::vector<int>{0, 1, 2, 3, 4, 5, 7}));

  lines.removeSample(5);
  EXPECT_EQ(lines.getNSamplesPerLine(), (QVector<int>{3, 2, 2, 0}));
  EXPECT_EQ(lines.getSelectedPositions(), (std::vector<int>{0, 1, 2, 3, 4, 6}));
  lines.removeSample(6);
  EXPECT_EQ(lines.getNSamplesPerLine(), (QVector<int>{3, 2, 1, 0}));
  EXPECT_EQ(values(lines), (std::vector<double>{0., 1., -1., -1., -1., 3.}));
  EXPECT_THROW(lines.removeSample(6), NbeProgrammingError);
}

TEST(NbdDataLines, SharesSamplesAnewOnlyWhenTheyAddUp)
{
  NbdDataLines lines = makeBuffer();
  lines.setNSamplesPerLine({1, 1, 1, 2});
  EXPECT_EQ(lines.getLineRef(3).first, 3);
  EXPECT_THROW(lines.setNSamplesPerLine({1, 1, 1, 1}), NbeProgrammingError);
  EXPECT_THROW(lines.setNSamplesPerLine({5}), NbeProgrammingError);
  EXPECT_THROW(lines.setLines({1, 2}, {1}), NbeProgrammingError);
  const int most = std::numeric_limits<int>::max();  // the three sum up to 1 in an int
  EXPECT_THROW(lines.setLines({1, 2, 3}, {most, most, 3}), NbeError);
  const std::unique_ptr<NbdDataLines> copy(lines.makeCopy());
  lines.setLines({}, {});
  EXPECT_EQ(copy->getNLines(), 4);
  EXPECT_EQ(values(*copy).size(), 5u);
}
