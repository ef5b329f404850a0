#pragma once

#include <QString>

#include <memory>

class OGRSpatialReference;

namespace orvenal {

/// A coordinate reference system, from the text by which a user names it: "EPSG:28992", WKT, a PROJ
/// string. Neither files nor the network are asked.
class SpatialReference
{
public:
  /// An invalid one, and the reason, when the text names none.
  static SpatialReference parse(const QString &text, QString &reason);

  /// A reference for people, from the text that names it: "EPSG:28992 (Amersfoort / RD New)"; the
  /// name alone for WKT and PROJ strings.
  static QString describe(const QString &text);

  SpatialReference();
  SpatialReference(SpatialReference &&) noexcept;
  SpatialReference &operator=(SpatialReference &&) noexcept;
  ~SpatialReference();

  bool isValid() const { return _reference != nullptr; }

  /// Coordinates are longitudes and latitudes.
  bool isGeographic() const;

  /// "m", "ft", "°"; the unit's name when it has no common symbol, empty for an invalid reference.
  QString getUnitSymbol() const;

  /// "Amersfoort / RD New"
  QString getName() const;

  /// The whole reference as WKT (version 2:2019); empty for an invalid one.
  QString toWkt() const;
  /// "EPSG:28992" when it is such a registered one, else its WKT.
  QString toText() const;

  /// Whether coordinates mean the same in both, whatever the order of the axes in their definitions
  /// and the spelling of names.
  bool isSame(const SpatialReference &other) const;

  const OGRSpatialReference *get() const { return _reference.get(); }

private:
  struct Deleter
  {
    void operator()(OGRSpatialReference *reference) const;
  };
  std::unique_ptr<OGRSpatialReference, Deleter> _reference;
};

}  // namespace orvenal
