#include "examples/gallery/Exhibits.h"

#include <cmath>
#include <complex>
#include <memory>
#include <numbers>
#include <utility>

#include "components/graphing/Dataseries.h"
#include "components/graphing/Sliderseries.h"
#include "examples/Graphlook.h"
#include "model/Datetime.h"

namespace {

using std::numbers::pi;

constexpr double kSecond = 1.0 / kSecondsPerDay;
constexpr double kDay = 45000.0;  // 15 March 2023

using TPoints = std::vector<TCoordinate>;

/// `count` points of y(t), t from `from` to `to` in equal steps.
template <typename F>
TPoints Sampled(int count, double from, double to, F y) {
  TPoints points;
  for (int i = 0; i < count; ++i) {
    const double t = from + (to - from) * i / (count - 1);
    points.push_back({t, y(t)});
  }
  return points;
}

/// The same with steps of equal ratio.
template <typename F>
TPoints SampledInDecades(int count, double from, double to, F y) {
  TPoints points;
  for (int i = 0; i < count; ++i) {
    const double t = from * std::pow(to / from, static_cast<double>(i) / (count - 1));
    points.push_back({t, y(t)});
  }
  return points;
}

/// A thin line through the points; bars have the size `extent`.
TSeries& AddLine(TKorvalGraph& graph, TPoints points, TColor color, TCoordinate extent = {}) {
  auto series = std::make_unique<TSeries>();
  series->GetStyle()->SetLineColor(color);
  series->GetStyle()->SetPointColor(color);
  series->GetStyle()->SetPointStyle(TSeriesStyle::psNone);
  series->DataSource = [data = std::move(points), extent](int& index, TCoordinate& point,
                                                          TCoordinate& size) {
    if (index >= static_cast<int>(data.size())) return false;
    point = data[static_cast<std::size_t>(index++)];
    size = extent;
    return true;
  };
  return *graph.GetDataPanel()->AddSeries(std::move(series));
}

void SetTitles(TKorvalGraph& graph, const char* x, const char* y) {
  graph.GetHorizontalAx()->GetTitle()->SetCaption(QString::fromUtf8(x));
  graph.GetVerticalAx()->GetTitle()->SetCaption(QString::fromUtf8(y));
}

/// Receptance of a structure with two modes at 12 and 47 Hz, in m/N.
std::complex<double> Receptance(double frequency) {
  const auto mode = [frequency](double natural, double damping, double mass) {
    const double w = 2.0 * pi * frequency;
    const double n = 2.0 * pi * natural;
    return 1.0 / (mass * std::complex<double>(n * n - w * w, 2.0 * damping * n * w));
  };
  return mode(12.0, 0.02, 80.0) + mode(47.0, 0.01, 25.0);
}

void FillLinear(TKorvalGraph& graph) {
  SetTitles(graph, "Time [s]", "Displacement [mm]");
  const auto decay = [](double t) { return 4.0 * std::exp(-1.5 * t); };
  AddLine(graph, Sampled(400, 0.0, 2.5, [&](double t) { return decay(t) * std::cos(22.0 * t); }),
          kBlue);
  for (double sign : {1.0, -1.0}) {
    AddLine(graph, Sampled(60, 0.0, 2.5, [&](double t) { return sign * decay(t); }), kRed)
        .GetStyle()
        ->SetLineStyle(TSeriesStyle::psDash);
  }
}

void FillLogLog(TKorvalGraph& graph) {
  SetTitles(graph, "Frequency [Hz]", "Receptance [m/N]");
  graph.GetHorizontalAx()->SetScale(TAxis::asLog);
  graph.GetVerticalAx()->SetScale(TAxis::asLog);
  AddLine(graph,
          SampledInDecades(600, 1.0, 1000.0, [](double f) { return std::abs(Receptance(f)); }),
          kBlue);
}

void FillLogX(TKorvalGraph& graph) {
  SetTitles(graph, "Frequency [Hz]", "Phase [deg]");
  graph.GetHorizontalAx()->SetScale(TAxis::asLog);
  AddLine(graph,
          SampledInDecades(600, 1.0, 1000.0,
                           [](double f) { return std::arg(Receptance(f)) * 180.0 / pi; }),
          kGreen);
}

void FillMilliseconds(TKorvalGraph& graph) {
  SetTitles(graph, "", "Force [kN]");
  graph.GetHorizontalAx()->SetScale(TAxis::asTime);
  AddLine(graph,
          Sampled(101, kDay + 0.5, kDay + 0.5 + 0.01 * kSecond,
                  [](double t) {
                    const double ms = (t - kDay - 0.5) / (0.001 * kSecond);
                    return ms < 2.0 || ms > 7.0 ? 0.0 : 8.4 * std::sin(pi * (ms - 2.0) / 5.0);
                  }),
          kRed)
      .GetStyle()
      ->SetPointStyle(TSeriesStyle::psCircle);
}

void FillSeconds(TKorvalGraph& graph) {
  SetTitles(graph, "", "Speed [rpm]");
  graph.GetHorizontalAx()->SetScale(TAxis::asTime);
  AddLine(graph,
          Sampled(46, kDay + 0.4, kDay + 0.4 + 45.0 * kSecond,
                  [](double t) {
                    const double s = (t - kDay - 0.4) / kSecond;
                    return 3000.0 / (1.0 + std::exp(-(s - 22.0) / 5.0));
                  }),
          kBlue)
      .GetStyle()
      ->SetLineWeight(2);
}

void FillHours(TKorvalGraph& graph) {
  SetTitles(graph, "", "Temperature [\u00b0C]");
  graph.GetHorizontalAx()->SetScale(TAxis::asTime);
  AddLine(graph,
          Sampled(97, kDay + 0.25, kDay + 0.25 + 8.0 / 24.0,
                  [](double t) {
                    const double h = (t - kDay - 0.25) * 24.0;
                    return 71.0 - 50.0 * std::exp(-h / 1.7) + 0.8 * std::sin(9.0 * h);
                  }),
          kRed);
}

void FillDays(TKorvalGraph& graph) {
  SetTitles(graph, "", "Velocity RMS [mm/s]");
  graph.GetHorizontalAx()->SetScale(TAxis::asTime);
  AddLine(graph,
          Sampled(241, kDay, kDay + 20.0,
                  [](double t) {
                    const double day = t - kDay;
                    return 1.8 + 0.05 * day + 0.6 * std::sin(2.0 * pi * day) +
                           0.2 * std::sin(7.1 * day);
                  }),
          kGreen);
}

void FillDecades(TKorvalGraph& graph) {
  SetTitles(graph, "", "First bending mode [Hz]");
  graph.GetHorizontalAx()->SetScale(TAxis::asTime);
  AddLine(graph,
          Sampled(31, 31000.0, 31000.0 + 30.0 * 365.0,
                  [](double t) {
                    const double year = (t - 31000.0) / 365.0;
                    return 2.41 - 0.004 * year - (year > 19.0 ? 0.03 : 0.0);
                  }),
          kBlue)
      .GetStyle()
      ->SetPointStyle(TSeriesStyle::psRectangle);
}

void FillUprightBars(TKorvalGraph& graph) {
  SetTitles(graph, "Acceleration [m/s\u00b2]", "Occurrences");
  graph.GetVerticalAx()->SetAutoMin(false);
  TPoints bins;
  for (int i = -9; i <= 10; ++i)
    bins.push_back({0.5 * i, std::round(240.0 * std::exp(-0.03 * i * i))});
  TSeriesStyle& style = *AddLine(graph, bins, kBlue, {0.5, 0.0}).GetStyle();
  style.SetLineStyle(TSeriesStyle::psClear);
  style.SetPointStyle(TSeriesStyle::psXBar);
  style.SetFillColor(kLightBlue);
}

void FillLyingBars(TKorvalGraph& graph) {
  SetTitles(graph, "Modal mass [%]", "Mode");
  graph.GetHorizontalAx()->SetAutoMin(false);
  const TPoints modes = {{61.0, 1.0}, {18.0, 2.0}, {9.5, 3.0}, {4.0, 4.0}, {2.2, 5.0}, {1.1, 6.0}};
  TSeriesStyle& style = *AddLine(graph, modes, kGreen, {0.0, 0.8}).GetStyle();
  style.SetLineStyle(TSeriesStyle::psClear);
  style.SetPointStyle(TSeriesStyle::psYBar);
  style.SetFillColor(TColor::FromRgb(170, 220, 185));
}

void FillSliders(TKorvalGraph& graph) {
  SetTitles(graph, "Frequency [Hz]", "Amplitude [g]");
  const auto peak = [](double f) {
    return 0.05 + 0.9 / (1.0 + std::pow((f - 31.0) / 2.0, 2)) +
           0.4 / (1.0 + std::pow((f - 64.0) / 3.0, 2));
  };
  AddLine(graph, Sampled(300, 0.0, 100.0, peak), kBlue);
  for (double frequency : {31.0, 64.0}) {
    auto slider = std::make_unique<TSliderSeries>();
    slider->SetPosition({frequency, peak(frequency)});
    slider->SetShowGridX(true);
    slider->SetShowGridY(frequency < 50.0);
    graph.GetDataPanel()->AddSeries(std::move(slider));
  }
}

void FillSelection(TKorvalGraph& graph) {
  SetTitles(graph, "Time [s]", "Acceleration [g]");
  AddLine(graph,
          Sampled(800, 0.0, 10.0,
                  [](double t) {
                    return std::exp(-std::pow((t - 6.0) / 0.8, 2)) * std::sin(30.0 * t) +
                           0.1 * std::sin(7.0 * t);
                  }),
          kGreen);
  TDataPanel& panel = *graph.GetDataPanel();
  panel.SetAllowSelection(true);
  graph.UpdateGraph();
  const QRect plot = graph.PlotRect();
  panel.StartSelection(Qt::NoModifier, plot.left() + plot.width() / 2, plot.top() + 12);
  panel.MoveSelection(Qt::NoModifier, plot.left() + plot.width() * 7 / 10, plot.bottom() - 12);
  panel.EndSelection(Qt::NoModifier, plot.left() + plot.width() * 7 / 10, plot.bottom() - 12);
}

void FillStyles(TKorvalGraph& graph) {
  SetTitles(graph, "Point", "Style");
  const std::pair<TSeriesStyle::TPenStyle, TSeriesStyle::TPointStyle> styles[] = {
      {TSeriesStyle::psSolid, TSeriesStyle::psCircle},
      {TSeriesStyle::psDash, TSeriesStyle::psRectangle},
      {TSeriesStyle::psDot, TSeriesStyle::psCross},
      {TSeriesStyle::psDashDot, TSeriesStyle::psNone},
      {TSeriesStyle::psDashDotDot, TSeriesStyle::psNone},
      {TSeriesStyle::psClear, TSeriesStyle::psCircle},
  };
  int row = 0;
  for (const auto& [line, marker] : styles) {
    ++row;
    TSeriesStyle& style =
        *AddLine(graph, Sampled(9, 0.0, 8.0, [&](double x) { return row + 0.3 * std::sin(x); }),
                 kBlue)
             .GetStyle();
    style.SetLineStyle(line);
    style.SetPointStyle(marker);
    style.SetPointColor(TColor::Black());
  }
}

void FillFramed(TKorvalGraph& graph) {
  SetTitles(graph, "X [\u00b5m]", "Y [\u00b5m]");
  graph.GetHorizontalAx()->SetShape(TAxis::shFrame);
  graph.GetVerticalAx()->GetMajorTick()->SetPos(TTick::tpInside);
  graph.GetVerticalAx()->GetMinorTick()->SetPos(TTick::tpInside);
  graph.GetHorizontalAx()->GetMajorTick()->SetPos(TTick::tpCross);
  graph.GetHorizontalAx()->GetMinorTick()->SetPos(TTick::tpNone);
  constexpr int kPoints = 241;
  auto orbit = std::make_unique<TArraySeries>(kPoints);
  for (int i = 0; i < kPoints; ++i) {
    const double angle = 2.0 * pi * i / (kPoints - 1);
    orbit->SetPoint(i, {40.0 * std::cos(angle) + 12.0 * std::cos(2.0 * angle + 0.4),
                        25.0 * std::sin(angle + 0.5) + 12.0 * std::sin(2.0 * angle + 0.4)});
  }
  orbit->GetStyle()->SetPointStyle(TSeriesStyle::psNone);
  orbit->GetStyle()->SetLineColor(kRed);
  graph.GetDataPanel()->AddSeries(std::move(orbit));
}

void FillRightAndTop(TKorvalGraph& graph) {
  SetTitles(graph, "Span position [m]", "Deflection [mm]");
  graph.GetHorizontalAx()->SetAlign(TAxis::alTop);
  graph.GetVerticalAx()->SetAlign(TAxis::alRight);
  graph.SetBorderStyle(TBevel::bvLowered);
  graph.GetVerticalAx()->GetLabel()->GetNumFormat()->SetFormat(TNumberFormat::ffFixed);
  graph.GetVerticalAx()->GetLabel()->GetNumFormat()->SetDigits(1);
  AddLine(graph, Sampled(50, 0.0, 24.0, [](double x) { return -3.6 * std::sin(pi * x / 24.0); }),
          kBlue)
      .GetStyle()
      ->SetLineWeight(3);
}

void FillNothing(TKorvalGraph& graph) {
  SetTitles(graph, "X-axis", "Y-axis");
  graph.SetBorderStyle(TBevel::bvNone);
  graph.SetBorderColor(TColor::FromRgb(128, 128, 128));
}

}  // namespace

const std::vector<TExhibit>& Exhibits() {
  static const std::vector<TExhibit> exhibits = {
      {"Linear", FillLinear},
      {"Logarithmic both ways", FillLogLog},
      {"Logarithmic across", FillLogX},
      {"Bars upright", FillUprightBars},
      {"Milliseconds", FillMilliseconds},
      {"Seconds", FillSeconds},
      {"Hours", FillHours},
      {"Bars lying", FillLyingBars},
      {"Days", FillDays},
      {"Decades", FillDecades},
      {"Sliders", FillSliders},
      {"Selection", FillSelection},
      {"Lines and markers", FillStyles},
      {"Framed, ticks inside", FillFramed},
      {"Axes right and top", FillRightAndTop},
      {"Empty", FillNothing},
  };
  return exhibits;
}
