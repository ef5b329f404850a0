#include "base/private/NgcStatisticsStore.h"

#include "base/private/NgcSelectedBlocks.h"
#include "basic/data/NbdAData.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdValueConversion.h"
#include "basic/error/NbeAssertion.h"
#include "geos/data/NgdADataSet.h"

#include <QMutexLocker>

#include <tuple>
#include <vector>

namespace {

[[noreturn]] void fail(const char *function, const QString &condition)
{
  NbeAssertion::failAt(function, QStringLiteral("base\\NgcACalculatorSimple"), condition);
}

void addCategories(NgaProportionSum &sum, int n, const double *values)
{
  int codes[NgcSelectedBlocks::BLOCK];
  for (int i = 0; i < n; ++i)
    codes[i] = nbdConvert<int>(values[i]);
  sum.addCategories(n, codes);
}

/// While it lives, a multi-realization variable reads the realization of a rank.
class CurrentRealization
{
public:
  CurrentRealization(NbdAVariable &variable, int rank)
      : _variable(variable), _before(variable.getCurrentRealizationRank())
  {
    _variable.setCurrentRealizationRank(rank);
  }
  ~CurrentRealization() { _variable.setCurrentRealizationRank(_before); }
  Q_DISABLE_COPY(CurrentRealization)

private:
  NbdAVariable &_variable;
  int _before;
};

}  // namespace

bool NgcStatisticsKey::operator<(const NgcStatisticsKey &other) const
{
  return std::tie(role, index, macro) < std::tie(other.role, other.index, other.macro);
}

bool NgcStatisticsKey::operator==(const NgcStatisticsKey &other) const
{
  return role == other.role && index == other.index && macro == other.macro;
}

void NgcStatisticsSums::doSum(const NgaIAdditive &other)
{
  const auto &sums = static_cast<const NgcStatisticsSums &>(other);
  for (auto it = sums.statistics.cbegin(); it != sums.statistics.cend(); ++it) {
    const auto mine = statistics.find(it.key());
    if (mine == statistics.end())
      statistics.insert(it.key(), it.value());
    else
      mine->doSum(it.value());
  }
  for (auto it = sums.proportions.cbegin(); it != sums.proportions.cend(); ++it)
    proportions[it.key()].doSum(it.value());
}

void NgcStatisticsStore::clear()
{
  QMutexLocker lock(&_mutex);
  _sources.clear();
  _keyOfName.clear();
  _statistics.clear();
  _proportions.clear();
  _isFinished = false;
  _sums = NgcStatisticsSums();
  _partials.clear();
  _nBuffers = 0;
}

void NgcStatisticsStore::prepare(const NgdADataSet &dataSet, int nLoops)
{
  clear();
  QMutexLocker lock(&_mutex);
  QStringList roles = statisticsRoles + proportionRoles;
  if (roles.isEmpty()) {
    for (const QString &role : dataSet.getAllRoles()) {
      if (!Nbd::Role::isCoordinate(role) && !Nbd::Role::isSN(role))
        roles.append(role);
    }
  }
  roles.removeDuplicates();
  for (const QString &role : qAsConst(roles)) {
    for (int index = 0; index < dataSet.getRoleCount(role); ++index)
      _addSources(dataSet.getDataDescriptor(role, index), role, index, nLoops);
  }
}

void NgcStatisticsStore::_addSources(const NgdVariableDescriptor &descriptor, const QString &role,
                                     int index, int nLoops)
{
  const bool isNumeric = descriptor.isNumeric();
  const bool isCategorical =
      descriptor.isCategorical() || (isNumeric && proportionRoles.contains(role));
  const NgcStatisticsKey key{role, index, NbdMacroIndex()};
  const QString name = descriptor.getName();
  if ((!isNumeric && !isCategorical) || (_keyOfName.contains(name) && !(_keyOfName[name] == key)))
    return;
  _keyOfName.insert(name, key);

  // What is not processed by piece comes by in every loop; it is counted as the last one leaves it.
  const int lastLoop = nLoops > 1 ? nLoops - 1 : -1;
  if (!descriptor.isMacro()) {
    _addSource({key, name, false, lastLoop, isNumeric, isCategorical});
    return;
  }
  const bool byPiece = descriptor.isMultiByPiece();
  const bool isMulti = descriptor.getVariableType() == Nbd::TYPE_MULTI_FLOAT && !byPiece;
  for (int rank = 0; rank < descriptor.getNRealizations(); ++rank)
    _addSource({NgcStatisticsKey{role, index, descriptor.getIndices()[rank]}, name, isMulti,
                byPiece ? rank : lastLoop, isNumeric, isCategorical});
}

