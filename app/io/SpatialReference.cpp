#include "app/io/SpatialReference.h"

#include "app/io/GdalErrors.h"

#include <cpl_conv.h>
#include <ogr_spatialref.h>

namespace orvenal {

void SpatialReference::Deleter::operator()(OGRSpatialReference *reference) const
{
  reference->Release();
}

SpatialReference::SpatialReference() = default;
SpatialReference::SpatialReference(SpatialReference &&) noexcept = default;
SpatialReference &SpatialReference::operator=(SpatialReference &&) noexcept = default;
SpatialReference::~SpatialReference() = default;

SpatialReference SpatialReference::parse(const QString &text, QString &reason)
{
  static const char *const options[] = {"ALLOW_NETWORK_ACCESS=NO", "ALLOW_FILE_ACCESS=NO", nullptr};
  const GdalErrors errors;
  SpatialReference reference;
  reference._reference.reset(new OGRSpatialReference);
  if (reference._reference->SetFromUserInput(text.toUtf8().constData(),
                                             const_cast<char **>(options)) != OGRERR_NONE) {
    reason = errors.getMessage();
    reference._reference.reset();
    return reference;
  }
  reference._reference->SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  return reference;
}

bool SpatialReference::isGeographic() const
{
  return _reference && _reference->IsGeographic();
}

QString SpatialReference::getUnitSymbol() const
{
  if (!_reference)
    return QString();
  if (_reference->IsGeographic())
    return QChar(0xB0);
  const char *name = nullptr;
  _reference->GetLinearUnits(&name);
  const QString unit = QString::fromUtf8(name ? name : "");
  if (unit.startsWith(QLatin1String("metre"), Qt::CaseInsensitive) ||
      unit.startsWith(QLatin1String("meter"), Qt::CaseInsensitive))
    return QStringLiteral("m");
  return unit.contains(QLatin1String("foot"), Qt::CaseInsensitive) ? QStringLiteral("ft") : unit;
}

QString SpatialReference::toWkt() const
{
  static const char *const options[] = {"FORMAT=WKT2_2019", nullptr};
  char *text = nullptr;
  if (_reference)
    _reference->exportToWkt(&text, options);
  const QString wkt = QString::fromUtf8(text ? text : "");
  CPLFree(text);
  return wkt;
}

QString SpatialReference::getName() const
{
  const char *name = _reference ? _reference->GetName() : nullptr;
  return QString::fromUtf8(name ? name : "");
}

}  // namespace orvenal
