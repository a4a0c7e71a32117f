#include "components/graphing/Dataseries.h"

#include <QJsonArray>
#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "components/graphing/painting/Curvepainter.h"

namespace {

constexpr std::size_t kBlock = 256;

/// Calls `visit` with the points of a source, many at a time: their drawing keeps its state in
/// registers, and the calls of the source do not wait for it.
template <class Visit>
void PullPoints(const TProvideGraphData& source, Visit visit) {
  std::array<TCoordinate, kBlock> points;
  TCoordinate extent;
  int index = 0;
  for (bool more = true; more;) {
    std::size_t count = 0;
    while (count < kBlock && (more = source(index, points[count], extent))) ++count;
    visit(std::span<const TCoordinate>(points.data(), count));
  }
}

/// The same for a source that gives blocks.
template <class Visit>
void PullBlocks(const TProvideGraphBlock& source, Visit visit) {
  std::array<TCoordinate, kBlock> points;
  int index = 0;
  for (;;) {
    const int count = std::min(source(index, points), static_cast<int>(kBlock));
    if (count <= 0) return;
    visit(std::span<const TCoordinate>(points.data(), static_cast<std::size_t>(count)));
    index += count;
  }
}

/// The same for a series, from whichever source it has.
template <class Visit>
void PullSeries(const TSeries& series, Visit visit) {
  if (series.BlockSource) {
    PullBlocks(series.BlockSource, visit);
  } else {
    PullPoints(series.DataSource, visit);
  }
}

/// Calls `visit` with every point of a source and its extent.
template <class Visit>
void PullBars(const TProvideGraphData& source, Visit visit) {
  TCoordinate point;
  TCoordinate extent;
  int index = 0;
  while (source(index, point, extent)) {
    visit(point, extent);
    extent = {};
  }
}

/// Widens a range by many values at once; those that are not finite do not count.
class TExtremes {
 public:
  void Add(double value) {
    if (!std::isfinite(value)) return;
    min_ = std::min(min_, value);
    max_ = std::max(max_, value);
    if (value > 0.0) leastPositive_ = std::min(leastPositive_, value);
  }
  /// Empties the range and gives it the bounds.
  void Fill(TRange& range) const {
    range.SetReset(true);
    if (min_ > max_) return;
    range.GetBounds(min_);
    range.GetBounds(max_);
    range.GetBounds(std::min(leastPositive_, max_));
  }

 private:
  double min_ = std::numeric_limits<double>::infinity();
  double max_ = -std::numeric_limits<double>::infinity();
  double leastPositive_ = std::numeric_limits<double>::infinity();
};

/// The range of one coordinate of a series' points. Bars widen it to their other end; those of the
/// style `standing` stand on the value 0 of it, unless it is a time.
template <double TCoordinate::*kPart>
void PullRange(const TSeries& series, TSeriesStyle::TPointStyle standing, bool isTime,
               TRange& range) {
  if (!series.DataSource) return;
  TExtremes bounds;
  if (series.GetStyle()->IsBar()) {
    const bool hasFoot = series.GetStyle()->GetPointStyle() == standing && !isTime;
    PullBars(series.DataSource, [&](const TCoordinate& point, const TCoordinate& extent) {
      bounds.Add(point.*kPart);
      bounds.Add(point.*kPart - extent.*kPart);
      if (hasFoot) bounds.Add(0.0);
    });
  } else {
    PullSeries(series, [&](std::span<const TCoordinate> points) {
      for (const TCoordinate& point : points) bounds.Add(point.*kPart);
    });
  }
  bounds.Fill(range);
}

template <double TCoordinate::*kPart>
void TakeRange(const std::vector<TCoordinate>& points, TRange& range) {
  TExtremes bounds;
  for (const TCoordinate& point : points) bounds.Add(point.*kPart);
  bounds.Fill(range);
}

}  // namespace

TSeries::TSeries(QObject* owner) : TCustomDataSeries(std::make_unique<TSeriesStyle>(this), owner) {}

