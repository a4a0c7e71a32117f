#include "components/channels/Statisticsseries.h"

#include <QPainter>
#include <cmath>

#include "components/links/Linkclasses.h"

namespace {

const bool kRegistered = [] {
  TSeriesList::RegisterClass<TStatisticsSeries>();
  return true;
}();

QPen LinePen(const TBasicSeriesStyle& style) {
  if (style.IsLineClear()) return Qt::NoPen;
  return {style.GetLineColor().ToQColor(), static_cast<double>(style.GetLineWeight()),
          style.QtLineStyle()};
}

void Widen(TRange& range, double value) {
  if (std::isfinite(value)) range.GetBounds(value);
}

}  // namespace

// TStatSeriesStyle

void TStatSeriesStyle::SetBarStyle(TStatBarStyle style) {
  if (style >= bsXBar && style <= bsYBar) Set(barStyle_, style);
}

// TStatisticsSeries

TStatisticsSeries::TStatisticsSeries(QObject* owner)
    : TCustomDataSeries(std::make_unique<TStatSeriesStyle>(this), owner) {}

void TStatisticsSeries::SetStyle(const TStatSeriesStyle* style) {
  if (!style || GetStyle()->SameAs(style)) return;
  GetStyle()->BeginUpdate();
  GetStyle()->Assign(style);
  GetStyle()->EndUpdate();
}

void TStatisticsSeries::SetOptions(TStatOptions options) {
  if (options == options_) return;
  options_ = options;
  Changed();
}

template <class TVisit>
void TStatisticsSeries::ForEachRecord(TVisit visit) const {
  if (!Statistics) return;
  TStatisticsData record;
  for (int index = 0; Statistics(index, record);) visit(record);
}

// Ranges

void TStatisticsSeries::UpdateValueRange(TRange& range) const {
  range.SetReset(true);
  ForEachRecord([&](const TStatisticsData& record) {
    if (options_ & soShowMinMax) {
      Widen(range, record.Min);
      Widen(range, record.Max);
    }
    if (options_ & soShowStDev) {
      Widen(range, record.Mean + record.StDev);
      Widen(range, record.Mean - record.StDev);
    }
    if (options_ & soShowMean) Widen(range, record.Mean);
  });
}

void TStatisticsSeries::UpdatePosRange(TRange& range) const {
  range.SetReset(true);
  if (!options_) return;
  ForEachRecord([&](const TStatisticsData& record) { Widen(range, record.Pos); });
}

void TStatisticsSeries::UpdateRangeX() {
  if (GetStyle()->GetBarStyle() == TStatSeriesStyle::bsXBar) {
    UpdateValueRange(rangeX_);
  } else {
    UpdatePosRange(rangeX_);
  }
}

void TStatisticsSeries::UpdateRangeY() {
  if (GetStyle()->GetBarStyle() == TStatSeriesStyle::bsXBar) {
    UpdatePosRange(rangeY_);
  } else {
    UpdateValueRange(rangeY_);
  }
}

// Drawing

void TStatisticsSeries::Draw(QPainter* painter) {
  if (!Panel() || !Statistics) return;
  const TColor fill = GetStyle()->GetFillColor();
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing, false);
  painter->setPen(LinePen(*GetStyle()));
  painter->setBrush(fill.IsNone() ? QBrush(Qt::NoBrush) : QBrush(fill.ToQColor()));
  ForEachRecord([&](const TStatisticsData& record) { DrawPoint(*painter, record); });
  painter->restore();
}

/// From the widest span to the narrowest, so that each lies on the one before it.
void TStatisticsSeries::DrawPoint(QPainter& painter, const TStatisticsData& record) const {
  const auto draw = [&](double from, double to, int reach) {
    const QRect bar = Bar(record.Pos, from, to, reach);
    if (!bar.isNull()) painter.drawRect(bar.adjusted(0, 0, -1, -1));
  };
  if (options_ & soShowMinMax) draw(record.Min, record.Max, kMinMaxReach);
  if (options_ & soShowStDev) {
    draw(record.Mean - record.StDev, record.Mean + record.StDev, kStDevReach);
  }
  if (options_ & soShowMean) draw(record.Mean, record.Mean, kMeanReach);
}

/// The pixels of a bar; null if none lie inside the panel. One that goes on beyond the panel ends
/// so far outside that its outline does not show there.
QRect TStatisticsSeries::Bar(double pos, double from, double to, int reach) const {
  if (!std::isfinite(pos) || !std::isfinite(from) || !std::isfinite(to)) return {};
  const bool alongX = GetStyle()->GetBarStyle() == TStatSeriesStyle::bsXBar;
  TCoordinate start = alongX ? TCoordinate{from, pos} : TCoordinate{pos, from};
  TCoordinate end = alongX ? TCoordinate{to, pos} : TCoordinate{pos, to};
  QLine axis;
  Panel()->LocateValue(axis, start, end);
  QRect bar = QRect::span(axis.p1(), axis.p2());
  bar = alongX ? bar.adjusted(0, -reach, 0, reach) : bar.adjusted(-reach, 0, reach, 0);
  const int margin = GetStyle()->GetLineWeight();
  return bar & Panel()->Rect().adjusted(-margin, -margin, margin, margin);
}

void TStatisticsSeries::TakeSources(const TCustomGraphSeries& other) {
  TCustomDataSeries::TakeSources(other);
  const auto* statistics = qobject_cast<const TStatisticsSeries*>(&other);
  if (statistics) Statistics = statistics->Statistics;
}

TStatisticsSeries* AddStatisticsSeries(TCustomGraphLink& link, const TStatistics& statistics,
                                       TStatSeriesStyle::TStatBarStyle barStyle) {
  auto series = std::make_unique<TStatisticsSeries>();
  series->GetStyle()->SetBarStyle(barStyle);
  series->GetStyle()->SetLineColor(TColor::Black());
  series->GetStyle()->SetFillColor(TColor::Yellow());
  series->Statistics = [&statistics](int& index, TStatisticsData& record) {
    return statistics.ProvideGraphData(index, record);
  };
  return link.AddSeries(std::move(series));
}
