#pragma once

#include <QFile>
#include <QString>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QTextDecoder;

namespace orvenal {

/// Bytes of a text file as text: UTF-8, or Latin-1 when they are not UTF-8.
QString textFromBytes(std::string_view bytes);

/// A line or a field for a message: short, without line ends.
QString shownText(std::string_view bytes);

/// A text without the blanks and tabs around it.
std::string_view trimmed(std::string_view text);

/// Throws an error when a file that begins like this is compressed, or a workbook.
void refusePacked(std::string_view head, const QString &shownName);

/// Takes a text file apart into lines, or into records of fields, in constant memory.
///
/// Understood: byte-order marks of UTF-8 and UTF-16 (whose text is taken as UTF-8), Unix, Windows
/// and old Macintosh line ends, a last line without an end. In records: fields in double quotes
/// with doubled quotes, separators and line ends inside; blanks around a field are dropped, empty
/// lines are skipped.
///
/// Errors are NbeUserErrors that name file and line: a file that cannot be read, is empty or
/// packed, null bytes, quotes that are not closed, records above 16 MB.
class TextRecords
{
public:
  /// Opens the file. `shownName` stands for it in messages.
  TextRecords(const QString &path, const QString &shownName);
  ~TextRecords();

  /// What separates fields; ' ' is any number of blanks and tabs.
  void setSeparator(char separator) { _separator = separator; }
  char getSeparator() const { return _separator; }

  /// Of tab, ';' and ',' that which the next line with text has most of outside quotes; ' ' when it
  /// has none. Nothing is consumed.
  char detectSeparator() const;

  /// Goes to the next line, quotes or not, which becomes the only field; false at the end.
  bool nextLine();

  /// Goes to the next record; false at the end.
  bool nextRecord();

  /// Line on which the current record begins, from 1.
  qint64 getLine() const { return _recordLine; }

  int getCount() const { return int(_fields.size()); }

  /// A field of the current record, blanks around it dropped.
  std::string_view getField(int index) const { return _fields[std::size_t(index)]; }

  /// Throws an error of the current record.
  [[noreturn]] void fail(const QString &message) const;

private:
  struct Slice
  {
    std::size_t begin;
    std::size_t length;
  };

  void _startDecoding();
  void _begin();
  int _peek();
  int _get();
  bool _fill();
  bool _isSeparator(int c) const;
  void _skipBlanks();
  void _readField();
  void _readQuotedField();
  void _readPlainField();
  bool _endOfRecord();
  void _append(int c);
  void _cutFields();

  QString _shownName;
  char _separator = ' ';
  QFile _file;
  std::unique_ptr<QTextDecoder> _decoder;  ///< of UTF-16; none for what is taken as it is
  std::vector<char> _chunk;
  std::size_t _position = 0;
  std::size_t _available = 0;
  qint64 _line = 1;
  qint64 _recordLine = 1;
  std::string _record;
  std::vector<Slice> _slices;
  std::vector<std::string_view> _fields;
};

}  // namespace orvenal
