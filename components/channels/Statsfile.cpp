#include "components/channels/Statsfile.h"

#include <QDate>
#include <QList>
#include <QLocale>
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "model/Datetime.h"
#include "model/Readfile.h"
#include "model/Textscanner.h"

namespace {

// Columns of a channel, in order.
constexpr std::array kValues = {&TStatSet::Mean, &TStatSet::Max, &TStatSet::Min, &TStatSet::StDev,
                                &TStatSet::Count};
constexpr std::array kTitles = {"Mean", "Max", "Min", "StDev", "Count"};
constexpr auto kPerChannel = static_cast<qsizetype>(kValues.size());
/// Channels that a header may name; a line of commas alone is not to become cells by the million.
constexpr qsizetype kMaxChannels = 4096;
constexpr char kTime[] = "Time";
/// Title of the last column, which holds the number of cells before it: a line that was cut lacks
/// it or has it wrong.
constexpr char kCells[] = "Cells";

QByteArray Quoted(QString text) {
  for (QChar& character : text) {
    if (character.category() == QChar::Other_Control) character = ' ';
  }
  return '"' + text.replace('"', QLatin1String("\"\"")).toUtf8() + '"';
}

QString Title(const TStatsColumn& channel, const char* value) {
  QString title = channel.Label + ' ' + QLatin1String(value);
  if (value != kTitles.back()) title += QStringLiteral(" [%1]").arg(channel.Units);
  return title;
}

/// The cells of a line; none if a quote is not closed, or there are too many.
QList<QByteArray> Split(QByteArrayView line) {
  QList<QByteArray> cells(1);
  bool quoted = false;
  for (qsizetype i = 0; i < line.size(); ++i) {
    const char character = line[i];
    if (character == '"') {
      const bool escaped = quoted && i + 1 < line.size() && line[i + 1] == '"';
      if (escaped) cells.back() += line[++i];
      if (!escaped) quoted = !quoted;
    } else if (character == ',' && !quoted) {
      if (cells.size() > kPerChannel * kMaxChannels + 1) return {};
      cells.emplace_back();
    } else {
      cells.back() += character;
    }
  }
  return quoted ? QList<QByteArray>() : cells;
}

/// The channels of a header line; nothing if it is none.
std::optional<std::vector<TStatsColumn>> ParseHeader(const QList<QByteArray>& cells) {
  if (cells.size() < 2 || cells.first() != kTime || cells.last() != kCells ||
      (cells.size() - 2) % kPerChannel != 0) {
    return {};
  }
  std::vector<TStatsColumn> channels;
  for (qsizetype i = 1; i < cells.size() - 1; i += kPerChannel) {
    // The title of the count has no unit, so what stands before it is the label.
    const QString count = QString::fromUtf8(cells[i + kPerChannel - 1]);
    const QString suffix = QStringLiteral(" Count");
    if (!count.endsWith(suffix)) return {};
    TStatsColumn channel{count.chopped(suffix.size()), {}};
    const QString mean = QString::fromUtf8(cells[i]);
    const QString start = channel.Label + QStringLiteral(" Mean [");
    if (!mean.startsWith(start) || !mean.endsWith(']')) return {};
    channel.Units = mean.mid(start.size()).chopped(1);
    channels.push_back(channel);
  }
  return channels;
}

bool ToNumber(QByteArrayView cell, double& number) {
  TTextScanner scanner({cell.data(), static_cast<std::size_t>(cell.size())});
  return scanner.ReadReal(number) && scanner.AtEnd();
}

bool ToTime(QByteArrayView cell, double& time) {
  constexpr qsizetype kDateLength = 10;
  if (cell.size() <= kDateLength || cell[kDateLength] != ' ') return ToNumber(cell, time);
  const QString text = QString::fromLatin1(cell);
  const QDate date = QDate::fromString(text.left(kDateLength), QStringLiteral("yyyy-MM-dd"));
  const QTime clock = QTime::fromString(text.mid(kDateLength + 1), QStringLiteral("HH:mm:ss.zzz"));
  if (!date.isValid() || !clock.isValid()) return false;
  time = static_cast<double>(QDate(1899, 12, 30).daysTo(date)) +
         clock.msecsSinceStartOfDay() / (1e3 * kSecondsPerDay);
  return true;
}

/// The sums that belong to the moments.
void RestoreSums(TStatSet& record) {
  record.Sum = record.Mean * record.Count;
  record.SqSum = record.Mean * record.Sum;
  if (record.Count > 1.0) record.SqSum += record.StDev * record.StDev * (record.Count - 1.0);
}

bool ParseBlock(QByteArrayView line, std::size_t channels, TStatsBlock& block) {
  const qsizetype numbers = 1 + kPerChannel * static_cast<qsizetype>(channels);
  if (std::count(line.begin(), line.end(), ',') != numbers) return false;
  const auto cells = line.toByteArray().split(',');
  double count = 0.0;
  if (!ToNumber(cells.last(), count) || count != static_cast<double>(numbers) ||
      !ToTime(cells.first(), block.Time)) {
    return false;
  }
  block.Channels.resize(channels);
  qsizetype cell = 1;
  for (TStatSet& record : block.Channels) {
    for (const auto value : kValues) {
      if (!ToNumber(cells[cell++], record.*value)) return false;
    }
    record.Time = block.Time;
    RestoreSums(record);
    if (!record.IsValid()) return false;
  }
  return true;
}

}  // namespace

