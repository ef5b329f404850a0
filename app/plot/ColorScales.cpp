#include "app/plot/ColorScales.h"

#include <QStringList>

namespace orvenal {

/// Matplotlib's viridis (Smith and van der Walt, 2015) and cividis (Nunez et al., 2018).
QCPColorGradient gradientOf(ColorScale scale)
{
  static const QStringList viridis = {"#440154", "#482878", "#3e4989", "#31688e", "#26828e",
                                      "#1f9e89", "#35b779", "#6ece58", "#b5de2b", "#fde725"};
  static const QStringList cividis = {"#00224e", "#123570", "#3b496c", "#575d6d", "#707173",
                                      "#8a8678", "#a59c74", "#c3b369", "#e1cc55", "#fee838"};
  const QStringList &colors = scale == ColorScale::VIRIDIS ? viridis : cividis;
  QCPColorGradient gradient;
  gradient.clearColorStops();
  for (int i = 0; i < colors.size(); ++i)
    gradient.setColorStopAt(double(i) / (colors.size() - 1), QColor(colors[i]));
  gradient.setColorInterpolation(QCPColorGradient::ciRGB);
  gradient.setNanHandling(QCPColorGradient::nhTransparent);
  return gradient;
}

QCPColorScale &addColorScale(QCustomPlot &plot, const QString &label)
{
  auto *scale = new QCPColorScale(&plot);
  plot.plotLayout()->addElement(plot.plotLayout()->rowCount() - 1, 1, scale);
  scale->setType(QCPAxis::atRight);
  scale->setBarWidth(16);
  scale->setLabel(label);
  scale->axis()->setLabelFont(fontOf(10));
  scale->axis()->setTickLabelFont(fontOf(9));
  scale->axis()->setNumberFormat(QStringLiteral("g"));
  scale->axis()->setNumberPrecision(6);
  scale->setMargins(QMargins(10, 0, 0, 0));
  auto *group = new QCPMarginGroup(&plot);
  plot.axisRect()->setMarginGroup(QCP::msBottom | QCP::msTop, group);
  scale->setMarginGroup(QCP::msBottom | QCP::msTop, group);
  return *scale;
}

void equalizeScales(QCustomPlot &plot, const QSize &size)
{
  plot.setViewport(QRect(QPoint(0, 0), size));
  plot.replot(QCustomPlot::rpImmediateRefresh);
  const QSize area = plot.axisRect()->size();
  const double xScale = plot.xAxis->range().size() / area.width();
  const double yScale = plot.yAxis->range().size() / area.height();
  if (xScale < yScale)
    plot.xAxis->setScaleRatio(plot.yAxis, 1.);
  else
    plot.yAxis->setScaleRatio(plot.xAxis, 1.);
}

}  // namespace orvenal
