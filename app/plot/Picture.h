#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

#include <memory>

class QCustomPlot;

namespace orvenal {

/// Pixels of a picture per unit of its layout.
constexpr double pixelsPerUnit = 2.;

/// A finished picture, which can be had in several formats. Needs a QApplication; no display.
class Picture
{
public:
  /// A plot, drawn at a size in units of its layout.
  Picture(std::unique_ptr<QCustomPlot> plot, const QSize &size);
  Picture(Picture &&) noexcept;
  Picture &operator=(Picture &&) noexcept;
  ~Picture();

  QImage toImage() const;
  QByteArray toPng() const;
  QByteArray toSvg() const;

private:
  std::unique_ptr<QCustomPlot> _plot;
  QSize _size;
};

}  // namespace orvenal
