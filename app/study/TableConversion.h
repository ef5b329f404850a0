#pragma once

#include "app/io/TableReader.h"
#include "app/io/TableWriter.h"
#include "app/study/TableSummary.h"

#include <QString>
#include <QStringList>

namespace orvenal {

class Console;

/// What is to become of a table.
struct ConversionRequest
{
  QString input;
  QString output;  ///< its ending says the format
  TableFormat format;
  QStringList axes;     ///< columns of x, y (and z); guessed without it
  QStringList columns;  ///< that are kept besides the axes; all without it
  QString crs;          ///< in place of that of the input
};

/// Writes a table of points, or a grid, in another format.
///
/// Numbers keep their bits where the format holds doubles; columns of texts go where the format has
/// them, and so do columns of numbers with zeros in front ("007"). What a format cannot hold and
/// was asked for is an NbeUserError, what was not asked for is left out with a warning.
class TableConversion
{
public:
  /// Endings of the files that it writes, without dot.
  static QStringList endings();

  /// Reads the input from end to end.
  TableConversion(const ConversionRequest &request, Console &console);

  /// Writes the output to `path`.
  void write(const QString &path);

private:
  struct Column
  {
    int index;  ///< in the input
    bool isText;
  };

  void _chooseColumns();
  void _findNumbersThatAreTexts(std::vector<bool> &isText) const;
  void _dropTexts();
  void _writePoints(const QString &path);
  void _writeGrid(const QString &path);
  void _requireAxes() const;
  bool _isAxis(int column) const;
  std::unique_ptr<TableReader> _openInput() const;

  ConversionRequest _request;
  Console &_console;
  QString _ending;
  TableSummary _summary;
  std::vector<Column> _columns;
};

}  // namespace orvenal
