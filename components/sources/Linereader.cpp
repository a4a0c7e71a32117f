#include "components/sources/Linereader.h"

#include <QIODevice>
#include <algorithm>
#include <array>
#include <string_view>

/// As many bytes as there are, up to `size`.
std::optional<qint64> TLineReader::Read(qint64 position, char* bytes, qint64 size) {
  qint64 count = device_->pos() == position || device_->seek(position) ? 0 : -1;
  for (qint64 read = 1; count >= 0 && count < size && read > 0;) {
    read = device_->read(bytes + count, size - count);
    count = read < 0 ? -1 : count + read;
  }
  if (count >= 0) return count;
  error_ = device_->errorString();
  return {};
}

std::optional<bool> TLineReader::HasData(qint64 position) {
  char byte = 0;
  const std::optional<qint64> count = Read(position, &byte, 1);
  if (!count) return {};
  return *count > 0;
}

std::optional<bool> TLineReader::FindLineStart(qint64& position) {
  constexpr std::size_t kBlock = 65536;
  std::array<char, kBlock> block;
  qint64 wanted = 256;  // most lines are short
  for (qint64 left = kMost; position > 0 && left > 0; left -= wanted) {
    wanted = std::min({wanted, position, left});
    const std::optional<qint64> count = Read(position - wanted, block.data(), wanted);
    if (!count) return {};
    const std::string_view text(block.data(), static_cast<std::size_t>(*count));
    const std::size_t lineFeed = text.rfind('\n');
    position -= wanted;
    if (lineFeed != std::string_view::npos) {
      position += static_cast<qint64>(lineFeed) + 1;
      return true;
    }
    wanted = kBlock;
  }
  return position == 0;
}

/// How many bytes were there.
std::optional<qint64> TLineReader::Append(QByteArray& bytes, qint64 start, qint64 size) {
  const qint64 before = bytes.size();
  bytes.resize(before + size);
  const std::optional<qint64> count = Read(start + before, bytes.data() + before, size);
  if (count) bytes.truncate(before + *count);
  return count;
}

std::optional<TLineReader::TLines> TLineReader::ReadLines(qint64 position, qint64 minimum) {
  constexpr qint64 kBlock = 16384;
  TLines lines;
  std::optional<qint64> count = Append(lines.bytes, position, minimum);
  if (!count) return {};
  if (*count < minimum) return lines;
  do {
    const qint64 before = lines.bytes.size();
    count = Append(lines.bytes, position, kBlock);
    if (!count) return {};
    if (const qint64 lineFeed = lines.bytes.indexOf('\n', before); lineFeed >= 0) {
      lines.bytes.truncate(lineFeed + 1);
      return lines;
    }
  } while (*count > 0 && lines.bytes.size() < kMost);
  lines.cut = *count > 0;
  return lines;
}
