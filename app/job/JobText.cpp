#include "app/job/JobText.h"

#include "app/base/UsageError.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QObject>

#include <nlohmann/json.hpp>

#include <iterator>
#include <string>
#include <vector>

namespace orvenal {

namespace {

using Json = nlohmann::json;

constexpr int deepest = 64;
constexpr int mostKeys = 1000;
constexpr int numberOverflow = 406;  // the parser's code of this error

/// How far the parser has read.
struct Reading
{
  int line = 1;
};

/// Bytes of the text that count the lines as they are read.
class CountingIterator
{
public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char *;
  using reference = const char &;

  CountingIterator(const char *at, Reading &reading) : _at(at), _reading(&reading) {}

  reference operator*() const { return *_at; }
  CountingIterator &operator++()
  {
    _reading->line += *_at == '\n' ? 1 : 0;
    ++_at;
    return *this;
  }
  friend bool operator==(const CountingIterator &a, const CountingIterator &b)
  {
    return a._at == b._at;
  }
  friend bool operator!=(const CountingIterator &a, const CountingIterator &b) { return !(a == b); }

private:
  const char *_at;
  Reading *_reading;
};

QString shortened(const QString &text)
{
  constexpr int longest = 60;
  return text.size() <= longest ? text : text.left(longest) + QStringLiteral("...");
}

/// Line and column of a byte of a UTF-8 text, both from 1.
QString placeOf(const QByteArray &text, int offset)
{
  const QByteArray before = text.left(offset);
  const int line = before.count('\n') + 1;
  const int column = QString::fromUtf8(before.mid(before.lastIndexOf('\n') + 1)).size() + 1;
  return QObject::tr("line %1, column %2").arg(line).arg(column);
}

/// "unexpected '{'; expected ':'" of the parser's long message.
QString reasonOf(const nlohmann::detail::exception &error)
{
  QString reason = QString::fromUtf8(error.what());
  reason = reason.section(QStringLiteral("; last read: "), 0, 0);
  const int dash = reason.indexOf(QStringLiteral(" - "));
  return shortened(dash < 0 ? reason : reason.mid(dash + 3));
}

/// Makes the values of a text from the parser's events; the first error is thrown.
class Builder : public nlohmann::json_sax<Json>
{
public:
  Builder(const QString &file, const QByteArray &text, const Reading &reading)
      : _file(file), _text(text), _reading(reading)
  {
  }

  JobText takeResult() { return std::move(_result); }

  bool null() override { return _add(QJsonValue(QJsonValue::Null)); }
  bool boolean(bool value) override { return _add(value); }
  bool number_integer(number_integer_t value) override { return _add(double(value)); }
  bool number_unsigned(number_unsigned_t value) override { return _add(double(value)); }
  bool number_float(number_float_t value, const string_t &) override { return _add(value); }
  bool string(string_t &value) override { return _add(QString::fromStdString(value)); }
  bool binary(binary_t &) override { return false; }

  bool start_object(std::size_t) override { return _open(false); }
  bool start_array(std::size_t) override { return _open(true); }
  bool end_object() override { return _close(); }
  bool end_array() override { return _close(); }
  bool key(string_t &name) override;
  bool parse_error(std::size_t position, const std::string &token,
                   const nlohmann::detail::exception &error) override;

private:
  /// An object or a list that is not complete.
  struct Level
  {
    bool isArray;
    QString path;
    QJsonArray array;
    QJsonObject object;
    QString key;                // of the member that follows
    QHash<QString, int> lines;  // of the keys
  };

  /// Path of the value that follows.
  QString _path() const
  {
    if (_levels.empty())
      return QString();
    const Level &level = _levels.back();
    if (level.isArray)
      return QStringLiteral("%1[%2]").arg(level.path).arg(level.array.size());
    return level.path.isEmpty() ? level.key : level.path + '.' + level.key;
  }

  [[noreturn]] void _fail(const QString &message) const
  {
    const QString path = shortened(_path());
    throw UsageError(_file + ": " + (path.isEmpty() ? path : path + ": ") + message);
  }

  bool _open(bool isArray);
  bool _close();
  bool _add(const QJsonValue &value);

  QString _file;
  const QByteArray &_text;
  const Reading &_reading;
  JobText _result;
  std::vector<Level> _levels;
};

bool Builder::_open(bool isArray)
{
  if (int(_levels.size()) >= deepest)
    throw UsageError(QObject::tr("%1, line %2: nested deeper than %3 levels")
                         .arg(_file)
                         .arg(_reading.line)
                         .arg(deepest));
  _levels.push_back({isArray, _path(), {}, {}, {}, {}});
  return true;
}

bool Builder::_close()
{
  const Level level = std::move(_levels.back());
  _levels.pop_back();
  return _add(level.isArray ? QJsonValue(level.array) : QJsonValue(level.object));
}

bool Builder::_add(const QJsonValue &value)
{
  if (_levels.empty())
    _result.root = value;
  else if (_levels.back().isArray)
    _levels.back().array.append(value);
  else
    _levels.back().object.insert(_levels.back().key, value);
  return true;
}

bool Builder::key(string_t &name)
{
  Level &level = _levels.back();
  level.key = QString::fromStdString(name);
  if (const auto first = level.lines.constFind(level.key); first != level.lines.constEnd())
    _fail(QObject::tr("the key is given twice, in line %1 and in line %2")
              .arg(*first)
              .arg(_reading.line));
  if (level.lines.size() >= mostKeys)
    throw UsageError(QObject::tr("%1, line %2: an object has more than %3 keys")
                         .arg(_file)
                         .arg(_reading.line)
                         .arg(mostKeys));
  level.lines.insert(level.key, _reading.line);
  _result.keys[level.path] << level.key;
  return true;
}

bool Builder::parse_error(std::size_t position, const std::string &token,
                          const nlohmann::detail::exception &error)
{
  if (error.id == numberOverflow)
    _fail(QObject::tr("%1 is too large for a number (line %2)")
              .arg(shortened(QString::fromStdString(token)))
              .arg(_reading.line));
  throw UsageError(QObject::tr("%1, %2: not valid JSON: %3")
                       .arg(_file, placeOf(_text, int(position) - 1), reasonOf(error)));
}

}  // namespace

JobText parseJobText(const QString &file, const QByteArray &text)
{
  static const QByteArray byteOrderMark("\xEF\xBB\xBF");
  const QByteArray json = text.startsWith(byteOrderMark) ? text.mid(byteOrderMark.size()) : text;
  Reading reading;
  Builder builder(file, json, reading);
  constexpr bool isWhole = true;
  constexpr bool hasComments = true;
  Json::sax_parse(CountingIterator(json.constData(), reading),
                  CountingIterator(json.constData() + json.size(), reading), &builder,
                  nlohmann::detail::input_format_t::json, isWhole, hasComments);
  return builder.takeResult();
}

}  // namespace orvenal