void TSeries::Draw(QPainter* painter) {
  if (!Panel() || !DataSource || GetStyle()->IsInvisible()) return;
  TCurvePainter curve(*painter, *GetStyle(), Panel()->PlotArea(DeviceGrid(*painter)));
  if (GetStyle()->IsBar()) {
    PullBars(DataSource, [&](const TCoordinate& point, const TCoordinate& extent) {
      curve.AddBar(point, extent);
    });
  } else {
    PullSeries(*this, [&](std::span<const TCoordinate> points) { curve.Add(points); });
  }
}

void TSeries::UpdateRangeX() {
  const bool isTime = Panel() && Panel()->ShowsTimeX();
  PullRange<&TCoordinate::X>(*this, TSeriesStyle::psYBar, isTime, rangeX_);
}

void TSeries::UpdateRangeY() {
  const bool isTime = Panel() && Panel()->ShowsTimeY();
  PullRange<&TCoordinate::Y>(*this, TSeriesStyle::psXBar, isTime, rangeY_);
}

TArraySeries::TArraySeries(int pointCount, QObject* owner)
    : TCustomDataSeries(std::make_unique<TSeriesStyle>(this), owner),
      points_(static_cast<std::size_t>(std::clamp(pointCount, 0, kMaxPoints))) {}

TCoordinate TArraySeries::GetPoint(int index) const {
  if (index < 0 || index >= PointCount()) return {};
  return points_[static_cast<std::size_t>(index)];
}

void TArraySeries::SetPoint(int index, const TCoordinate& point) {
  if (index >= 0 && index < PointCount()) points_[static_cast<std::size_t>(index)] = point;
}

void TArraySeries::Draw(QPainter* painter) {
  if (!Panel() || GetStyle()->IsInvisible()) return;
  TCurvePainter curve(*painter, *GetStyle(), Panel()->PlotArea(DeviceGrid(*painter)));
  curve.Add(points_);
}

void TArraySeries::UpdateRangeX() { TakeRange<&TCoordinate::X>(points_, rangeX_); }
void TArraySeries::UpdateRangeY() { TakeRange<&TCoordinate::Y>(points_, rangeY_); }

void TArraySeries::WriteSeries(QJsonObject& record) const {
  TCustomDataSeries::WriteSeries(record);
  QJsonArray points;
  for (const TCoordinate& point : points_) points.append(QJsonArray{point.X, point.Y});
  record[QStringLiteral("Points")] = points;
}

bool TArraySeries::ReadSeries(const QJsonObject& record, QString* error) {
  const auto refuse = [&](const QString& reason) {
    if (error) *error = reason;
    return false;
  };
  QJsonObject published = record;
  const QJsonValue value = published.take(QStringLiteral("Points"));
  const QJsonArray array = value.toArray();
  if (!value.isArray() || array.size() > kMaxPoints) {
    return refuse(
        QStringLiteral("TArraySeries.Points is no list of at most %1 points").arg(kMaxPoints));
  }
  std::vector<TCoordinate> points;
  points.reserve(static_cast<std::size_t>(array.size()));
  const auto isNumber = [](const QJsonValue& v) { return v.isDouble() || v.isNull(); };
  for (const auto& item : array) {
    const QJsonArray pair = item.toArray();
    if (pair.size() != 2 || !isNumber(pair[0]) || !isNumber(pair[1])) {
      return refuse(
          QStringLiteral("TArraySeries.Points[%1] is no pair of numbers").arg(points.size()));
    }
    constexpr double kGap = std::numeric_limits<double>::quiet_NaN();
    points.push_back({pair[0].toDouble(kGap), pair[1].toDouble(kGap)});
  }
  if (!TCustomDataSeries::ReadSeries(published, error)) return false;
  points_ = std::move(points);
  return true;
}

void TArraySeries::AssignTo(TPersistent* destination) const {
  auto* series = qobject_cast<TArraySeries*>(destination);
  if (series && series != this) series->points_ = points_;
  TCustomDataSeries::AssignTo(destination);
}

bool TArraySeries::SameAs(const TPersistent* other) const {
  const auto* series = qobject_cast<const TArraySeries*>(other);
  return series && TCustomDataSeries::SameAs(other) && points_ == series->points_;
}
