#include "examples/package-server/Replay.h"

#include <QDate>
#include <QTime>
#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "model/Datetime.h"

namespace {

/// "YYYYMMDD HHMMSSmmm" as seconds on a clock that knows no summer time.
std::optional<double> Seconds(QByteArrayView stamp) {
  constexpr qsizetype kLength = 18;
  if (stamp.size() < kLength) return {};
  bool isNumber = true;
  const auto number = [&](qsizetype first, qsizetype length) {
    bool ok = false;
    const int value = stamp.sliced(first, length).toInt(&ok);
    isNumber = isNumber && ok;
    return value;
  };
  const QDate date(number(0, 4), number(4, 2), number(6, 2));
  const QTime time(number(9, 2), number(11, 2), number(13, 2), number(15, 3));
  if (!isNumber || !date.isValid() || !time.isValid()) return {};
  return static_cast<double>(date.toJulianDay()) * kSecondsPerDay +
         time.msecsSinceStartOfDay() / 1000.0;
}

QByteArrayView Attribute(QByteArrayView tag, QByteArrayView key) {
  const qsizetype found = tag.indexOf(key);
  if (found < 0) return {};
  const QByteArrayView value = tag.sliced(found + key.size());
  return value.first(std::max<qsizetype>(value.indexOf('"'), 0));
}

/// The opening tag, the body and the closing name of a text that ends with a package.
struct TParts {
  explicit TParts(QByteArrayView text) {
    const qsizetype closing = text.lastIndexOf("</");
    const QByteArrayView before = text.first(closing);
    const qsizetype opening = std::max<qsizetype>(before.indexOf('<'), 0);
    const qsizetype body = before.indexOf('>', opening) + 1;
    tag = before.sliced(opening, std::max<qsizetype>(body - opening, 0));
    rows = before.sliced(body).trimmed();
    name = text.sliced(closing + 2).chopped(1);
  }
  std::optional<double> Time() const {
    if (name != "data") return Seconds(Attribute(tag, " time=\""));
    return Seconds(rows.sliced(rows.lastIndexOf('\n') + 1));
  }

  QByteArrayView tag;
  QByteArrayView rows;
  QByteArrayView name;
};

/// Times of a record as they pass while it is played.
class TPlayTime {
 public:
  /// Seconds since the start at which a package is due; packages in their order.
  double Of(const TParts& package) {
    const std::optional<double> time = package.Time();
    if (!time) return due_;
    if (!first_) first_ = time;
    const auto key =
        std::pair(package.name.toByteArray(), Attribute(package.tag, " id=\"").toByteArray());
    TKind& kind = kinds_.try_emplace(key, TKind{*first_, 0.0}).first->second;
    kind.played += std::clamp(*time - kind.last, 0.0, TReplay::kLongestPause);
    kind.last = *time;
    return due_ = std::max(due_, kind.played);
  }
  bool HasTimes() const { return first_.has_value(); }

 private:
  struct TKind {
    double last;    ///< time in the record
    double played;  ///< seconds since the start
  };
  std::optional<double> first_;
  std::map<std::pair<QByteArray, QByteArray>, TKind> kinds_;
  double due_ = 0.0;
};

}  // namespace

TReplay::TReplay(QByteArray text, double byteRate) : text_(std::move(text)), byteRate_(byteRate) {
  if (byteRate_ <= 0.0) FindPackages();
}

void TReplay::FindPackages() {
  const QByteArrayView text = text_;
  TPlayTime times;
  for (qsizetype start = 0; start < text.size();) {
    const qsizetype closing = text.indexOf("</", start);
    const qsizetype bracket = closing < 0 ? -1 : text.indexOf('>', closing);
    if (bracket < 0) break;
    const TParts package(text.sliced(start, bracket + 1 - start));
    start = bracket + 1;
    pieces_.push_back({start, times.Of(package)});
  }
  if (!times.HasTimes()) {
    byteRate_ = kByteRate;
  } else {
    pieces_.back().end = text.size();
  }
}

void TReplay::Advance(double seconds) {
  now_ += seconds;
  if (given_ < text_.size() || now_ < Round()) return;
  now_ = 0.0;
  next_ = 0;
  given_ = 0;
}

QByteArray TReplay::Take() {
  if (given_ == text_.size()) return {};
  const qsizetype start = std::exchange(given_, DueEnd());
  return text_.sliced(start, given_ - start);
}

/// Where the text ends that is due by now, or its next piece.
qsizetype TReplay::DueEnd() {
  if (byteRate_ > 0.0) {
    const double bytes = std::min(now_ * byteRate_, static_cast<double>(text_.size()));
    return std::max(given_, static_cast<qsizetype>(bytes));
  }
  return pieces_[next_].seconds <= now_ ? pieces_[next_++].end : given_;
}

double TReplay::Round() const {
  return byteRate_ > 0.0 ? 0.0 : std::max(kShortestRound, pieces_.back().seconds);
}
