#include "geos/data/NgdDataSetLines.h"

#include "basic/data/NbdAVariable.h"
#include "basic/data/NbdDataLines.h"
#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgBox.h"
#include "basic/provider/NbpIProviderObjectW.h"

#include <algorithm>

NgdDataSetLines::NgdDataSetLines() = default;

void NgdDataSetLines::setDataProvider(QSharedPointer<NbpIProviderR> provider)
{
  if (provider && !provider.dynamicCast<NbpIProviderObjectR>())
    NBE_FAIL(QStringLiteral("provider is not a line provider"));
  _setDataProvider(provider);
}

const NbpIProviderObjectR &NgdDataSetLines::_getLineProvider() const
{
  return dynamic_cast<const NbpIProviderObjectR &>(_requireProvider());
}

qint64 NgdDataSetLines::getNSamples() const
{
  return getDataProvider() ? getDataProvider()->getSampleCount() : 0;
}

void NgdDataSetLines::updateBoundingBox(NbgBox &box) const
{
  _requireProvider().updateBoundingBox(box);
}

NgdBufferManagerLines *NgdDataSetLines::createBufferManager() const
{
  return new NgdBufferManagerLines(*this);
}

bool NgdDataSetLines::mustBeUnique(const QString &role) const
{
  return NgdADataSet::mustBeUnique(role) || role == Nbd::Role::LINE_S ||
         role == Nbd::Role::LINE_S_FROM || role == Nbd::Role::LINE_S_TO;
}

void NgdDataSetLines::loadInBuffer(const QList<int> &lineRanks, NbdDataLines &buffer) const
{
  _requireOpened();
  if (getNSamples() == 0)
    NBE_FAIL(QStringLiteral("empty dataset."));
  const NbpIProviderObjectR &provider = _getLineProvider();
  const NbdObjectDefinitions lines = provider.getObjectDefinitions();
  QVector<int> nSamplesPerLine;
  for (int rank : lineRanks) {
    if (rank < 0 || rank >= lines.size())
      NBE_FAIL(QStringLiteral("Invalid interval given"));
    nSamplesPerLine << lines[rank].selectedSupportLength;
  }

  buffer.setNDimensions(getNDimensions());
  buffer.setLines(lineRanks, nSamplesPerLine);
  _loadColumns(buffer, [&](const QString &id, NbdAVariable &variable) {
    return provider.readObjects(id, lineRanks, variable);
  });
}

void NgdDataSetLines::saveFromBuffer(const NbdDataLines &buffer) const
{
  _requireOpened();
  const auto writer = getDataProvider().dynamicCast<NbpIProviderObjectW>();
  if (!writer)
    NBE_FAIL(QStringLiteral("Provider is not an object provider."));
  _saveColumns(buffer, [&](const QString &id, NbdAVariable &variable) {
    return writer->writeObjects(id, buffer.getLineRanks(), variable);
  });
}

void NgdDataSetLines::saveFromBufferInParent(const NbdAData &buffer) const
{
  const auto *lines = dynamic_cast<const NbdDataLines *>(&buffer);
  if (!lines)
    NBE_FAIL(QStringLiteral("Passed argument is meant to be NbdDataLines"));
  saveFromBuffer(*lines);
}

int NgdDataSetLines::getNLines() const
{
  return _getLineProvider().getObjectDefinitions().size();
}

int NgdDataSetLines::getCountMaxPerLine() const
{
  int maximum = 0;
  for (const NbdObjectDefinition &line : _getLineProvider().getObjectDefinitions())
    maximum = std::max(maximum, line.supportLength);
  return maximum;
}

bool NgdDataSetLines::isDataSupportCore() const
{
  return _getLineProvider().isSupportCore();
}

QString NgdDataSetLines::debug(int level) const
{
  return QStringLiteral("DataSetLine: Nb Dim : %1 / Nb Samples : %2 /")
             .arg(getNDimensions())
             .arg(getNSamples()) +
         NgdADataSet::debug(level);
}
