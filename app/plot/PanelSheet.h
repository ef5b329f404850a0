#pragma once

#include "app/plot/PlotStyle.h"

#include <QSize>
#include <QStringList>

#include <memory>

namespace orvenal {

class Picture;
struct ColorRange;

/// A plot area of a picture that has several: what it is called, and which part of the plane it
/// shows.
struct Panel
{
  QString title;
  QString xLabel;
  QString yLabel;
  QCPRange x;  ///< what has to be seen; the area shows more where it would be too narrow
  QCPRange y;
  double xScale = 1.;  ///< units of the layout per unit of the axis
  double yScale = 1.;
};

/// A picture of several plot areas, each in exactly its scales, one after the other in rows like
/// words: areas of one height share a row as long as there is room.
class PanelSheet
{
public:
  /// Title and remark stand above the areas, broken to their width.
  PanelSheet(const QString &title, const QString &remark, double width);
  ~PanelSheet();

  /// Adds an area with its frame and axes.
  QCPAxisRect &add(const Panel &panel);

  /// Adds a colour scale to the right of the last area, or below all of them.
  enum Side { RIGHT, BELOW };
  void addColorScale(Side side, const QString &label, const QCPColorGradient &gradient,
                     const ColorRange &range);

  /// Adds a row of names and, below each, its value.
  void addTable(const QStringList &names, const QStringList &values);

  /// The picture, in the size that its parts need. The sheet is empty then.
  Picture finish();

private:
  QCPLayoutGrid &_addRow();
  QCPMarginGroup &_groupOf(int column);

  std::unique_ptr<QCustomPlot> _plot;
  double _width;
  QCPLayoutGrid *_body;
  QVector<QCPLayoutGrid *> _rows;       ///< of areas
  QCPLayoutGrid *_row = nullptr;        ///< the last one
  QCPMarginGroup *_rowGroup = nullptr;  ///< its areas have one height
  QSize _rowSize;                       ///< room that the row's areas take, with their labels
  int _nInRow = 0;
  QVector<QCPMarginGroup *> _groups;  ///< areas above each other begin at one place
};

/// How heights are drawn beside horizontal lengths.
struct HeightScale
{
  double factor = 1.;  ///< exaggeration: 1, or a round number above
  double scale = 1.;   ///< units of the layout per unit of height
};

/// The scale of heights that reach over `extent` in a section whose lengths have the given scale:
/// the same one, or exaggerated when the section would be too flat to be read.
HeightScale heightScaleFor(double extent, double scale);

/// "y = 120 m, heights × 5"; the name alone without an exaggeration.
QString sectionTitle(const QString &name, const HeightScale &heights);

}  // namespace orvenal
