#pragma once

#include "app/plot/PlotLibrary.h"

#include <QColor>

#include <vector>

namespace orvenal {

/// A sample in a picture.
struct SampleMark
{
  enum Shape {
    CIRCLE,
    CROSS,
    OPEN,  ///< a circle that is not filled
    UP,    ///< a triangle, larger than the others
    DOWN
  };

  double x = 0.;
  double y = 0.;
  QColor fill;
  Shape shape = CIRCLE;
};

/// Marks at samples in one plot area, above its frame. Where they hide each other they are smaller
/// and hardly have an outline, so that the samples of a line can be told apart. Thousands of marks
/// would hide each other: they are thinned to dots then, the first one of each small square of the
/// picture, triangles before others.
class SampleMarks : public QCPLayerable
{
public:
  /// More marks than this are thinned.
  static constexpr std::size_t most = 5000;

  enum Dots {
    FILLED,   ///< in the colours of their marks
    OUTLINED  ///< small and black on white, so that what is below them can be seen
  };

  /// `radius` is that of few marks; many are smaller. The plot owns the object.
  SampleMarks(QCPAxisRect &area, std::vector<SampleMark> marks, double radius, Dots dots);

protected:
  void applyDefaultAntialiasingHint(QCPPainter *painter) const override;
  QRect clipRect() const override { return _area.rect(); }
  void draw(QCPPainter *painter) override;

private:
  QPointF _placeOf(const SampleMark &mark) const;
  bool _isCrowded() const;
  void _drawMark(QCPPainter &painter, const SampleMark &mark, bool isCrowded) const;
  void _drawCross(QCPPainter &painter, const QPointF &place) const;
  void _drawTriangle(QCPPainter &painter, const SampleMark &mark) const;
  void _drawDots(QCPPainter &painter, bool isTriangles, std::vector<bool> &taken) const;

  QCPAxisRect &_area;
  std::vector<SampleMark> _marks;
  double _radius;
  Dots _dots;
};

}  // namespace orvenal
