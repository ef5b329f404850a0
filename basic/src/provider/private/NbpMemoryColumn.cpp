#include "provider/private/NbpMemoryColumn.h"

#include "provider/private/NbpConvertValues.h"
#include "provider/private/NbpReplace.h"
#include "provider/private/NbpVariableArrays.h"

namespace {

template <class T>
struct TypeCode;

template <>
struct TypeCode<double>
{
  static constexpr Nbd::EVariableType VALUE = Nbd::TYPE_DOUBLE;
};
template <>
struct TypeCode<float>
{
  static constexpr Nbd::EVariableType VALUE = Nbd::TYPE_FLOAT;
};
template <>
struct TypeCode<int>
{
  static constexpr Nbd::EVariableType VALUE = Nbd::TYPE_INT32;
};
template <>
struct TypeCode<qint64>
{
  static constexpr Nbd::EVariableType VALUE = Nbd::TYPE_INT64;
};
template <>
struct TypeCode<unsigned char>
{
  static constexpr Nbd::EVariableType VALUE = Nbd::TYPE_BOOLEAN;
};
template <>
struct TypeCode<qint16>
{
  static constexpr Nbd::EVariableType VALUE = Nbd::TYPE_ENUM;
};
template <>
struct TypeCode<QString>
{
  static constexpr Nbd::EVariableType VALUE = Nbd::TYPE_ALPHA;
};
template <>
struct TypeCode<NbgVector3D>
{
  static constexpr Nbd::EVariableType VALUE = Nbd::TYPE_POINT;
};
template <>
struct TypeCode<NbdColor>
{
  static constexpr Nbd::EVariableType VALUE = Nbd::TYPE_COLOR;
};

/// Values kept in memory, one contiguous array.
template <class T>
class NbpMemoryColumn : public NbpAMemoryColumn
{
public:
  explicit NbpMemoryColumn(std::vector<T> values) : _values(std::move(values)) {}

  Nbd::EVariableType getType() const override { return TypeCode<T>::VALUE; }
  bool isWritable() const override { return true; }
  qint64 getSize() const override { return qint64(_values.size()); }

  void read(const NbpRuns &runs, NbdAVariable &values) const override
  {
    withArray(values, [&](auto *out) {
      for (const NbpRun &run : runs)
        convertValues(_values.data() + run.rank, run.length, out + run.position);
    });
  }

  void write(const NbpRuns &runs, const NbdAVariable &values) override
  {
    withArray(values, [&](const auto *in) {
      for (const NbpRun &run : runs)
        convertValues(in + run.position, run.length, _values.data() + run.rank);
    });
  }

  void replace(qint64 rank, qint64 nOld, qint64 n) override
  {
    replaceValues(_values, rank, nOld, n, NbdValueTraits<T>::initial());
  }

  void reserve(qint64 size) override { reserveAmortized(_values, size); }

  std::vector<unsigned char> getFlags() const override
  {
    std::vector<unsigned char> flags(_values.size());
    convertValues(_values.data(), qint64(_values.size()), flags.data());
    return flags;
  }

protected:
  std::vector<T> _values;
};

/// Codes of categories, exchanged with texts by name.
class NbpMemoryColumnEnum : public NbpMemoryColumn<qint16>
{
public:
  NbpMemoryColumnEnum(std::vector<qint16> codes, const NbdEnumCatalog &catalog)
      : NbpMemoryColumn<qint16>(std::move(codes)), _catalog(catalog)
  {
  }

  const NbdEnumCatalog *getCatalog() const override { return &_catalog; }

  void read(const NbpRuns &runs, NbdAVariable &values) const override
  {
    if (values.getVariableType() != Nbd::TYPE_ALPHA) {
      NbpMemoryColumn<qint16>::read(runs, values);
      return;
    }
    QString *const names = static_cast<NbdVariableAlpha &>(values).getArray();
    for (const NbpRun &run : runs)
      for (int i = 0; i < run.length; ++i)
        names[run.position + i] = _catalog.getName(_values[run.rank + i]);
  }

  void write(const NbpRuns &runs, const NbdAVariable &values) override
  {
    if (values.getVariableType() != Nbd::TYPE_ALPHA) {
      NbpMemoryColumn<qint16>::write(runs, values);
      return;
    }
    const QString *const names = static_cast<const NbdVariableAlpha &>(values).getArrayConst();
    for (const NbpRun &run : runs)
      for (int i = 0; i < run.length; ++i)
        _values[run.rank + i] = _catalog.getCode(names[run.position + i]);
  }

private:
  NbdEnumCatalog _catalog;
};

template <class T>
std::unique_ptr<NbpAMemoryColumn> makeInitialColumn(qint64 n)
{
  return makeColumn(std::vector<T>(std::size_t(n), NbdValueTraits<T>::initial()));
}

}  // namespace

template <class T>
std::unique_ptr<NbpAMemoryColumn> makeColumn(std::vector<T> values)
{
  return std::make_unique<NbpMemoryColumn<T>>(std::move(values));
}

template std::unique_ptr<NbpAMemoryColumn> makeColumn(std::vector<double>);
template std::unique_ptr<NbpAMemoryColumn> makeColumn(std::vector<float>);
template std::unique_ptr<NbpAMemoryColumn> makeColumn(std::vector<int>);
template std::unique_ptr<NbpAMemoryColumn> makeColumn(std::vector<qint64>);
template std::unique_ptr<NbpAMemoryColumn> makeColumn(std::vector<unsigned char>);
template std::unique_ptr<NbpAMemoryColumn> makeColumn(std::vector<QString>);
template std::unique_ptr<NbpAMemoryColumn> makeColumn(std::vector<NbgVector3D>);
template std::unique_ptr<NbpAMemoryColumn> makeColumn(std::vector<NbdColor>);

std::unique_ptr<NbpAMemoryColumn> makeColumn(const std::vector<bool> &values)
{
  return makeColumn(std::vector<unsigned char>(values.begin(), values.end()));
}

std::unique_ptr<NbpAMemoryColumn> makeEnumColumn(std::vector<qint16> codes,
                                                 const NbdEnumCatalog &catalog)
{
  return std::make_unique<NbpMemoryColumnEnum>(std::move(codes), catalog);
}

std::unique_ptr<NbpAMemoryColumn> makeColumn(Nbd::EVariableType type, qint64 n)
{
  switch (type) {
    case Nbd::TYPE_FLOAT:
      return makeInitialColumn<float>(n);
    case Nbd::TYPE_DOUBLE:
      return makeInitialColumn<double>(n);
    case Nbd::TYPE_INT32:
      return makeInitialColumn<int>(n);
    case Nbd::TYPE_INT64:
      return makeInitialColumn<qint64>(n);
    case Nbd::TYPE_BOOLEAN:
      return makeInitialColumn<unsigned char>(n);
    case Nbd::TYPE_ALPHA:
      return makeInitialColumn<QString>(n);
    case Nbd::TYPE_POINT:
      return makeInitialColumn<NbgVector3D>(n);
    case Nbd::TYPE_COLOR:
      return makeInitialColumn<NbdColor>(n);
    case Nbd::TYPE_ENUM:
      return makeEnumColumn(std::vector<qint16>(std::size_t(n), NbbGlobal::I16_FFFF),
                            NbdEnumCatalog());
    default:
      throw NbeError(NbeError::STORAGE,
                     QObject::tr("Type %1 has no plain variable.").arg(int(type)));
  }
}
