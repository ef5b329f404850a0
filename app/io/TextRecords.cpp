#include "app/io/TextRecords.h"

#include "app/console/Interruption.h"
#include "basic/error/NbeUserError.h"

#include <QObject>
#include <QTextCodec>
#include <QTextDecoder>

#include <algorithm>
#include <cstring>

namespace orvenal {

namespace {

constexpr std::size_t chunkSize = 1 << 20;
constexpr std::size_t longestRecord = 16 << 20;
constexpr int END = -1;

bool isBlank(int c)
{
  return c == ' ' || c == '\t';
}

bool isLineEnd(int c)
{
  return c == '\n' || c == '\r';
}

bool startsWith(std::string_view text, std::string_view start)
{
  return text.substr(0, start.size()) == start;
}

}  // namespace

QString textFromBytes(std::string_view bytes)
{
  QTextCodec::ConverterState state;
  static QTextCodec *const utf8 = QTextCodec::codecForName("UTF-8");
  const QString text = utf8->toUnicode(bytes.data(), int(bytes.size()), &state);
  return state.invalidChars == 0 && state.remainingChars == 0
             ? text
             : QString::fromLatin1(bytes.data(), int(bytes.size()));
}

QString shownText(std::string_view bytes)
{
  constexpr int longest = 40;
  const QString text = textFromBytes(bytes.substr(0, 4 * longest)).simplified();
  return text.size() <= longest ? text : text.left(longest) + QChar(0x2026);
}

std::string_view trimmed(std::string_view text)
{
  while (!text.empty() && isBlank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back()))
    text.remove_suffix(1);
  return text;
}

void refusePacked(std::string_view head, const QString &shownName)
{
  if (startsWith(head, "\x1F\x8B"))
    throw NbeUserError(QObject::tr("%1: the file is compressed (gzip); unpack it").arg(shownName));
  if (startsWith(head, "PK\x03\x04"))
    throw NbeUserError(
        QObject::tr("%1: the file is a ZIP archive; unpack it, or call it .xlsx if it "
                    "is a workbook of Excel")
            .arg(shownName));
}

TextRecords::TextRecords(const QString &path, const QString &shownName)
    : _shownName(shownName), _file(path)
{
  if (!_file.open(QIODevice::ReadOnly))
    throw NbeUserError(QObject::tr("%1: cannot be read: %2").arg(_shownName, _file.errorString()));
  const qint64 size = _file.size();  // 0 of what has none
  _chunk.resize(size > 0 ? std::min(chunkSize, std::size_t(size)) : chunkSize);
  if (!_fill())
    throw NbeUserError(QObject::tr("%1: the file is empty").arg(_shownName));
  const std::string_view head(_chunk.data(), _available);
  refusePacked(head, _shownName);
  if (startsWith(head, "\xEF\xBB\xBF"))
    _position = 3;
  _startDecoding();
}

TextRecords::~TextRecords() = default;

/// Text of two bytes per character is known by its mark.
void TextRecords::_startDecoding()
{
  const std::string_view head(_chunk.data(), _available);
  const bool isLittle = startsWith(head, "\xFF\xFE");
  if (!isLittle && !startsWith(head, "\xFE\xFF"))
    return;
  _decoder.reset(QTextCodec::codecForName(isLittle ? "UTF-16LE" : "UTF-16BE")->makeDecoder());
  _file.seek(0);
  if (!_fill())
    throw NbeUserError(QObject::tr("%1: the file is empty").arg(_shownName));
}

char TextRecords::detectSeparator() const
{
  const char candidates[] = {'\t', ';', ','};
  int counts[] = {0, 0, 0};
  bool quoted = false;
  bool started = false;
  for (std::size_t i = _position; i < _available; ++i) {
    const char c = _chunk[i];
    if (c == '"')
      quoted = !quoted;
    if (!quoted && isLineEnd(c) && started)
      break;
    started = started || !(isBlank(c) || isLineEnd(c));
    for (int k = 0; k < 3; ++k)
      counts[k] += !quoted && c == candidates[k] ? 1 : 0;
  }
  const int best = int(std::max_element(counts, counts + 3) - counts);
  return counts[best] > 0 ? candidates[best] : ' ';
}

bool TextRecords::nextLine()
{
  _begin();
  if (_peek() == END)
    return false;
  for (int c = _peek(); c != END && !isLineEnd(c); c = _peek()) {
    _append(c);
    ++_position;
  }
  _endOfRecord();
  _slices.push_back({0, _record.size()});
  _cutFields();
  return true;
}

