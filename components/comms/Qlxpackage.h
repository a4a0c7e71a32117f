#pragma once

#include <QPointer>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "model/Datetime.h"

class QIODevice;
class TChannelSet;
class TChannelSets;

/// Reads tagged text packages, in pieces of any size, and writes their rows into the channel sets
/// that they name. docs/file-formats.md has the format.
///
/// Whatever arrives, it takes time in proportion to its length and no more than kMaxBody bytes of
/// text are kept. What is no package is skipped in silence, but counted. GUI thread only. A row may
/// call anybody, who may destroy the parser, the set, or the whole collection.
class TQLXPackage {
 public:
  static constexpr std::size_t kMaxTag = 256;     ///< characters kept of an opening tag
  static constexpr std::size_t kMaxName = 63;     ///< characters of a closing tag's name
  static constexpr std::size_t kMaxValues = 256;  ///< in a row, without its time
  /// Bytes of a body; a longer package is dropped at its end, when its rows would be due.
  static constexpr std::size_t kMaxBody = std::size_t{8} << 20;

  /// What has come so far.
  struct TCounts {
    std::uint64_t Packages = 0;   ///< complete ones with a body, that a set took
    std::uint64_t Rows = 0;       ///< given to the sets
    std::uint64_t Unmatched = 0;  ///< complete ones that no set wanted
    std::uint64_t Abandoned = 0;  ///< with a closing name, a body or a row that is too long
  };

  explicit TQLXPackage(TChannelSets* sets = nullptr);
  ~TQLXPackage();
  TQLXPackage(const TQLXPackage&) = delete;
  TQLXPackage& operator=(const TQLXPackage&) = delete;

  /// Where the rows go; not owned, may go first. Null: packages are read and dropped.
  void SetChannelSets(TChannelSets* sets);

  /// Whether rows are moved to the clock of this machine: the first row of a record takes the
  /// present time, and all others keep their distances from it, from package to package and from
  /// set to set. Rows without a time take the present one. Initially not.
  bool UseLocalTime = false;

  /// Goes on with `text`. A package that has not ended stays for the next call. Returns early if
  /// somebody whom a row called has reset or destroyed the parser: the rest is dropped.
  void Parse(std::string_view text);
  /// Same with all that a stream holds, from its start if it has one.
  void Parse(QIODevice& stream);

  /// Forgets the package that has begun and skips to the next "<".
  void Reset();
  /// Same, and what comes next is another record.
  void EndRecord();

  const TCounts& Counts() const { return counts_; }

  /// What follows `key` in the opening tag up to the next quote; empty if either is missing.
  void ScanFlag(std::string& out, std::string_view key) const;

  /// The first set whose XMLTag is the name of the closing tag and whose SetID is the id of the
  /// opening one; null for none.
  TChannelSet* GetValidSet() const;

  /// "YYYYMMDD HHMMSSmmm" with any separator as a local time; the milliseconds may be missing. 0.0
  /// for a text that is no such time.
  static TDateTime ExtractTime(std::string_view text);

  /// Writes the lines of the body into the set, between WriteBegin and WriteEnd. With `isData` each
  /// begins with its own time. False if somebody whom a row called has reset or destroyed the
  /// parser.
  bool ExtractPackage(TChannelSet& set, bool isData);

 private:
  enum class TState : std::uint8_t { OpeningTag, Body, ClosingTag, Between };
  struct TExtraction;

  const char* ReadOpeningTag(const char* next, const char* end);
  const char* ReadBody(const char* next, const char* end);
  const char* ReadClosingTag(const char* next, const char* end, bool& complete);
  const char* SkipToTag(const char* next, const char* end);
  bool ClosePackage();
  void EndLine();
  void Keep(std::string_view text);
  TDateTime MovedTime(TDateTime packageTime);

  QPointer<TChannelSets> sets_;
  TState state_ = TState::Between;
  bool bracket_ = false;   ///< the last byte of the body was a "<"
  bool overflow_ = false;  ///< the body was longer than may be kept
  std::string tag_;        ///< opening tag without its brackets
  std::string name_;       ///< of the closing tag
  std::string body_;
  TCounts counts_;
  std::optional<double> move_;         ///< days by which the record is moved
  TExtraction* extraction_ = nullptr;  ///< the innermost one that runs
};
