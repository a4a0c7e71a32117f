#include "examples/values/Valuespanel.h"

#include "components/channels/Datachannel.h"
#include "components/channels/Variable.h"
#include "components/graphing/Basichistogram.h"
#include "components/graphing/Graph.h"
#include "components/sources/Fourier.h"
#include "components/sources/Macro.h"
#include "tests/support/Testing.h"

namespace {

/// One row of the record, in volts.
struct TRow {
  double acceleration, pressure;
};

const QString& RecordName() {
  static const QString name = SourceFile("examples/values/pump.txt");
  return name;
}

const std::vector<TRow>& Record() {
  static const std::vector<TRow> rows = [] {
    std::vector<TRow> read;
    for (const QByteArray& line : Contents(RecordName()).split('\n')) {
      const QByteArrayList columns = line.simplified().split(' ');
      if (columns.size() < 2 || columns[0] == "#") continue;
      read.push_back({columns[0].toDouble(), columns[1].toDouble()});
    }
    return read;
  }();
  return rows;
}

// The sensors: 0.1 V per g, kept within 15 m/s2; 2 bar per volt above 1 V, others dropped.
double Acceleration(const TRow& row) { return std::clamp(98.0665 * row.acceleration, -15.0, 15.0); }
double Pressure(const TRow& row) { return 2.0 * row.pressure - 2.0; }
bool HasPressure(const TRow& row) { return row.pressure >= 1.0; }

/// The panel on the real record; everything that its two channels tell, in order.
class ValuesPanel : public testing::Test {
 protected:
  using TTold = std::pair<char, double>;  // of the channel 'a' or 'p'

  ValuesPanel() {
    Find<TDataChannel>("acceleration").AddLink(&accelerations, false);
    Find<TDataChannel>("pressure").AddLink(&pressures, false);
    Find<TMacro>("excess").AddLink(&excesses, false);
  }

  template <class T>
  T& Find(const char* name) {
    return Child<T>(*panel, name);
  }
  void Push(const char* button) { QTest::mouseClick(&Find<QPushButton>(button), Qt::LeftButton); }
  QString News() { return Find<QLabel>("status").text(); }