void NgcStatisticsStore::_addSource(const Source &source)
{
  _sources.append(source);
  if (source.isNumeric) {
    _sums.statistics.insert(source.key, NgaStatSum());
    _statistics.insert(source.key, NbcStatBasic());
  }
  if (source.isCategorical) {
    _sums.proportions.insert(source.key, NgaProportionSum());
    _proportions.insert(source.key, NbcProportions());
  }
}

void NgcStatisticsStore::addBuffer(const NbdAData &buffer, qint64 rank)
{
  const int loop = buffer.getMacroRanks().isEmpty() ? 0 : buffer.getMacroRanks().first();
  const NgcSelectedBlocks blocks(buffer);
  auto sums = std::make_unique<NgcStatisticsSums>();
  for (const Source &source : qAsConst(_sources)) {
    if (source.loopRank < 0 || source.loopRank == loop)
      _addVariable(source, buffer, blocks, *sums);
  }
  QMutexLocker lock(&_mutex);
  _partials.add(rank < 0 ? _nBuffers++ : rank, std::move(sums));
}

void NgcStatisticsStore::_addVariable(const Source &source, const NbdAData &buffer,
                                      const NgcSelectedBlocks &blocks,
                                      NgcStatisticsSums &sums) const
{
  NbdAVariableNumeric &variable = _findVariable(source, buffer);
  const int rank = source.isMulti ? variable.getRealizationIndices().indexOf(source.key.macro) : 0;
  if (rank < 0)
    fail(Q_FUNC_INFO, QStringLiteral("No stats for realization #%1 of role %2")
                          .arg(source.key.macro.toString(), source.key.role));
  const CurrentRealization current(variable, source.isMulti ? rank : 0);

  NgaStatSum *statistics = nullptr;
  NgaProportionSum *proportions = nullptr;
  if (source.isNumeric)
    statistics = &*sums.statistics.insert(source.key, NgaStatSum());
  if (source.isCategorical)
    proportions = &*sums.proportions.insert(source.key, NgaProportionSum());
  double work[NgcSelectedBlocks::BLOCK];
  for (int block = 0; block < blocks.getNBlocks(); ++block) {
    const int n = blocks.getLength(block);
    const double *values = blocks.read(variable, block, work);
    if (statistics)
      statistics->addValues(n, values);
    if (proportions)
      addCategories(*proportions, n, values);
  }
}

NbdAVariableNumeric &NgcStatisticsStore::_findVariable(const Source &source, const NbdAData &buffer)
{
  const NbdDataTable &table = buffer.getDataTableConst();
  const NgcStatisticsKey &key = source.key;
  const bool byIndex = key.macro.isValid() && !source.isMulti;
  NbdAVariable *variable = byIndex ? table.getVarByMacroIndex(key.role, source.name, key.macro)
                                   : table.getVarByRoleAndName(key.role, source.name);
  auto *numeric = dynamic_cast<NbdAVariableNumeric *>(variable);
  if (numeric)
    return *numeric;
  if (byIndex)
    fail(Q_FUNC_INFO,
         (source.isNumeric ? QStringLiteral("No stats for macro index '%1' of role '%2'.")
                           : QStringLiteral("No proportions for macro index '%1' of role '%2'."))
             .arg(key.macro.toString(), key.role));
  fail(Q_FUNC_INFO,
       (source.isNumeric ? QStringLiteral("No stats for variable index #%1 of role %2")
                         : QStringLiteral("No proportions for variable index #%1 of role %2"))
           .arg(QString::number(key.index), key.role));
}

void NgcStatisticsStore::finish()
{
  QMutexLocker lock(&_mutex);
  _partials.flushInto(_sums);
  for (auto it = _sums.statistics.cbegin(); it != _sums.statistics.cend(); ++it) {
    const auto record = _statistics.find(it.key());
    if (record == _statistics.end())
      fail(Q_FUNC_INFO, QStringLiteral("Cannot find numerical variable"));
    it->fill(*record);
  }
  for (auto it = _sums.proportions.cbegin(); it != _sums.proportions.cend(); ++it) {
    const auto record = _proportions.find(it.key());
    if (record == _proportions.end())
      fail(Q_FUNC_INFO, QStringLiteral("Cannot find categorical variable"));
    it->fill(*record);
  }
  _isFinished = true;
}

const NbcStatBasic *NgcStatisticsStore::findStatistics(const NgcStatisticsKey &key) const
{
  QMutexLocker lock(&_mutex);
  const auto it = _statistics.constFind(key);
  return _isFinished && it != _statistics.cend() ? &*it : nullptr;
}

const NbcProportions *NgcStatisticsStore::findProportions(const NgcStatisticsKey &key) const
{
  QMutexLocker lock(&_mutex);
  const auto it = _proportions.constFind(key);
  return _isFinished && it != _proportions.cend() ? &*it : nullptr;
}
