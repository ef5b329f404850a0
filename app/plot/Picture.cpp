#include "app/plot/Picture.h"

#include "app/plot/PlotStyle.h"

#include <QBuffer>
#include <QSvgGenerator>

namespace orvenal {

Picture::Picture(std::unique_ptr<QCustomPlot> plot, const QSize &size)
    : _plot(std::move(plot)), _size(size)
{
}

Picture::Picture(Picture &&) noexcept = default;
Picture &Picture::operator=(Picture &&) noexcept = default;
Picture::~Picture() = default;

QImage Picture::toImage() const
{
  QImage image = _plot->toPixmap(_size.width(), _size.height(), pixelsPerUnit).toImage();
  // Printed, letters have their size in points.
  const int perMeter = qRound(pixelsPerUnit * _plot->logicalDpiX() / 0.0254);
  image.setDotsPerMeterX(perMeter);
  image.setDotsPerMeterY(perMeter);
  return image;
}

QByteArray Picture::toPng() const
{
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  toImage().save(&buffer, "PNG");
  return bytes;
}

QByteArray Picture::toSvg() const
{
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QSvgGenerator generator;
  generator.setOutputDevice(&buffer);
  // Texts in points come out in the size for which the plot was laid out.
  generator.setResolution(_plot->logicalDpiX());
  generator.setSize(_size);
  generator.setViewBox(QRect(QPoint(0, 0), _size));
  QCPPainter painter;
  painter.begin(&generator);
  painter.setMode(QCPPainter::pmVectorized);
  painter.setMode(QCPPainter::pmNoCaching);
  _plot->toPainter(&painter, _size.width(), _size.height());
  painter.end();
  // Where the font is missing, one with letters of the same widths stands in.
  bytes.replace("font-family=\"DejaVu Sans\"", "font-family=\"DejaVu Sans, Verdana, sans-serif\"");
  return bytes;
}

}  // namespace orvenal
