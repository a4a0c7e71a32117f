#include <QIODevice>
#include <QMetaEnum>
#include <algorithm>
#include <array>

#include "components/channels/Channelstat.h"
#include "model/Textscanner.h"

// One history

namespace {

constexpr std::array kFields = {&TStatSet::Count, &TStatSet::Sum, &TStatSet::SqSum,
                                &TStatSet::Max,   &TStatSet::Min, &TStatSet::Mean,
                                &TStatSet::StDev, &TStatSet::Time};

QDataStream& operator<<(QDataStream& stream, const TStatSet& record) {
  for (const auto field : kFields) stream << record.*field;
  return stream;
}

QDataStream& operator>>(QDataStream& stream, TStatSet& record) {
  for (const auto field : kFields) stream >> record.*field;
  return stream;
}

/// Also one whose ends have become equal by the digits of the text form, which then begins anew.
bool IsInterval(double start, double end) {
  return IsHistoryTime(start) && end >= start && end - start < 400.0;
}

}  // namespace

void TStatHistory::WriteProperties(QDataStream& stream) const {
  stream << start_ << end_ << current_ << qint32{Count()};
  for (int i = 0; i < Count(); ++i) stream << Get(i);
}

bool TStatHistory::ReadProperties(QDataStream& stream) {
  double start = 0.0;
  double end = 0.0;
  TStatSet current;
  qint32 count = 0;
  stream >> start >> end >> current >> count;
  if (stream.status() != QDataStream::Ok || !IsInterval(start, end) || !current.IsValid() ||
      count < 0 || count > maxCount_) {
    return false;
  }
  std::vector<TStatSet> records(static_cast<std::size_t>(count));
  for (TStatSet& record : records) {
    stream >> record;
    if (stream.status() != QDataStream::Ok || !record.IsValid()) return false;
  }
  SetRecords(start, end, current, std::move(records));
  return true;
}

void TStatHistory::SetRecords(double start, double end, const TStatSet& current,
                              std::vector<TStatSet> records) {
  *this = Emptied();
  start_ = start;
  end_ = end;
  current_ = current;
  records.reserve(static_cast<std::size_t>(maxCount_));
  records_ = std::move(records);
}

void TStatHistory::SetPending(int count, const TStatSet& madeRoom) {
  pending_ = std::clamp(count, 0, Count());
  madeRoom_ = madeRoom;
}

namespace {

QString KeyOf(TStatInterval interval) {
  return QLatin1String(QMetaEnum::fromType<TStatInterval>().valueToKey(interval));
}

/// Takes `word` from the front of a text; false if it does not stand there.
bool Skip(TTextScanner& scanner, std::string_view word) {
  scanner.SkipWhiteSpace();
  if (!scanner.Text().substr(scanner.Position()).starts_with(word)) return false;
  scanner.SetPosition(scanner.Position() + word.size());
  return true;
}

bool ScanTimes(const QString& line, double& start, double& end, std::int32_t& count) {
  const QByteArray bytes = line.toLatin1();
  TTextScanner scanner({bytes.constData(), static_cast<std::size_t>(bytes.size())});
  return Skip(scanner, "StartTime:") && scanner.ReadReal(start) && Skip(scanner, "EndTime:") &&
         scanner.ReadReal(end) && Skip(scanner, "ItemCount:") && scanner.ReadInt(count) &&
         scanner.AtEnd();
}

}  // namespace

QStringList TStatHistory::WritePropertiesAsText() const {
  QStringList lines;
  lines.append(QStringLiteral("StartTime: %1 EndTime: %2 ItemCount: %3")
                   .arg(start_, 0, 'f', 8)
                   .arg(end_, 0, 'f', 8)
                   .arg(Count()));
  lines.append(QLatin1String("ItemID ") + KeyOf(interval_));
  lines.append(QLatin1String("Last: ") + current_.GetAsText());
  for (int i = 0; i < Count(); ++i) lines.append(Get(i).GetAsText());
  return lines;
}

bool TStatHistory::ReadPropertiesAsText(const QStringList& lines, qsizetype& line) {
  double start = 0.0;
  double end = 0.0;
  TStatSet current;
  std::int32_t count = 0;
  if (!ScanTimes(lines.value(line), start, end, count) || !IsInterval(start, end) || count < 0 ||
      count > maxCount_ || lines.size() - line < count + 3 ||
      lines[line + 1] != QLatin1String("ItemID ") + KeyOf(interval_) ||
      !lines[line + 2].startsWith(QLatin1String("Last: ")) ||
      !current.ScanFromText(lines[line + 2])) {
    return false;
  }
  std::vector<TStatSet> records(static_cast<std::size_t>(count));
  for (qsizetype i = 0; i < count; ++i) {
    if (!records[static_cast<std::size_t>(i)].ScanFromText(lines[line + 3 + i])) return false;
  }
  line += count + 3;
  SetRecords(start, end, current, std::move(records));
  return true;
}

bool operator==(const TStatHistory& a, const TStatHistory& b) {
  if (a.interval_ != b.interval_ || a.start_ != b.start_ || a.end_ != b.end_ ||
      a.current_ != b.current_ || a.Count() != b.Count() || a.pending_ != b.pending_ ||
      a.madeRoom_ != b.madeRoom_) {
    return false;
  }
  for (int i = 0; i < a.Count(); ++i) {
    if (a.Get(i) != b.Get(i)) return false;
  }
  return true;
}

