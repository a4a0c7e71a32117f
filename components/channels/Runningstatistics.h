#pragma once

#include "components/channels/Statistics.h"
#include "components/channels/Variable.h"

/// A variable whose value is a figure, such as the mean, of all values that it was given. Each of
/// them passes the present figure on. Values that are not finite are left out.
class TRunningStatistics : public TCustomVariable {
  Q_OBJECT

 public:
  enum TFigure : int {
    fgCount,
    fgMean,
    fgStDev,  ///< of the sample (n - 1)
    fgRms,    ///< root of the mean square
    fgMax,
    fgMin
  };
  Q_ENUM(TFigure)

 private:
  Q_PROPERTY(bool ShowValue READ GetShowValue WRITE SetShowValue)
  Q_PROPERTY(bool ShowName READ GetShowName WRITE SetShowName)
  Q_PROPERTY(TNumberFormat* ValueFormat READ GetValueFormat WRITE SetFormat)
  Q_PROPERTY(TFigure Figure READ GetFigure WRITE SetFigure)
  Q_PROPERTY(int NotifyInterval READ GetInterval WRITE SetInterval)
  Q_PROPERTY(TClick* Reset READ GetReset)
  Q_PROPERTY(TStatistics* Statistics READ GetStatistics WRITE SetStatistics)
  /// Of the values; forms keep them with the statistics.
  Q_PROPERTY(double Max READ GetMax WRITE SetMax DESIGNABLE false)
  Q_PROPERTY(double Min READ GetMin WRITE SetMin DESIGNABLE false)
  /// Made of the others, and so no form keeps it.
  Q_PROPERTY(QString Caption READ GetCaption WRITE SetCaption STORED false DESIGNABLE false)

 public:
  explicit TRunningStatistics(QWidget* parent = nullptr);

  /// Initially the mean.
  TFigure GetFigure() const { return figure_; }
  void SetFigure(TFigure figure);
  /// The figure of the values so far; 0 of none.
  double GetFigureValue() const;

  /// Counts, and sums; the extremes are not kept in it.
  TStatistics* GetStatistics() { return &statistics_; }
  /// Copies the sums; null changes nothing.
  void SetStatistics(const TStatistics* statistics) { statistics_.Assign(statistics); }
  double GetMax() const { return max_; }
  double GetMin() const { return min_; }
  void SetMax(double max);
  void SetMin(double min);

  /// Takes a value into the statistics, and then takes the figure.
  void SetValue(double value) override;

  TClick* GetReset() { return &reset_; }
  void Loaded() override;

 public slots:
  /// What the button does: begins anew.
  void ResetStatistics(QObject* sender = nullptr);

 private:
  TStatistics statistics_{this};
  double max_ = 0.0;
  double min_ = 0.0;
  TFigure figure_ = fgMean;
  TClick reset_{this};
};
