#include "app/io/GdalRasterReader.h"

#include "app/console/Interruption.h"
#include "app/io/GdalErrors.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"

#include <QObject>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvenal {

namespace {

constexpr double undefined = std::numeric_limits<double>::quiet_NaN();

}  // namespace

GdalRasterReader::GdalRasterReader(GdalDatasetPtr dataset, const QString &shownName,
                                   const TableFormat &format)
    : TableReader(shownName),
      _format(format),
      _parser(format),
      _dataset(std::move(dataset)),
      _nBands(_dataset->GetRasterCount())
{
  _format.kind = TableFormat::GDAL;
  const GdalErrors errors;
  if (_dataset->GetGeoTransform(_transform.data()) != CE_None)
    throw NbeUserError(
        QObject::tr("%1: the raster does not say where its cells lie (no geotransform)")
            .arg(shownName));
  _checkBands();
  _nameBands();
  constexpr int mostValues = 1 << 20;
  _pieceSize = std::min(_dataset->GetRasterXSize(), std::max(1, mostValues / _nBands));
  _values.resize(std::size_t(_pieceSize) * std::size_t(_nBands));
  _mask.resize(std::size_t(_pieceSize));
}

QString GdalRasterReader::getFormatName() const
{
  return gdalFormatName(*_dataset);
}

void GdalRasterReader::_checkBands()
{
  constexpr int mostBands = 10000;
  constexpr double largestBlock = 512e6;  // bytes; the library reads whole blocks
  if (_nBands < 1)
    throw NbeUserError(QObject::tr("%1: the raster has no band").arg(_getShownName()));
  if (_nBands > mostBands)
    throw NbeUserError(QObject::tr("%1: the raster has %2 bands (at most %3)")
                           .arg(_getShownName())
                           .arg(_nBands)
                           .arg(mostBands));
  for (int i = 1; i <= _nBands; ++i) {
    GDALRasterBand *band = _dataset->GetRasterBand(i);
    if (GDALDataTypeIsComplex(band->GetRasterDataType()))
      throw NbeUserError(
          QObject::tr("%1: band %2 holds complex numbers").arg(_getShownName()).arg(i));
    int width = 0;
    int height = 0;
    band->GetBlockSize(&width, &height);
    if (double(width) * height * GDALGetDataTypeSizeBytes(band->GetRasterDataType()) > largestBlock)
      throw NbeUserError(QObject::tr("%1: the raster is stored in blocks of %2 x %3 cells, which "
                                     "are too large to read")
                             .arg(_getShownName())
                             .arg(width)
                             .arg(height));
  }
}

void GdalRasterReader::_nameBands()
{
  QStringList columns = {QStringLiteral("x"), QStringLiteral("y")};
  for (int i = 1; i <= _nBands; ++i) {
    const QString name =
        QString::fromUtf8(_dataset->GetRasterBand(i)->GetDescription()).simplified();
    columns << (name.isEmpty() || columns.contains(name) ? QStringLiteral("band%1").arg(i) : name);
  }
  _setColumns(columns);
}

bool GdalRasterReader::next()
{
  do {
    if (++_cell >= _nCells) {
      _pieceStart += _nCells;
      if (_pieceStart >= _dataset->GetRasterXSize()) {
        _pieceStart = 0;
        ++_row;
      }
      if (_row >= _dataset->GetRasterYSize())
        return false;
      _readPiece();
    }
    bool isEmpty = true;
    for (int column = 2; column < 2 + _nBands && isEmpty; ++column)
      isEmpty = _isUndefined(column);
    if (!isEmpty)
      return true;
  } while (true);
}

void GdalRasterReader::_readPiece()
{
  Interruption::check();
  const GdalErrors errors;
  _nCells = std::min(_pieceSize, _dataset->GetRasterXSize() - _pieceStart);
  _cell = 0;
  for (int band = 1; band <= _nBands; ++band)
    _readBand(band, _nCells);
  if (errors.hasFailed())
    throw NbeUserError(QObject::tr("%1: cannot be read beyond row %2: %3")
                           .arg(_getShownName(), QString::number(_row), errors.getMessage()));
}

void GdalRasterReader::_readBand(int index, int nCells)
{
  GDALRasterBand *band = _dataset->GetRasterBand(index);
  double *values = _values.data() + std::size_t(index - 1) * std::size_t(_pieceSize);
  const bool isMasked = band->GetMaskFlags() != GMF_ALL_VALID;
  const bool isRead = band->RasterIO(GF_Read, _pieceStart, _row, nCells, 1, values, nCells, 1,
                                     GDT_Float64, 0, 0, nullptr) == CE_None &&
                      (!isMasked || band->GetMaskBand()->RasterIO(
                                        GF_Read, _pieceStart, _row, nCells, 1, _mask.data(), nCells,
                                        1, GDT_Byte, 0, 0, nullptr) == CE_None);
  if (!isRead)
    return;  // reported as an error
  const double scale = band->GetScale();
  const double offset = band->GetOffset();
  for (int i = 0; i < nCells; ++i) {
    if (isMasked && _mask[std::size_t(i)] == 0)
      values[i] = undefined;
    else if (scale != 1. || offset != 0.)
      values[i] = values[i] * scale + offset;
  }
}

/// Of the centre of the current cell.
double GdalRasterReader::_getCoordinate(int axis) const
{
  const double *t = _transform.data() + 3 * axis;
  return t[0] + (_pieceStart + _cell + 0.5) * t[1] + (_row + 0.5) * t[2];
}

double GdalRasterReader::_getValue(int column) const
{
  return _values[std::size_t(column - 2) * std::size_t(_pieceSize) + std::size_t(_cell)];
}

bool GdalRasterReader::_isUndefined(int column) const
{
  double number = 0.;
  return std::isnan(_getValue(column)) || _parser.classify(_getValue(column), number) == UNDEFINED;
}

TableReader::Field GdalRasterReader::classify(int column, double &number) const
{
  if (column < 2) {
    number = _getCoordinate(column);
    return NUMBER;
  }
  return std::isnan(_getValue(column)) ? UNDEFINED : _parser.classify(_getValue(column), number);
}

double GdalRasterReader::getNumber(int column) const
{
  if (column < 2)
    return _getCoordinate(column);
  return std::isnan(_getValue(column)) ? NbbGlobal::D_FFFF
                                       : _parser.read(_getValue(column), *this, column);
}

QString GdalRasterReader::getText(int column) const
{
  return column > 1 && _isUndefined(column)
             ? QString()
             : QString::number(column < 2 ? _getCoordinate(column) : _getValue(column));
}

QString GdalRasterReader::getReference() const
{
  return wktOf(_dataset->GetSpatialRef());
}

QString GdalRasterReader::_getPlace() const
{
  return QObject::tr("row %1, cell %2").arg(_row + 1).arg(_pieceStart + _cell + 1);
}

QString GdalRasterReader::_getHeaderPlace() const
{
  return _format.layer.isEmpty() ? QObject::tr("bands")
                                 : QObject::tr("variable \"%1\"").arg(_format.layer);
}

}  // namespace orvenal
