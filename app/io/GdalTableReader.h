#pragma once

#include "app/io/FieldParser.h"
#include "app/io/GdalDataset.h"
#include "app/io/TableReader.h"

#include <ogrsf_frmts.h>

namespace orvenal {

/// Reads a layer of a vector file (GeoPackage, Shapefile, GeoJSON, FlatGeobuf ...) feature by
/// feature.
///
/// Points give the columns x, y, and z when they have it, in front of the layer's fields. They come
/// first because the layer's coordinate reference system is theirs: a field named x as well is the
/// column "x (field)". A point may come as a MultiPoint of one point; features without a point, or
/// with several, are errors when a coordinate is asked for. Layers of other geometries, and those
/// without one, have their fields only.
///
/// Null is undefined. Numbers may stand in fields of text; dates, lists and the like are text.
class GdalTableReader : public TableReader
{
public:
  /// Takes over the dataset; `format.layer` names one of its layers.
  GdalTableReader(GdalDatasetPtr dataset, const QString &shownName, const TableFormat &format);
  ~GdalTableReader() override;

  TableFormat getFormat() const override { return _format; }
  QString getFormatName() const override;

  bool next() override;
  Field classify(int column, double &number) const override;
  double getNumber(int column) const override;
  QString getText(int column) const override;
  QString getReference() const override;

protected:
  QString _getPlace() const override;
  QString _getHeaderPlace() const override;
  QString _getMissingHint() const override;

private:
  struct Deleter
  {
    void operator()(OGRFeature *feature) const { OGRFeature::DestroyFeature(feature); }
  };

  void _findColumns();
  bool _holdsNumber(int field) const;
  const OGRPoint *_getPoint() const;
  [[noreturn]] void _failPoint() const;

  TableFormat _format;
  FieldParser _parser;
  GdalDatasetPtr _dataset;
  OGRLayer *_layer;
  std::unique_ptr<OGRFeature, Deleter> _feature;
  int _nAxes = 0;  // columns that the geometry gives
  qint64 _nRead = 0;
};

}  // namespace orvenal
