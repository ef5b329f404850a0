#pragma once

#include "app/io/TableWriter.h"

#include <memory>

namespace orvenal {

/// Writes a GeoPackage with one layer, named like the file; see TableWriter. The coordinates are
/// the points, and no fields. All records go in one transaction; a spatial index is made at the
/// end.
class GeoPackageTableWriter : public TableWriter
{
public:
  GeoPackageTableWriter(const QString &path, const QString &shownName, const TableLayout &layout);
  ~GeoPackageTableWriter() override;

  void add(const TableRecord &record) override;
  void finish() override;

private:
  struct File;
  std::unique_ptr<File> _file;
};

}  // namespace orvenal
