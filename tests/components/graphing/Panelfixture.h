#pragma once

#include "components/graphing/Axis.h"
#include "components/graphing/Gseries.h"
#include "tests/support/Testing.h"

/// Shows a range that its user has chosen.
inline void FixRange(TAxis& axis, double min, double max) {
  axis.SetAutoMin(false);
  axis.SetAutoMax(false);
  axis.SetMinMax(min, max);
}

/// A data panel with two axes from 0 to 10 (0.01 to 100 if logarithmic), in a picture of its own.
/// Its rectangle begins at (20, 10) and is 101 x 201 pixels: 10 pixels a unit to the right, 20
/// upwards; 25 and 50 a decade.
struct TPanelFixture {
  static constexpr QRect kRect{20, 10, 101, 201};

  explicit TPanelFixture(bool isLog = false) {
    SetUp(horizontal, TAxis::aoHorizontal, TAxis::alBottom, isLog);
    SetUp(vertical, TAxis::aoVertical, TAxis::alLeft, isLog);
    panel.SetOrigin(kRect);
  }

  static void SetUp(TAxis& axis, TAxis::TAxisOrientation orientation, TAxis::TAxisAlign align,
                    bool isLog) {
    axis.SetOrientation(orientation);
    axis.SetAlign(align);
    axis.SetFixedOrigin(true);
    axis.OnQueryPlotRect = [] { return kRect; };
    if (isLog) axis.SetScale(TAxis::asLog);
    FixRange(axis, isLog ? 0.01 : 0.0, isLog ? 100.0 : 10.0);
    axis.AdjustOrigin();
  }

  /// The picture of the panel on white.
  QImage Picture() {
    return Painted({150, 230}, [this](QPainter& painter) { panel.Draw(&painter); });
  }

  /// Adds a series of these points, without markers unless told otherwise.
  TSeries* AddCurve(std::vector<TCoordinate> points, TCoordinate size = {},
                    TSeriesStyle::TPointStyle style = TSeriesStyle::psNone) {
    TSeries* series = panel.AddSeries(std::make_unique<TSeries>());
    series->GetStyle()->SetPointStyle(style);
    series->DataSource = [points = std::move(points), size](int& index, TCoordinate& point,
                                                            TCoordinate& extent) {
      if (index >= static_cast<int>(points.size())) return false;
      point = points[static_cast<std::size_t>(index++)];
      extent = size;
      return true;
    };
    return series;
  }

  TSliderSeries* AddSlider(TCoordinate position) {
    auto* slider = panel.AddSeries(std::make_unique<TSliderSeries>());
    slider->SetPosition(position);
    return slider;
  }
  void UpdateRanges() {
    panel.UpdateRangeX();
    panel.UpdateRangeY();
  }

  TAxis horizontal;
  TAxis vertical;
  TDataPanel panel{&horizontal, &vertical};
};

/// Has an axis ask for a range, as its graph's data would give it.
inline void GiveRange(TAxis& axis, double min, double max) {
  axis.OnQueryRange = [=](double& low, double& high) {
    low = min;
    high = max;
  };
}

/// The values of a selection: left, upper, right, lower; none if nothing is selected.
inline std::vector<double> SelectionOf(const TDataPanel& panel) {
  std::vector<double> values(4, -1.0);
  if (panel.SelectionValues(values[0], values[1], values[2], values[3])) return values;
  EXPECT_EQ(values, std::vector<double>(4, -1.0)) << "nothing is told";
  return {};
}

using TMinMax = std::pair<double, double>;

/// What a range or an axis publishes, and what an axis shows.
template <class T>
TMinMax BoundsOf(const T& range) {
  return {range.GetMin(), range.GetMax()};
}
inline TMinMax DrawnBounds(const TAxis& axis) { return {axis.WorkingMin(), axis.WorkingMax()}; }
