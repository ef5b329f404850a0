#include "interpol/private/NgcCentering.h"

#include "basic/data/NbdDataPoints.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/error/NbeAssertion.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"

#include <QMap>
#include <QObject>

#include <cmath>

namespace {

bool isCopied(const QString &role)
{
  return !Nbd::Role::isCoordinate(role) && !Nbd::Role::isSN(role) && role != Nbd::Role::SELECTION;
}

/// An empty variable like that of the descriptor; returns its id.
QString createLike(const NgdVariableDescriptor &descriptor, NbpMemoryProviderPointsW &provider)
{
  QString id;
  if (descriptor.isMacro()) {
    id = provider.createMacro(descriptor.getName(), descriptor.getVariableType(),
                              descriptor.getMacroIndexInfo(), descriptor.getDetails());
    for (const NbdMacroIndex &index : descriptor.getIndices())
      provider.createMacroRealization(id, index);
  } else {
    const NbdEnumCatalog catalog = descriptor.getCatalog();
    id = provider.createVariable(descriptor.getName(), descriptor.getVariableType(),
                                 descriptor.getDetails(), &catalog);
  }
  if (id.isEmpty())
    NBE_FAIL(provider.getLastError());
  return id;
}

/// Under the name that it has in `from`, by which data sets on the same samples are recognized.
void setSelection(std::vector<bool> selected, const NbpIProviderR &from,
                  NbpMemoryProviderPointsW &provider)
{
  NbdVariableDetails details;
  if (from.getDetails(from.getSelectionId(), details))
    provider.setSelectionId(provider.addVariable(details.getName(), std::move(selected)));
  else
    provider.setSelection(selected);
}

}  // namespace

NgcCentering::NgcCentering() = default;

NgcCentering::~NgcCentering()
{
  _finish();
}

void NgcCentering::setInputDataSet(const NgdADataSet &dataSet)
{
  _setDataset(Nbd::Dataset::INPUT, dataSet);
}

void NgcCentering::_checkDatasets()
{
  if (!_getDataset(Nbd::Dataset::INPUT))
    NBE_FAIL(QObject::tr("No input dataset defined!"));
}

void NgcCentering::_addRuntimeConstraints()
{
  const NgdADataSet &input = *_getDataset(Nbd::Dataset::INPUT);
  for (const QString &role : input.getAllRoles())
    _addVariableOrMacroRule(Nbd::Dataset::INPUT, role, Nbd::ACCESS_READ, Nbd::TYPE_NONE, -1, -1);
}

void NgcCentering::_doRun()
{
  _doFinalChecks();
  const NgdADataSet &input = *_getDataset(Nbd::Dataset::INPUT);
  NbdDataPoints samples;
  input.loadAllData(samples, true, true);
  _checkForProgressStop();

  _centered = NgdDataSetPoints();
  _centered.setMaxDimension(input.getMaxDimension());
  const QSharedPointer<NbpMemoryProviderPointsW> provider = _createProvider(samples);
  _centered.setDataProvider(provider);
  _copyVariables(samples, *provider);
}

QSharedPointer<NbpMemoryProviderPointsW> NgcCentering::_createProvider(
    const NbdDataPoints &samples) const
{
  const NgdADataSet &input = *_getDataset(Nbd::Dataset::INPUT);
  const std::size_t n = std::size_t(input.getNSamples());
  std::vector<double> x(n, NbbGlobal::D_FFFF);
  std::vector<double> y(n, NbbGlobal::D_FFFF);
  std::vector<double> z(n, NbbGlobal::D_FFFF);
  std::vector<bool> selected(n, false);
  for (int position = 0; position < samples.getNSamples(); ++position) {
    const std::size_t rank = std::size_t(samples.getSampleNumber(position) - 1);
    const NbgVector3D center = _center(samples.getLocation(position));
    x[rank] = center.x();
    y[rank] = center.y();
    z[rank] = center.z();
    selected[rank] = true;
  }

  const int nDimensions = input.getNDimensions();
  auto provider = QSharedPointer<NbpMemoryProviderPointsW>::create(
      NbgEDimension::fromNDim(nDimensions), qint64(n));
  provider->addXVariable(std::move(x));
  if (nDimensions > 1)
    provider->addYVariable(std::move(y));
  if (nDimensions > 2)
    provider->addZVariable(std::move(z));
  if (input.getDataProvider()->hasSelection())
    setSelection(std::move(selected), *input.getDataProvider(), *provider);
  return provider;
}

/// The centre of the block of a location. Blocks beyond the grid's border continue its pattern; a
/// place too far for that, or undefined, stays as it is.
NbgVector3D NgcCentering::_center(const NbgVector3D &location) const
{
  NbgIntVector3D cell;
  if (_blocks.getCellIJK(location, cell))
    return _blocks.getCellCenter(cell);
  if (!location.isDefined())
    return location;

  const NbgVector3D local = _blocks.getUVW(location);
  const NbgVector3D size = _blocks.getCellSize();
  int indices[3] = {0, 0, 0};
  for (int axis = 0; axis < _blocks.getNDim(); ++axis) {
    const double index = std::floor(local[axis] / size[axis] + 0.5);
    if (std::fabs(index) > 1e9)
      return location;
    indices[axis] = int(index);
  }
  return _blocks.getCellCenter(indices[0], indices[1], indices[2]);
}

void NgcCentering::_copyVariables(const NbdDataPoints &samples, NbpMemoryProviderPointsW &provider)
{
  const NgdADataSet &input = *_getDataset(Nbd::Dataset::INPUT);
  QMap<QString, QString> copies;
  copies.insert(input.getDataProvider()->getSelectionId(), provider.getSelectionId());
  for (const QString &role : input.getAllRoles()) {
    if (!isCopied(role))
      continue;
    const QList<NgdVariableDescriptor> descriptors = input.getVariableDescriptors(role);
    for (int index = 0; index < descriptors.size(); ++index) {
      QString &copy = copies[descriptors[index].getProviderVarId()];
      const bool isNew = copy.isEmpty();
      if (isNew)
        copy = createLike(descriptors[index], provider);
      if (descriptors[index].isMacro())
        _centered.assignMacro(role, copy);
      else
        _centered.assignVariable(role, copy);
      NgdVariableDescriptor descriptor = _centered.getDataDescriptor(role, index);
      descriptor.setAccessType(isNew ? Nbd::ACCESS_WRITE : Nbd::ACCESS_READ);
      _centered.setDataDescriptor(role, index, descriptor);
    }
  }

  _centered.openAllVariables();
  _centered.patchFromBuffer(samples);
  _centered.closeAllVariables();
  for (const QString &role : _centered.getAllRoles())
    _centered.setAccessType(role, Nbd::ACCESS_READ);
}
