#include "examples/values/Valuespanel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QMouseEvent>
#include <QProcess>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <cmath>

#include "components/channels/Datachannel.h"
#include "components/channels/Variable.h"
#include "components/graphing/Basichistogram.h"
#include "components/graphing/Graph.h"
#include "components/graphing/editors/Bineditor.h"
#include "components/sources/Filereader.h"
#include "components/sources/Fourier.h"
#include "components/sources/Macro.h"
#include "components/sources/macro/Macroeditor.h"
#include "tests/components/graphing/Panelfixture.h"
#include "tests/support/Testsupport.h"

namespace {

/// One row of the record, in volts, and where its line ends.
struct TRow {
  double acceleration, pressure;
  qint64 end;
};

const QString& RecordName() {
  static const QString name = SourceFile("examples/values/pump.txt");
  return name;
}

const std::vector<TRow>& Record() {
  static const std::vector<TRow> rows = [] {
    QFile file(RecordName());
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    std::vector<TRow> read;
    while (!file.atEnd()) {
      const QByteArrayList columns = file.readLine().simplified().split(' ');
      if (columns[0] == "#") continue;
      read.push_back({columns[0].toDouble(), columns[1].toDouble(), file.pos()});
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
  struct TTold {
    char channel;  ///< 'a' or 'p'
    double value;
    friend bool operator==(const TTold&, const TTold&) = default;
  };

  ValuesPanel() {
    Find<TDataChannel>("acceleration").AddLink(&accelerations, false);
    Find<TDataChannel>("pressure").AddLink(&pressures, false);
    Find<TMacro>("excess").AddLink(&excesses, false);
  }

  template <class T>
  T& Find(const char* name) {
    T* child = panel->findChild<T*>(QLatin1String(name));
    if (!child) throw std::runtime_error(name);
    return *child;
  }
  void Push(const char* button) { QTest::mouseClick(&Find<QPushButton>(button), Qt::LeftButton); }
  QString News() { return Find<QLabel>("status").text(); }

  static void Turn() {
    TTimerServer::Instance()->Timer();
    QCoreApplication::processEvents();
  }
  /// Has time pass until something is so; false if that takes too long.
  template <class TDone>
  [[nodiscard]] static bool PassUntil(TDone done) {
    QElapsedTimer clock;
    for (clock.start(); !done();) {
      if (clock.hasExpired(30000)) return false;
      Turn();
    }
    return true;
  }
  [[nodiscard]] bool ReadToEnd() {
    return PassUntil([this] { return !panel->IsReading(); });
  }

  /// What the channels are to tell of the rows from `first` on.
  static std::vector<TTold> Expected(std::size_t first) {
    std::vector<TTold> told;
    for (std::size_t i = first; i < Record().size(); ++i) {
      told.push_back({'a', Acceleration(Record()[i])});
      if (HasPressure(Record()[i])) told.push_back({'p', Pressure(Record()[i])});
    }
    return told;
  }
  /// Not EXPECT_EQ: it would print thousands of values.
  void ExpectTold(const std::vector<TTold>& expected) {
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

TEST_F(ValuesPanel, DealsTheColumnsOfTheFileToItsChannelsInTurn) {
  ASSERT_EQ(Record().size(), 8192u);
  panel->SetSpeed(TValuesPanel::spUnlimited);
  Push("toggle");
  EXPECT_EQ(News(), "Reading");
  ASSERT_TRUE(ReadToEnd());
  EXPECT_EQ(News(), "End of the file");
  EXPECT_EQ(std::ranges::count(told, 'p', &TTold::channel), 8192 - 16) << "16 dropouts";
  EXPECT_EQ(std::ranges::count(told, TTold{'a', 15.0}), 8) << "a knock a second is cut off";
  ExpectTold(Expected(0));

  EXPECT_EQ(Find<TDataChannel>("acceleration").GetPointCount(), 1000);
  EXPECT_EQ(Find<QLabel>("position").text(), "139.4 of 139.4 kB");
  EXPECT_EQ(Find<QSlider>("place").value(), Find<QSlider>("place").maximum());
}

TEST_F(ValuesPanel, MakesExcessSpectrumAndDistributionOfTheAcceleration) {
  panel->SetSpeed(TValuesPanel::spUnlimited);
  panel->Start();
  ASSERT_TRUE(ReadToEnd());

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

TEST_F(ValuesPanel, ShowsAllOfItInFiveGraphs) {
  const struct {
    const char* graph;
    QColor color;
    bool alone;  ///< shows nothing before the first value
  } cases[] = {
      {"accelerationGraph", QColor(31, 90, 180), true},
      {"excessesGraph", QColor(200, 50, 40), true},
      {"pressureGraph", QColor(30, 130, 70), true},
      {"spectrumGraph", QColor(31, 90, 180), false},
      {"distributionGraph", QColor(150, 190, 235), true},
  };
  panel->grab();
  const auto lit = [&](const auto& c) {
    return CountPixels(Find<TKorvalGraph>(c.graph).Picture(), c.color);
  };
  std::vector<int> before;
  for (const auto& c : cases) before.push_back(lit(c));
  panel->SetSpeed(TValuesPanel::spUnlimited);
  panel->Start();
  ASSERT_TRUE(ReadToEnd());
  QCoreApplication::processEvents();
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE(cases[i].graph);
    if (cases[i].alone) {
      EXPECT_EQ(before[i], 0);
    }
    EXPECT_GT(lit(cases[i]), before[i] + 100);
  }
}

TEST_F(ValuesPanel, ReadsInRealTimeUntilItIsStopped) {
  panel->Start();
  // 1024 rows a second are 20.48 in each 20 ms.
  ASSERT_TRUE(PassUntil([this] { return told.size() >= 600; }));
  Push("toggle");
  EXPECT_FALSE(panel->IsReading());
  EXPECT_EQ(News(), "Stopped");
  EXPECT_EQ(Find<QPushButton>("toggle").text(), "Continue");
  const std::size_t stopped = told.size();
  EXPECT_LT(stopped, 700u);
  for (int turn = 0; turn < 50; ++turn) Turn();
  EXPECT_EQ(told.size(), stopped);

  Push("toggle");
  panel->SetSpeed(TValuesPanel::spTenfold);
  ASSERT_TRUE(ReadToEnd());
  ExpectTold(Expected(0));
}

TEST_F(ValuesPanel, MayBeStoppedAtAnyValueAndLosesNone) {
  panel->SetSpeed(TValuesPanel::spUnlimited);
  int accelerationsUntilStop = 1000;
  TValueLink stop([&](double) {
    if (--accelerationsUntilStop == 0) panel->Stop();
  });
  Find<TDataChannel>("acceleration").AddLink(&stop, false);
  panel->Start();
  ASSERT_TRUE(ReadToEnd());
  const auto isAcceleration = [](const TTold& value) { return value.channel == 'a'; };
  for (int turn = 0; turn < 50; ++turn) Turn();
  EXPECT_EQ(std::ranges::count_if(told, isAcceleration), 1000);
  EXPECT_EQ(told.back().channel, 'a') << "nothing after the value that stopped it";
  panel->Start();
  ASSERT_TRUE(ReadToEnd());
  ExpectTold(Expected(0));
}

TEST_F(ValuesPanel, GoesOnInTheMiddleWithAWholeRow) {
  panel->SetSpeed(TValuesPanel::spTenfold);
  panel->Start();
  ASSERT_TRUE(PassUntil([this] { return told.size() >= 1000; }));
  panel->Stop();
  told.clear();

  Push("middle");
  const qint64 middle = QFileInfo(RecordName()).size() / 2;
  const auto row = std::ranges::upper_bound(Record(), middle, {}, &TRow::end);
  EXPECT_EQ(Find<QLabel>("position").text(), "69.7 of 139.4 kB");
  Push("toggle");
  ASSERT_TRUE(ReadToEnd());
  ExpectTold(Expected(static_cast<std::size_t>(row - Record().begin())));

  told.clear();
  Push("toggle");
  panel->SetSpeed(TValuesPanel::spUnlimited);
  ASSERT_TRUE(ReadToEnd());
  ExpectTold(Expected(0));
}

TEST_F(ValuesPanel, StartsOver) {
  panel->SetSpeed(TValuesPanel::spTenfold);
  panel->Start();
  ASSERT_TRUE(PassUntil([this] { return told.size() >= 3000; }));
  panel->Stop();
  Push("over");
  EXPECT_EQ(Find<TDataChannel>("pressure").GetPointCount(), 0);
  EXPECT_TRUE(Find<TOccurrenceHistogram>("distribution").GetBins()->Empty());
  EXPECT_EQ(Find<TFFTChannel>("spectrum").GetCumulCount(), 0);
  EXPECT_EQ(Find<QPushButton>("toggle").text(), "Start");
  told.clear();
  panel->Start();
  ASSERT_TRUE(ReadToEnd());
  ExpectTold(Expected(0));
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
  const auto move = [&](QPoint at) {
    const QPointF position(at);
    QMouseEvent event(QEvent::MouseMove, position, graph.mapToGlobal(position), Qt::NoButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&graph, &event);
  };
  Find<TVariable>("a").SetValue(-10.0);
  EXPECT_EQ(Find<TMacro>("excess").GetValue(), 2.0);

  const double perPixel = 40.0 / graph.PlotRect().height();  // the axis spans -20 to 20
  QTest::mousePress(&graph, Qt::LeftButton, {}, pixel(8.0));
  move(pixel(6.0));
  EXPECT_NEAR(level.GetValue(), 6.0, perPixel) << "while it is dragged";
  move(pixel(4.0));
  QTest::mouseRelease(&graph, Qt::LeftButton, {}, pixel(4.0));
  EXPECT_NEAR(level.GetValue(), 4.0, perPixel);
  EXPECT_EQ(Find<TMacro>("excess").GetValue(), 10.0 - level.GetValue());
  EXPECT_EQ(level.GetCaption(), "level=" + QString::number(level.GetValue(), 'f', 2));

  move(pixel(-4.0));
  EXPECT_NEAR(level.GetValue(), 4.0, perPixel) << "it was let go";
}

TEST_F(ValuesPanel, DoubleClicksOpenTheEditorsOfBinsAndMacro) {
  panel->grab();
  const auto doubleClick = [&](const char* name) {
    auto& graph = Find<TKorvalGraph>(name);
    QTest::mouseDClick(&graph, Qt::LeftButton, {}, graph.PlotRect().center());
  };
  doubleClick("distributionGraph");
  auto* bins = panel->findChild<TBinEditor*>();
  ASSERT_TRUE(bins);
  EXPECT_TRUE(bins->isVisible());

  bool wasOpen = false;
  QTimer::singleShot(0, panel.get(), [&] {
    auto* macro = panel->findChild<TMacroEditor*>();
    wasOpen = macro && macro->isVisible();
    if (macro) macro->reject();
  });
  doubleClick("excessesGraph");
  EXPECT_TRUE(wasOpen);
}

TEST_F(ValuesPanel, SaysThatItsFileIsMissing) {
  panel = std::make_unique<TValuesPanel>(TestFolder() + "/none.txt");
  EXPECT_EQ(News().toStdString(),
            "Cannot open " + TestFolder().toStdString() + "/none.txt: No such file or directory");
  Push("toggle");
  Push("middle");
  EXPECT_FALSE(panel->IsReading());
}

TEST_F(ValuesPanel, MayBeClosedWhileItReads) {
  panel->SetSpeed(TValuesPanel::spUnlimited);
  panel->Start();
  ASSERT_TRUE(PassUntil([this] { return !told.empty(); }));
  panel.reset();
  const std::size_t count = told.size();
  QCoreApplication::processEvents();
  EXPECT_EQ(told.size(), count);
}

/// The program without a display.
int RunValues(const QStringList& arguments, QString* errors) {
  QProcess program;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.remove("DISPLAY");
  environment.insert("QT_QPA_PLATFORM", "offscreen");
  environment.insert("XDG_RUNTIME_DIR", TestFolder());
  program.setProcessEnvironment(environment);
  program.start(BuiltFile("examples/values/values"), arguments);
  EXPECT_TRUE(program.waitForFinished()) << program.errorString().toStdString();
  *errors = QString::fromUtf8(program.readAllStandardError());
  return program.exitCode();
}

TEST(Values, DrawsTheWholeRecordIntoAPicture) {
  QString errors;
  const QString file = TestFolder() + "/values.png";
  ASSERT_EQ(RunValues({"--render", file, "--ratio", "2"}, &errors), 0) << errors.toStdString();
  const QImage picture(file);
  EXPECT_EQ(picture.size(), QSize(2400, 1560));
  EXPECT_GT(CountPixels(picture, QColor(150, 190, 235)), 10000) << "the bars of the histogram";
  EXPECT_GT(CountPixels(picture, QColor(30, 130, 70)), 1000) << "the pressure";
}

TEST(Values, SaysWhatItCannotDo) {
  QString errors;
  const QString file = TestFolder() + "/values.png";
  EXPECT_EQ(RunValues({"--render", file, "none.txt"}, &errors), 1);
  EXPECT_TRUE(errors.contains("Cannot open none.txt")) << errors.toStdString();
  const QString nowhere = TestFolder() + "/missing/values.png";
  EXPECT_EQ(RunValues({"--render", nowhere}, &errors), 1);
  EXPECT_TRUE(errors.contains("Cannot write " + nowhere)) << errors.toStdString();
}

}  // namespace
