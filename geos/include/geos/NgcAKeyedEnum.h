#pragma once

#include <QMap>
#include <QtDebug>

#include "basic/base/NbbAEnum.h"
#include "basic/error/NbeAssertion.h"

/// What every keyed enumeration of the library has: lookup by key, value or label, comparison by
/// value and iteration in value order.
///
/// A class `T` derives from NgcAKeyedEnum<T>, opens its body with NGC_KEYED_ENUM(T), lists its
/// values in `enum class EValue` and declares one static constant instance per value, named by its
/// key. Its source gives NGC_KEYED_ENUM_REGISTRY(T, default key, source path) and after that one
/// NGC_KEYED_ENUM_ITEM(T, key, label) per instance; all of one class in one translation unit.
///
/// The instances are built when the library is loaded, before its other static objects. From then
/// on the registries do not change and any thread may read them. Labels are translated at load.
template <class T>
class NgcAKeyedEnum : public NbbAEnum
{
public:
  /// Walks over the registered instances in value order.
  class Iterator
  {
  public:
    void toFront() { _next = T::_map.constBegin(); }
    bool hasNext() const { return _next != T::_map.constEnd(); }
    const T &next() { return *(_next++).value(); }

  private:
    typename QMap<int, const T *>::const_iterator _next = T::_map.constBegin();
  };

  /// The value as an enumerator, for switches.
  auto toEnum() const { return static_cast<typename T::EValue>(getValue()); }

  static int count() { return T::_map.size(); }
  static Iterator createIterator() { return Iterator(); }

  static bool existsKey(const QString &key) { return _findKey(key) != nullptr; }
  static bool existsValue(int value) { return _findValue(value) != nullptr; }
  static bool existsLabel(const QString &label) { return _findLabel(label) != nullptr; }

  /// The registered instance; a programming error when there is none. Texts are compared exactly.
  static const T &fromKey(const QString &key)
  {
    return _orFail(_findKey(key), "fromKey(const QString&)", key);
  }
  static const T &fromValue(int value)
  {
    return _orFail(_findValue(value), "fromValue(int)", QString::number(value));
  }
  static const T &fromLabel(const QString &label)
  {
    return _orFail(_findLabel(label), "fromLabel(const QString&)", label);
  }

  /// A copy of the registered instance, or of `fallback` when there is none.
  static T fromKey(const QString &key, const T &fallback) { return _or(_findKey(key), fallback); }
  static T fromValue(int value, const T &fallback) { return _or(_findValue(value), fallback); }
  static T fromLabel(const QString &label, const T &fallback)
  {
    return _or(_findLabel(label), fallback);
  }

  friend bool operator==(const T &a, const T &b) { return a.getValue() == b.getValue(); }
  friend bool operator!=(const T &a, const T &b) { return a.getValue() != b.getValue(); }
  friend bool operator<(const T &a, const T &b) { return a.getValue() < b.getValue(); }
  friend bool operator<=(const T &a, const T &b) { return a.getValue() <= b.getValue(); }
  friend bool operator>(const T &a, const T &b) { return a.getValue() > b.getValue(); }
  friend bool operator>=(const T &a, const T &b) { return a.getValue() >= b.getValue(); }

protected:
  NgcAKeyedEnum(const QString &label, int value, const char *key) : NbbAEnum(label, value, key) {}

  /// Enters an instance under its value; a second one of the same value replaces the first.
  static void _register(const T *item)
  {
    if (T::_map.contains(item->getValue()))
      qDebug("%s: duplicated item %s [%d=%s]!\n", T::_className,
             item->getLabel().toUtf8().constData(), item->getValue(), item->getKey());
    T::_map.insert(item->getValue(), item);
  }

private:
  template <class Predicate>
  static const T *_find(Predicate matches)
  {
    for (Iterator items; items.hasNext();) {
      const T &item = items.next();
      if (matches(item))
        return &item;
    }
    return nullptr;
  }
  static const T *_findKey(const QString &key)
  {
    return _find([&](const T &item) { return key == QLatin1String(item.getKey()); });
  }
  static const T *_findValue(int value)
  {
    return _find([&](const T &item) { return item.getValue() == value; });
  }
  static const T *_findLabel(const QString &label)
  {
    return _find([&](const T &item) { return item.getLabel() == label; });
  }

  static T _or(const T *item, const T &fallback) { return item ? *item : fallback; }

  static const T &_orFail(const T *item, const char *operation, const QString &text)
  {
    if (!item) {
      const QByteArray signature =
          QByteArray("static const ") + T::_className + "& " + T::_className + "::" + operation;
      NbeAssertion::failAt(signature.constData(), QString::fromLatin1(T::_sourcePath),
                           text + QStringLiteral(" is not valid"));
    }
    return *item;
  }
};

/// Opens the body of a keyed enumeration; see NgcAKeyedEnum.
#define NGC_KEYED_ENUM(Class)                                                                \
public:                                                                                      \
  Class() : Class(*_default) {}                                                              \
  Class(const Class &) = default;                                                            \
  Class &operator=(const Class &) = default;                                                 \
                                                                                             \
private:                                                                                     \
  friend class NgcAKeyedEnum<Class>;                                                         \
  Class(const QString &label, int value, const char *key) : NgcAKeyedEnum(label, value, key) \
  {                                                                                          \
    _register(this);                                                                         \
  }                                                                                          \
  static QMap<int, const Class *> _map;                                                      \
  static const Class *const _default;                                                        \
  static const char *const _className;                                                       \
  static const char *const _sourcePath;                                                      \
                                                                                             \
public:

// Static objects of other sources may hold keyed enumerations: these come first.
#define NGC_KEYED_ENUM_EARLY __attribute__((init_priority(1000)))

/// Defines the registry of a class; its items follow.
#define NGC_KEYED_ENUM_REGISTRY(Class, defaultKey, path)     \
  NGC_KEYED_ENUM_EARLY QMap<int, const Class *> Class::_map; \
  const Class *const Class::_default = &Class::defaultKey;   \
  const char *const Class::_className = #Class;              \
  const char *const Class::_sourcePath = path;

/// Defines one instance.
#define NGC_KEYED_ENUM_ITEM(Class, key, label) \
  NGC_KEYED_ENUM_EARLY const Class Class::key(label, static_cast<int>(Class::EValue::key), #key);