QByteArray StatsHeader(const std::vector<TStatsColumn>& channels) {
  QByteArray line = kTime;
  for (const TStatsColumn& channel : channels) {
    for (const char* value : kTitles) line += ',' + Quoted(Title(channel, value));
  }
  return line + ',' + kCells + '\n';
}

QByteArray StatsLine(double time, const std::vector<TStatSet>& channels, bool doubleTime) {
  QByteArray line;
  if (doubleTime) {
    line = QByteArray::number(time, 'f', 8);
  } else {
    const TDateTime::TClock clock = TDateTime(time).Clock();
    line = clock.date.toString(QStringLiteral("yyyy-MM-dd")).toLatin1() + ' ' +
           clock.time.toString(QStringLiteral("HH:mm:ss.zzz")).toLatin1();
  }
  for (const TStatSet& record : channels) {
    for (const auto value : kValues) {
      line += ',' + QByteArray::number(record.*value, 'g', QLocale::FloatingPointShortest);
    }
  }
  return line + ',' +
         QByteArray::number(1 + kPerChannel * static_cast<qsizetype>(channels.size())) + '\n';
}

TStatsContent ParseStats(QByteArrayView text) {
  TStatsContent content;
  while (!text.empty()) {
    const qsizetype end = text.indexOf('\n');
    QByteArrayView line = text.first(end < 0 ? text.size() : end);
    text = text.sliced(end < 0 ? text.size() : end + 1);
    if (line.endsWith('\r')) line.chop(1);
    if (line.isEmpty()) continue;
    if (line.startsWith(kTime)) {
      if (auto channels = ParseHeader(Split(line))) {
        if (content.Layouts.empty() || content.Layouts.back() != *channels) {
          content.Layouts.push_back(std::move(*channels));
        }
        continue;
      }
    }
    TStatsBlock block;
    block.Layout = static_cast<int>(content.Layouts.size()) - 1;
    if (end >= 0 && !content.Layouts.empty() &&
        ParseBlock(line, content.Layouts.back().size(), block)) {
      content.Blocks.push_back(std::move(block));
    } else {
      ++content.Skipped;
    }
  }
  return content;
}

bool ReadStatsFile(const QString& fileName, TStatsContent& content, QString* error) {
  TFileText text;
  TLoadReport report;
  if (!ReadFile(fileName, text, report)) {
    if (error) *error = report.Sentence(fileName);
    return false;
  }
  content = ParseStats({text.data(), static_cast<qsizetype>(text.size())});
  return true;
}

QString SafeFileName(const QString& text) {
  constexpr qsizetype kMaxBytes = 120;
  QString safe;
  qsizetype bytes = 0;
  for (const QChar character : text) {
    const bool bad = character.category() == QChar::Other_Control || character.isSurrogate() ||
                     QStringLiteral("<>:\"/\\|?*").contains(character);
    const QChar taken = bad ? QChar('_') : character;
    bytes += QString(taken).toUtf8().size();
    if (bytes > kMaxBytes) break;
    safe += taken;
  }
  // A leading dot hides a file, or names a folder.
  if (safe.startsWith('.')) safe[0] = '_';
  return safe;
}
