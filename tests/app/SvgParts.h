#pragma once

#include <QByteArray>
#include <QPointF>
#include <QRectF>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <vector>

/// What a test can see in a picture: the parts of its SVG, in units of its layout.
namespace apptest {

class SvgParts
{
public:
  explicit SvgParts(const QByteArray &svg) : _svg(QString::fromUtf8(svg)) {}

  /// All texts, in the order in which they were drawn.
  QStringList texts() const
  {
    QStringList found;
    QRegularExpression text(QStringLiteral("<text [^>]*>([^<]*)</text>"));
    for (auto match = text.globalMatch(_svg); match.hasNext();)
      found << match.next().captured(1).trimmed();
    return found;
  }

  bool hasText(const QString &part) const
  {
    const QStringList all = texts();
    return std::any_of(all.begin(), all.end(),
                       [&](const QString &text) { return text.contains(part); });
  }

  struct Text
  {
    QString text;
    QPointF place;  ///< left end of its line
    double size;    ///< of its letters
  };

  /// Texts with their places, where they are not turned.
  std::vector<Text> placedTexts() const
  {
    std::vector<Text> found;
    QRegularExpression text(
        QStringLiteral("<text [^>]*x=\"([^\"]*)\" y=\"([^\"]*)\"[^>]*font-size=\"([^\"]*)\""
                       "[^>]*>([^<]*)</text>"));
    for (auto match = text.globalMatch(_svg); match.hasNext();) {
      const QRegularExpressionMatch piece = match.next();
      found.push_back({piece.captured(4).trimmed(),
                       QPointF(piece.captured(1).toDouble(), piece.captured(2).toDouble()),
                       piece.captured(3).toDouble()});
    }
    return found;
  }

  struct Circle
  {
    QPointF center;
    double radius;
    QString fill;  ///< "#rrggbb", "none"
  };

  /// Circles, each with the colour of the group that it stands in.
  std::vector<Circle> circles() const
  {
    std::vector<Circle> found;
    QString fill;
    QRegularExpression part(
        QStringLiteral("<g fill=\"([^\"]*)\"|<circle cx=\"([^\"]*)\" cy=\"([^\"]*)\" "
                       "r=\"([^\"]*)\"/>"));
    for (auto match = part.globalMatch(_svg); match.hasNext();) {
      const QRegularExpressionMatch piece = match.next();
      if (!piece.captured(1).isEmpty())
        fill = piece.captured(1);
      else
        found.push_back({QPointF(piece.captured(2).toDouble(), piece.captured(3).toDouble()),
                         piece.captured(4).toDouble(), fill});
    }
    return found;
  }

  /// Bounds of the filled shapes of a colour that are drawn as paths.
  std::vector<QRectF> shapes(const QString &color) const
  {
    std::vector<QRectF> found;
    QString fill;
    QRegularExpression part(QStringLiteral("<g fill=\"([^\"]*)\"|<path [^>]*d=\"([^\"]*)\""));
    for (auto match = part.globalMatch(_svg); match.hasNext();) {
      const QRegularExpressionMatch piece = match.next();
      if (!piece.captured(1).isEmpty())
        fill = piece.captured(1);
      else if (fill == color)
        found.push_back(_boundsOf(piece.captured(2)));
    }
    return found;
  }

private:
  static QRectF _boundsOf(const QString &path)
  {
    double left = 1e9, right = -1e9, top = 1e9, bottom = -1e9;
    QRegularExpression point(QStringLiteral("([-0-9.e]+),([-0-9.e]+)"));
    for (auto match = point.globalMatch(path); match.hasNext();) {
      const QRegularExpressionMatch place = match.next();
      left = std::min(left, place.captured(1).toDouble());
      right = std::max(right, place.captured(1).toDouble());
      top = std::min(top, place.captured(2).toDouble());
      bottom = std::max(bottom, place.captured(2).toDouble());
    }
    return QRectF(left, top, right - left, bottom - top);
  }

  QString _svg;
};

}  // namespace apptest
