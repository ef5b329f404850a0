#include "app/plot/VariogramPicture.h"

#include "SvgParts.h"
#include "app/plot/VariogramPanel.h"
#include "app/study/Variography.h"
#include "geos/vmodel/NgmVModel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <tuple>

using namespace orvenal;
using apptest::SvgParts;

namespace {

/// Curves that rise, one per direction.
Variography makeVariography(int nDirections, int nLags, qint64 pairs)
{
  Variography variography;
  variography.curveName = QStringLiteral("Variogram");
  VariogramSet set;
  set.sill = 1.;
  for (int i = 0; i < nDirections; ++i) {
    VariogramCurve curve;
    curve.name = QStringLiteral("direction %1").arg(i);
    curve.isOmnidirectional = nDirections == 1;
    curve.direction = NbgVector3D(std::sin(0.2 * i), std::cos(0.2 * i), 0.);
    for (int lag = 1; lag <= nLags; ++lag) {
      curve.distances << 10. * lag;
      curve.values << (1. + 0.2 * i) * (1. - std::exp(-3. * lag / nLags));
      curve.pairs << pairs + lag;
    }
    set.curves << curve;
  }
  variography.sets << set;
  return variography;
}

VariogramStyle makeStyle(const NgmVModel *model = nullptr)
{
  VariogramStyle style;
  style.title = QStringLiteral("Title");
  style.variables << JobVariable();
  style.model = model;
  return style;
}

}  // namespace

TEST(VariogramPicture, KeepsNumbersOfPairsOffThePoints)
{
  for (const auto &[nDirections, nLags, least] :
       {std::tuple(1, 5, 5), std::tuple(1, 16, 14), std::tuple(1, 60, 6), std::tuple(4, 12, 20)}) {
    const SvgParts svg(
        drawVariograms(makeVariography(nDirections, nLags, 1000), makeStyle()).toSvg());
    std::vector<QRectF> numbers;
    for (const SvgParts::Text &text : svg.placedTexts()) {
      // Digits are about 0.64 of their size wide and 0.73 high.
      if (text.text.size() == 4 && text.text.startsWith("10"))
        numbers.emplace_back(text.place - QPointF(0., 0.73 * text.size),
                             QSizeF(4 * 0.64 * text.size, 0.73 * text.size));
    }
    EXPECT_GE(int(numbers.size()), least) << nDirections << " directions, " << nLags << " lags";
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j)
        EXPECT_FALSE(numbers[i].intersects(numbers[j]));
      for (const SvgParts::Circle &circle : svg.circles()) {
        const QPointF r(circle.radius, circle.radius);
        EXPECT_FALSE(numbers[i].intersects(QRectF(circle.center - r, circle.center + r)));
      }
    }
  }
}

TEST(VariogramPicture, ShortensNumbersOfPairs)
{
  EXPECT_EQ(shortCount(99999), "99999");
  EXPECT_EQ(shortCount(100000), "100k");
  EXPECT_EQ(shortCount(999499), "999k");
  EXPECT_EQ(shortCount(999500), "1M");
  EXPECT_EQ(shortCount(187487303), "187M");
  const SvgParts svg(drawVariograms(makeVariography(1, 20, 187000000), makeStyle()).toSvg());
  EXPECT_GE(svg.texts().count("187M"), 15);
}

TEST(VariogramPicture, ShowsAModelAboveTheCurves)
{
  NgmVModel model(1);
  model.setRangeIsotropic(model.addStructure("Spherical", 40.), 20.);
  const SvgParts svg(drawVariograms(makeVariography(1, 10, 100), makeStyle(&model)).toSvg());
  EXPECT_TRUE(svg.texts().contains("40"));
}

TEST(VariogramPicture, TellsManyDirectionsApart)
{
  std::set<QString> styles;
  for (int i = 0; i < 14; ++i) {
    const DirectionStyle style = directionStyle(i);
    styles.insert(style.color.name() + (style.isFilled ? "filled" : "hollow"));
    EXPECT_EQ(style.isFilled, style.line == Qt::SolidLine);
  }
  EXPECT_EQ(styles.size(), 14u);
}