  [[nodiscard]] bool ReadToEnd() {
    const auto isRead = [this] {
      Tick();
      return !panel->IsReading();
    };
    return QTest::qWaitFor(isRead, 30'000);
  }
  [[nodiscard]] bool ReadAll() {
    panel->SetSpeed(TValuesPanel::spUnlimited);
    panel->Start();
    return ReadToEnd();
  }

  /// The channels have told of every row. Not EXPECT_EQ: it would print thousands of values.
  void ExpectAllTold() {
    std::vector<TTold> expected;
    for (const TRow& row : Record()) {
      expected.push_back({'a', Acceleration(row)});
      if (HasPressure(row)) expected.push_back({'p', Pressure(row)});
    }
    EXPECT_EQ(told.size(), expected.size());
    const auto [a, b] = std::ranges::mismatch(told, expected);
    EXPECT_TRUE(a == told.end() && b == expected.end()) << "from value " << a - told.begin();
  }

  std::vector<TTold> told;
  std::vector<double> macroValues;
  TValueLink accelerations{[this](double value) { told.push_back({'a', value}); }};
  TValueLink pressures{[this](double value) { told.push_back({'p', value}); }};
  TValueLink excesses{[this](double value) { macroValues.push_back(value); }};
  std::unique_ptr<TValuesPanel> panel = std::make_unique<TValuesPanel>(RecordName());
};

TEST_F(ValuesPanel, DealsTheColumnsOfTheFileToItsChannelsInTurnAndShowsThem) {
  const std::pair<const char*, QColor> graphs[] = {{"accelerationGraph", QColor(31, 90, 180)},
                                                   {"excessesGraph", QColor(200, 50, 40)},
                                                   {"pressureGraph", QColor(30, 130, 70)},
                                                   {"distributionGraph", QColor(150, 190, 235)},
                                                   {"spectrumGraph", QColor(31, 90, 180)}};
  panel->grab();
  const auto lit = [&](const auto& graph) {
    return CountPixels(Find<TKorvalGraph>(graph.first).Picture(), graph.second);
  };
  std::vector<int> before;
  for (const auto& graph : graphs) before.push_back(lit(graph));
  EXPECT_EQ(std::count(before.begin(), before.end() - 1, 0), 4) << "nothing before a value";

  ASSERT_EQ(Record().size(), 8192u);
  panel->SetSpeed(TValuesPanel::spUnlimited);
  Push("toggle");
  EXPECT_EQ(News(), "Reading");
  ASSERT_TRUE(ReadToEnd());
  EXPECT_EQ(News(), "End of the file");
  EXPECT_EQ(std::ranges::count(told, 'p', &TTold::first), 8192 - 16) << "16 dropouts";
  EXPECT_EQ(std::ranges::count(told, TTold{'a', 15.0}), 8) << "a knock a second is cut off";
  ExpectAllTold();

  EXPECT_EQ(Find<TDataChannel>("acceleration").GetPointCount(), 1000);
  EXPECT_EQ(Find<QLabel>("position").text(), "139.4 of 139.4 kB");
  EXPECT_EQ(Find<QSlider>("place").value(), Find<QSlider>("place").maximum());
  QCoreApplication::processEvents();
  for (std::size_t i = 0; i < std::size(graphs); ++i) {
    EXPECT_GT(lit(graphs[i]), before[i] + 100) << graphs[i].first;
  }
}

TEST_F(ValuesPanel, MakesExcessSpectrumAndDistributionOfTheAcceleration) {
  ASSERT_TRUE(ReadAll());
  ASSERT_EQ(macroValues.size(), Record().size());
  for (std::size_t i = 0; i < Record().size(); ++i) {
    const double beyond = std::abs(Acceleration(Record()[i])) - 8.0;
    ASSERT_EQ(macroValues[i], beyond > 0.0 ? beyond : 0.0) << i;
  }
  EXPECT_EQ(Find<TDataChannel>("excesses").GetValue(), macroValues.back());

  // A sine of amplitude A has the power (A / 2)^2; noise and knocks add a little. Bins are 1 Hz.
  TFFTChannel& spectrum = Find<TFFTChannel>("spectrum");
  EXPECT_EQ(spectrum.GetCumulCount(), 8);
  const auto power = [&](int hertz) {
    return spectrum.GetData()->Row(hertz)[TFFTChannel::fftPower] / spectrum.GetCumulCount();
  };
  EXPECT_NEAR(power(25), 9.0, 0.3);
  EXPECT_NEAR(power(50), 1.5625, 0.1);
  EXPECT_NEAR(power(175), 0.5625, 0.05);
  for (int hertz = 1; hertz < 512; ++hertz) {
    if (hertz != 25 && hertz != 50 && hertz != 175) {
      EXPECT_LT(power(hertz), 0.05) << hertz << " Hz";
    }
  }

  TOccurrenceHistogram& distribution = Find<TOccurrenceHistogram>("distribution");
  EXPECT_EQ(distribution.GetBins()->GetCycleCount(), 8192.0);
  EXPECT_EQ(distribution.GetStatistics()->GetCount(), 8192.0);
  // The sines have the variance (36 + 6.25 + 2.25) / 2, and the knocks about 1.
  EXPECT_NEAR(distribution.GetStatistics()->GetStDev(), std::sqrt(23.25), 0.2);
}

TEST_F(ValuesPanel, TheSliderOfAGraphSetsTheLevelOfTheMacro) {
  panel->grab();  // lays everything out
  auto& graph = Find<TKorvalGraph>("accelerationGraph");
  auto& level = Find<TVariable>("level");
  const auto pixel = [&](double value) {
    QPoint point;
    TCoordinate coordinate{500.0, value};
    graph.GetDataPanel()->LocateValue(point, coordinate);
    return point;
  };
  Find<TVariable>("a").SetValue(-10.0);
  EXPECT_EQ(Find<TMacro>("excess").GetValue(), 2.0);

  const double perPixel = 40.0 / graph.PlotRect().height();  // the axis spans -20 to 20
  QTest::mousePress(&graph, Qt::LeftButton, {}, pixel(8.0));
  DragMouse(graph, pixel(6.0));
  EXPECT_NEAR(level.GetValue(), 6.0, perPixel) << "while it is dragged";
  DragMouse(graph, pixel(4.0));
  QTest::mouseRelease(&graph, Qt::LeftButton, {}, pixel(4.0));
  EXPECT_NEAR(level.GetValue(), 4.0, perPixel);
  EXPECT_EQ(Find<TMacro>("excess").GetValue(), 10.0 - level.GetValue());
  EXPECT_EQ(level.GetCaption(), "level=" + QString::number(level.GetValue(), 'f', 2));

  DragMouse(graph, pixel(-4.0));
  EXPECT_NEAR(level.GetValue(), 4.0, perPixel) << "it was let go";
}

}  // namespace
