#include "components/links/Binlist.h"

#include <QLocale>
#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

/// Grid indices beyond this are not whole numbers any more in a double.
constexpr double kMostBins = 4503599627370496.0;  // 2^52

QString Number(double value) { return QString::number(value, 'g', QLocale::FloatingPointShortest); }

}  // namespace

void TBinList::SetStep(double step) {
  if (step == step_ || !std::isfinite(step) || step <= 0.0) return;
  step_ = step;
  Clear();
}

void TBinList::SetAnchor(double anchor) {
  if (anchor == anchor_ || !std::isfinite(anchor)) return;
  anchor_ = anchor;
  Clear();
}

double TBinList::GetCycleCount() const {
  return std::accumulate(counts_.begin(), counts_.end(), 0.0);
}

std::optional<TBinList::TGridIndex> TBinList::BinOf(double value) const {
  const double steps = std::ceil((value - anchor_) / step_);
  if (!(std::abs(steps) < kMostBins)) return {};
  auto index = static_cast<TGridIndex>(steps);
  // The division may round across an edge; what counts is the edge as GetPosition gives it.
  if (value > Edge(index)) ++index;
  if (value <= Edge(index - 1)) --index;
  if (Edge(index - 1) < value && value <= Edge(index)) return index;
  return {};
}

double TBinList::CorrectPos(double value) const {
  const auto index = BinOf(value);
  return index ? Edge(*index) : value;
}

double* TBinList::Reach(TGridIndex index) {
  if (counts_.empty()) first_ = index;
  const TGridIndex below = std::max<TGridIndex>(0, first_ - index);
  const TGridIndex above = std::max<TGridIndex>(0, index - first_ - std::ssize(counts_) + 1);
  if (below + above + std::ssize(counts_) > kMaxBins) return nullptr;
  counts_.insert(counts_.begin(), static_cast<std::size_t>(below), 0.0);
  counts_.insert(counts_.end(), static_cast<std::size_t>(above), 0.0);
  first_ -= below;
  return &counts_[static_cast<std::size_t>(index - first_)];
}

bool TBinList::Take(double weight, double value) {
  const auto index = BinOf(value);
  double* count = index && std::isfinite(weight) ? Reach(*index) : nullptr;
  if (!count || !std::isfinite(*count + weight)) return false;
  *count += weight;
  return true;
}

bool TBinList::AddValues(double weight, double value) {
  if (!Take(weight, value)) {
    if (std::isfinite(weight)) lost_ += weight;
    return false;
  }
  if (OnValueAdded) OnValueAdded();
  return true;
}

void TBinList::Clear() {
  counts_.clear();
  lost_ = 0.0;
  emit OnChange(this);
}

void TBinList::AssignTo(TPersistent* destination) const {
  auto* other = qobject_cast<TBinList*>(destination);
  if (!other || SameAs(other)) return;
  other->step_ = step_;
  other->anchor_ = anchor_;
  other->first_ = first_;
  other->counts_ = counts_;
  other->lost_ = lost_;
  emit other->OnChange(other);
}

bool TBinList::SameAs(const TPersistent* other) const {
  const auto* bins = qobject_cast<const TBinList*>(other);
  return bins && bins->step_ == step_ && bins->anchor_ == anchor_ && bins->counts_ == counts_ &&
         (Empty() || bins->first_ == first_);
}

QString TBinList::WriteData() const {
  QString text;
  for (int bin = 0; bin < Count(); ++bin) {
    text += Number(GetPosition(bin)) + ' ' + Number(GetBinCount(bin)) + '\n';
  }
  return text;
}

bool TBinList::ReadData(const QString& text, QString* error) {
  TCoordinateList rows;
  if (!rows.ReadProperties(text, error)) return false;
  TBinList read;
  read.step_ = step_;
  read.anchor_ = anchor_;
  for (int row = 0; row < rows.Count(); ++row) {
    const TCoordinate bin = rows.Get(row);
    if (read.Take(bin.Y, bin.X)) continue;
    if (error) *error = QStringLiteral("Row %1: no bin can be made at %2").arg(row + 1).arg(bin.X);
    return false;
  }
  read.AssignTo(this);
  return true;
}
