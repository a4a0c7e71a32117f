#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <vector>

#include "components/channels/Statset.h"

/// The text format in which statistics of channel sets are stored: one line per saved block, cells
/// separated by commas, a header line in front. docs/file-formats.md describes it.

/// A channel as a header names it.
struct TStatsColumn {
  QString Label;
  QString Units;
  friend bool operator==(const TStatsColumn&, const TStatsColumn&) = default;
};

/// The header line of these channels, with its line feed. Line breaks in texts become blanks.
QByteArray StatsHeader(const std::vector<TStatsColumn>& channels);
/// The line of a block, with its line feed. The time is written as days since 30 December 1899, or
/// as "2024-05-31 23:59:59.000".
QByteArray StatsLine(double time, const std::vector<TStatSet>& channels, bool doubleTime);

/// What stands in such a file.
struct TStatsBlock {
  double Time = 0.0;
  int Layout = 0;  ///< which of the layouts names its channels
  std::vector<TStatSet> Channels;
};
struct TStatsContent {
  std::vector<std::vector<TStatsColumn>> Layouts;
  std::vector<TStatsBlock> Blocks;  ///< in the order of the file
  int Skipped = 0;                  ///< lines that are no whole blocks, as a crash leaves them
};

/// Reads a text. Lines that are cut or damaged, or have no header, are skipped and counted.
TStatsContent ParseStats(QByteArrayView text);
/// Reads a regular file of at most 4 GiB. False, with a reason, if it cannot be read.
[[nodiscard]] bool ReadStatsFile(const QString& fileName, TStatsContent& content, QString* error);

/// The text with what file names cannot hold replaced by "_", at most 120 bytes long.
QString SafeFileName(const QString& text);
