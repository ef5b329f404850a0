#pragma once

#include <QMetaType>
#include <QString>

class NbdMacroIndexInfo;
class QDataStream;

/// Index of one realization of a macro variable: an integer (the first realization is 1) or a text.
/// The default is invalid and stands for plain variables.
class NbdMacroIndex
{
public:
  NbdMacroIndex() = default;
  explicit NbdMacroIndex(int index) : _kind(INTEGER), _integer(index) {}
  explicit NbdMacroIndex(const QString &index) : _kind(TEXT), _text(index) {}

  /// The index that a text stands for, according to the info's type; invalid when an integer is
  /// expected and the text is none.
  static NbdMacroIndex fromString(const QString &text, const NbdMacroIndexInfo &info);

  bool isValid() const { return _kind != INVALID; }
  bool isInteger() const { return _kind == INTEGER; }
  bool isText() const { return _kind == TEXT; }

  /// The integer; 0 when the index is not one.
  int getInteger() const { return _integer; }
  /// The text; empty when the index is not one.
  const QString &getText() const { return _text; }

  /// Decimal form of an integer, a text as it is, nothing for an invalid index.
  QString toString() const;
  QString toString(const NbdMacroIndexInfo &info) const;

  bool operator==(const NbdMacroIndex &other) const
  {
    return _kind == other._kind && _integer == other._integer && _text == other._text;
  }
  bool operator!=(const NbdMacroIndex &other) const { return !(*this == other); }

  /// Invalid before integers before texts.
  bool operator<(const NbdMacroIndex &other) const;

private:
  enum Kind : qint8 { INVALID, INTEGER, TEXT };

  friend QDataStream &operator<<(QDataStream &stream, const NbdMacroIndex &index);
  friend QDataStream &operator>>(QDataStream &stream, NbdMacroIndex &index);

  Kind _kind = INVALID;
  int _integer = 0;
  QString _text;
};

/// Kind (qint8) and the integer (qint32) or the text. An unknown kind sets the stream's status to
/// ReadCorruptData and leaves the index unchanged.
QDataStream &operator<<(QDataStream &stream, const NbdMacroIndex &index);
QDataStream &operator>>(QDataStream &stream, NbdMacroIndex &index);

uint qHash(const NbdMacroIndex &index, uint seed = 0);
