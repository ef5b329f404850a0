#pragma once

#include "app/io/TableWriter.h"
#include "app/io/TextFile.h"

namespace orvenal {

/// Writes a GEO-EAS file; see TableWriter. Columns of texts are an NbeUserError.
class GeoEasTableWriter : public TableWriter
{
public:
  GeoEasTableWriter(const QString &path, const QString &shownName, const TableLayout &layout);

  void add(const TableRecord &record) override;
  void finish() override { _file.finish(); }

private:
  TextFile _file;
  TableLayout _layout;
};

}  // namespace orvenal
