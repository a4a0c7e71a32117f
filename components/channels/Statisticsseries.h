#pragma once

#include "components/channels/Statistics.h"
#include "components/graphing/Graphseries.h"

class TCustomGraphLink;

/// Style of a series of statistics.
class TStatSeriesStyle : public TBasicSeriesStyle {
  Q_OBJECT

 public:
  /// The axis along which the statistics lie; their position lies along the other.
  enum TStatBarStyle : int { bsXBar, bsYBar };
  Q_ENUM(TStatBarStyle)

 private:
  Q_PROPERTY(TColor LineColor READ GetLineColor WRITE SetLineColor)
  Q_PROPERTY(TColor FillColor READ GetFillColor WRITE SetFillColor)
  Q_PROPERTY(TPenStyle LineStyle READ GetLineStyle WRITE SetLineStyle)
  Q_PROPERTY(int LineWeight READ GetLineWeight WRITE SetLineWeight)
  Q_PROPERTY(TStatBarStyle BarStyle READ GetBarStyle WRITE SetBarStyle)

 public:
  using TBasicSeriesStyle::TBasicSeriesStyle;

  TStatBarStyle GetBarStyle() const { return barStyle_; }
  void SetBarStyle(TStatBarStyle style);

 private:
  TStatBarStyle barStyle_ = bsXBar;
};

/// Draws snapshots of statistics: per record a thin bar from minimum to maximum, a wider one over a
/// standard deviation to both sides of the mean, and a mark at the mean. What is not finite is left
/// out.
class TStatisticsSeries : public TCustomDataSeries {
  Q_OBJECT

 public:
  enum TStatOption : int { soShowMean = 1, soShowStDev = 2, soShowMinMax = 4 };
  Q_DECLARE_FLAGS(TStatOptions, TStatOption)
  Q_FLAG(TStatOptions)

 private:
  Q_PROPERTY(TStatSeriesStyle* Style READ GetStyle WRITE SetStyle)
  Q_PROPERTY(TStatOptions Options READ GetOptions WRITE SetOptions)

 public:
  /// Half the widths of the parts, logical pixels.
  static constexpr int kMinMaxReach = 3;
  static constexpr int kStDevReach = 6;
  static constexpr int kMeanReach = 9;

  explicit TStatisticsSeries(QObject* owner = nullptr);

  /// The records; a series without a source has none.
  TProvideStatistics Statistics;
  void TakeSources(const TCustomGraphSeries& other) override;

  TStatSeriesStyle* GetStyle() const { return static_cast<TStatSeriesStyle*>(BasicStyle()); }
  /// Copies the style and redraws once; null changes nothing.
  void SetStyle(const TStatSeriesStyle* style);
  TStatOptions GetOptions() const { return options_; }
  void SetOptions(TStatOptions options);

  void Draw(QPainter* painter) override;
  void UpdateRangeX() override;
  void UpdateRangeY() override;

 private:
  template <class TVisit>
  void ForEachRecord(TVisit visit) const;
  void DrawPoint(QPainter& painter, const TStatisticsData& record) const;
  QRect Bar(double pos, double from, double to, int reach) const;
  void UpdateValueRange(TRange& range) const;
  void UpdatePosRange(TRange& range) const;

  TStatOptions options_{soShowMean | soShowStDev | soShowMinMax};
};

Q_DECLARE_OPERATORS_FOR_FLAGS(TStatisticsSeries::TStatOptions)

/// Gives a link, which owns it, a series of statistics in black and yellow. The statistics are not
/// owned: whoever destroys them first takes the source away from the series.
TStatisticsSeries* AddStatisticsSeries(TCustomGraphLink& link, const TStatistics& statistics,
                                       TStatSeriesStyle::TStatBarStyle barStyle);