bool TextRecords::nextRecord()
{
  for (;;) {
    _begin();
    _skipBlanks();
    if (_peek() == END)
      return false;
    if (!_endOfRecord())
      break;
  }
  for (;;) {
    _readField();
    if (_endOfRecord())
      break;
    ++_position;  // the separator
    if (_separator == ' ') {
      _skipBlanks();
      if (_endOfRecord())
        break;
    }
  }
  _cutFields();
  return true;
}

void TextRecords::fail(const QString &message) const
{
  throw NbeUserError(
      QObject::tr("%1, line %2: %3").arg(_shownName, QString::number(_recordLine), message));
}

void TextRecords::_begin()
{
  _record.clear();
  _slices.clear();
  _recordLine = _line;
}

bool TextRecords::_fill()
{
  Interruption::check();
  const qint64 n = _file.read(_chunk.data(), qint64(std::min(_chunk.size(), chunkSize)));
  if (n < 0)
    throw NbeUserError(QObject::tr("%1: cannot be read: %2").arg(_shownName, _file.errorString()));
  _position = 0;
  _available = std::size_t(n);
  if (_decoder && n > 0) {
    const QByteArray text = _decoder->toUnicode(_chunk.data(), int(n)).toUtf8();
    if (text.isEmpty())
      return _fill();
    _chunk.resize(std::max(_chunk.size(), std::size_t(text.size())));
    std::copy(text.begin(), text.end(), _chunk.begin());
    _available = std::size_t(text.size());
  }
  return n > 0;
}

int TextRecords::_peek()
{
  if (_position == _available && !_fill())
    return END;
  return static_cast<unsigned char>(_chunk[_position]);
}

int TextRecords::_get()
{
  const int c = _peek();
  if (c != END)
    ++_position;
  if (c == '\n')
    ++_line;
  return c;
}

bool TextRecords::_isSeparator(int c) const
{
  return _separator == ' ' ? isBlank(c) : c == _separator;
}

void TextRecords::_skipBlanks()
{
  while (isBlank(_peek()) && (_separator == ' ' || _peek() != _separator))
    ++_position;
}

/// Takes a line end ("\n", "\r\n" or "\r"), or sees the end of the file.
bool TextRecords::_endOfRecord()
{
  const int c = _peek();
  if (c == END)
    return true;
  if (c == '\n') {
    _get();
    return true;
  }
  if (c != '\r')
    return false;
  ++_position;
  if (_peek() == '\n')
    ++_position;
  ++_line;
  return true;
}

void TextRecords::_readField()
{
  _skipBlanks();
  if (_peek() == '"')
    _readQuotedField();
  else
    _readPlainField();
}

void TextRecords::_readPlainField()
{
  const std::size_t begin = _record.size();
  for (int c = _peek(); c != END && !isLineEnd(c) && !_isSeparator(c); c = _peek()) {
    _append(c);
    ++_position;
  }
  _slices.push_back({begin, _record.size() - begin});
}

void TextRecords::_readQuotedField()
{
  const std::size_t begin = _record.size();
  ++_position;
  for (;;) {
    const int c = _get();
    if (c == END)
      fail(QObject::tr("a quote (\") is opened and not closed"));
    if (c == '"') {
      if (_peek() != '"')
        break;
      ++_position;
    }
    _append(c);
  }
  _slices.push_back({begin, _record.size() - begin});
  if (_separator != ' ')
    _skipBlanks();
  const int c = _peek();
  if (c != END && !isLineEnd(c) && !_isSeparator(c))
    fail(QObject::tr("text behind a closing quote (\"); a quote inside a field is doubled"));
}

void TextRecords::_append(int c)
{
  if (c == 0)
    fail(
        QObject::tr("a null byte; this is not a text file, unless it is UTF-16: save it as UTF-8"));
  if (_record.size() >= longestRecord)
    fail(QObject::tr("the record is longer than 16 MB; this is not a table"));
  _record.push_back(char(c));
}

/// Views into the record, once it moves in memory no more.
void TextRecords::_cutFields()
{
  _fields.clear();
  for (const Slice &slice : _slices)
    _fields.push_back(trimmed({_record.data() + slice.begin, slice.length}));
}

}  // namespace orvenal