// All histories of a channel

namespace {

constexpr quint32 kMagic = 0x31534856;  // "VHS1" in the file
constexpr auto kVersion = QDataStream::Qt_6_0;

void SetUp(QDataStream& stream) {
  stream.setVersion(kVersion);
  stream.setByteOrder(QDataStream::LittleEndian);
  stream.setFloatingPointPrecision(QDataStream::DoublePrecision);
}

bool Refuse(QString* error, const QString& reason) {
  if (error) *error = reason;
  return false;
}

bool RefuseHistory(QString* error, std::size_t index) {
  return Refuse(error, QStringLiteral("History %1 is damaged").arg(index + 1));
}

const QLatin1String kHeader("HistoryCount: ");
const QLatin1String kPending("Pending: ");

}  // namespace

QByteArray TChannelStatistics::WriteBinaryData() const {
  QByteArray data;
  QDataStream stream(&data, QIODevice::WriteOnly);
  SetUp(stream);
  const std::lock_guard lock(mutex_);
  stream << kMagic << qint32{Count()};
  for (const auto& history : histories_) {
    stream << qint32{Ordinal(history->Interval())} << qint32{history->Pending()}
           << history->MadeRoom();
    history->WriteProperties(stream);
  }
  return data;
}

bool TChannelStatistics::ReadBinaryData(const QByteArray& data, QString* error) {
  QDataStream stream(data);
  SetUp(stream);
  quint32 magic = 0;
  qint32 count = 0;
  stream >> magic >> count;
  if (stream.status() != QDataStream::Ok || magic != kMagic || count < 1 ||
      count > kStatIntervals) {
    return Refuse(error, QStringLiteral("These are no stored histories"));
  }
  THistories read;
  for (qint32 i = 0; i < count; ++i) {
    qint32 ordinal = 0;
    qint32 pending = 0;
    TStatSet madeRoom;
    stream >> ordinal >> pending >> madeRoom;
    if (stream.status() != QDataStream::Ok || ordinal < 0 || ordinal >= kStatIntervals ||
        !madeRoom.IsValid()) {
      return RefuseHistory(error, read.size());
    }
    read.push_back(std::make_unique<TStatHistory>(IntervalAt(ordinal), &limitsNow_));
    if (!read.back()->ReadProperties(stream)) return RefuseHistory(error, read.size() - 1);
    read.back()->SetPending(pending, madeRoom);
  }
  if (!stream.atEnd())
    return Refuse(error, QStringLiteral("Something stands behind the histories"));
  Take(std::move(read));
  return true;
}

QString TChannelStatistics::WriteData() const {
  const std::lock_guard lock(mutex_);
  QStringList lines(kHeader + QString::number(Count()));
  for (const auto& history : histories_) {
    lines.append(KeyOf(history->Interval()));
    lines.append(kPending + QString::number(history->Pending()));
    lines.append(QLatin1String("MadeRoom: ") + history->MadeRoom().GetAsText());
    lines.append(history->WritePropertiesAsText());
  }
  return lines.join('\n');
}

bool TChannelStatistics::ReadData(const QString& text, QString* error) {
  const QStringList lines = text.split('\n');
  const int count = lines[0].startsWith(kHeader) ? lines[0].mid(kHeader.size()).toInt() : 0;
  if (count < 1 || count > kStatIntervals) {
    return Refuse(error, QStringLiteral("These are no stored histories"));
  }
  THistories read;
  qsizetype line = 1;
  for (int i = 0; i < count; ++i) {
    bool known = false;
    const int interval = QMetaEnum::fromType<TStatInterval>().keyToValue(
        lines.value(line).toLatin1().constData(), &known);
    const QString pending = lines.value(line + 1);
    TStatSet madeRoom;
    if (!known || !pending.startsWith(kPending) || !madeRoom.ScanFromText(lines.value(line + 2))) {
      return RefuseHistory(error, read.size());
    }
    line += 3;
    const auto key = static_cast<TStatInterval>(interval);
    read.push_back(std::make_unique<TStatHistory>(key, &limitsNow_));
    if (!read.back()->ReadPropertiesAsText(lines, line)) {
      return RefuseHistory(error, read.size() - 1);
    }
    read.back()->SetPending(pending.mid(kPending.size()).toInt(), madeRoom);
  }
  if (line != lines.size()) {
    return Refuse(error, QStringLiteral("Something stands behind the histories"));
  }
  Take(std::move(read));
  return true;
}

/// Puts what was read in the place of the present contents. Of two with one interval the first
/// counts.
void TChannelStatistics::Take(THistories read) {
  const std::lock_guard lock(mutex_);
  histories_.clear();
  for (int ordinal = 0; ordinal < kStatIntervals; ++ordinal) {
    if (selected_.testFlag(IntervalAt(ordinal))) AddStatHistory(IntervalAt(ordinal), read);
  }
}

QString TChannelStatistics::WriteHistories() const {
  return asText_ ? WriteData() : QString::fromLatin1(WriteBinaryData().toBase64());
}

bool TChannelStatistics::ReadHistories(const QString& text, QString* error) {
  if (text.startsWith(kHeader)) return ReadData(text, error);
  const auto data =
      QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
  if (!data) return Refuse(error, QStringLiteral("These are no stored histories"));
  return ReadBinaryData(*data, error);
}
