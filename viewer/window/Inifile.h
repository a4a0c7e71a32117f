#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QByteArrayView>
#include <optional>

/// An ini file's text, line by line: sections of key=value lines, found in any case of letters. The
/// first section of a name counts, and in it the first line of a key. A change touches only the
/// value it is about: comments, order, spacing, line ends and lines of no meaning stay as they are.
class TIniFile {
 public:
  explicit TIniFile(const QByteArray& text);

  bool HasSection(QByteArrayView section) const { return SectionLine(section) >= 0; }

  /// The value without white space around it; nothing if there is no such key.
  std::optional<QByteArray> Value(QByteArrayView section, QByteArrayView key) const;

  /// Replaces the value, or adds the key at the end of its section, or the section at the end of
  /// the file. `value` is one line.
  void SetValue(QByteArrayView section, QByteArrayView key, const QByteArray& value);

  QByteArray Text() const { return mark_ + lines_.join(); }

 private:
  qsizetype SectionLine(QByteArrayView section) const;            ///< of the header, or -1
  qsizetype SectionEnd(qsizetype header) const;                   ///< line behind the section
  qsizetype KeyLine(qsizetype header, QByteArrayView key) const;  ///< or -1
  void AddSection(QByteArrayView section);
  void CloseLastLine();

  QByteArray mark_;       ///< the byte order mark, if the text begins with one
  QByteArrayList lines_;  ///< each with its line end
  QByteArray lineEnd_;
};
