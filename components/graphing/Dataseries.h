#pragma once

#include <vector>

#include "components/graphing/Graphseries.h"

/// A curve whose points are pulled from its data source.
///
/// A point that is not finite makes a gap in the line. Every point gets its marker or bar; one
/// without either that has no neighbours is drawn as a dot.
class TSeries : public TCustomDataSeries {
  Q_OBJECT
  Q_PROPERTY(TSeriesStyle* Style READ GetStyle WRITE SetStyle)

 public:
  explicit TSeries(QObject* owner = nullptr);

  TSeriesStyle* GetStyle() const { return static_cast<TSeriesStyle*>(BasicStyle()); }
  /// Copies the style; null changes nothing.
  void SetStyle(const TSeriesStyle* style) { GetStyle()->Assign(style); }

  void Draw(QPainter* painter) override;
  void UpdateRangeX() override;
  void UpdateRangeY() override;
};

/// A curve of a fixed number of points that it holds itself.
class TArraySeries : public TCustomDataSeries {
  Q_OBJECT
  Q_PROPERTY(TSeriesStyle* Style READ GetStyle WRITE SetStyle)

 public:
  static constexpr int kMaxPoints = 1 << 24;

  /// The points begin as zeros; a count outside 0 to kMaxPoints is brought to the nearer bound.
  explicit TArraySeries(int pointCount = 0, QObject* owner = nullptr);

  TSeriesStyle* GetStyle() const { return static_cast<TSeriesStyle*>(BasicStyle()); }
  void SetStyle(const TSeriesStyle* style) { GetStyle()->Assign(style); }

  int PointCount() const { return static_cast<int>(points_.size()); }
  /// Zero outside the array.
  TCoordinate GetPoint(int index) const;
  /// Ignored outside the array. Draws nothing anew: call Redraw after the last one.
  void SetPoint(int index, const TCoordinate& point);
  void Redraw() { Changed(); }

  void Draw(QPainter* painter) override;
  void UpdateRangeX() override;
  void UpdateRangeY() override;

  void WriteSeries(QJsonObject& record) const override;
  [[nodiscard]] bool ReadSeries(const QJsonObject& record, QString* error) override;
  void AssignTo(TPersistent* destination) const override;
  bool SameAs(const TPersistent* other) const override;

 private:
  std::vector<TCoordinate> points_;
};
