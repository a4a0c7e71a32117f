#include "components/channels/Channelset.h"
#include "components/channels/Datachannel.h"
#include "components/channels/Runningstatistics.h"
#include "components/channels/Statisticsseries.h"
#include "components/comms/Qlxxml.h"
#include "components/controls/Colorlabel.h"
#include "components/controls/Compass.h"
#include "components/controls/Linkedcontrols.h"
#include "components/graphing/Basichistogram.h"
#include "components/graphing/Graph.h"
#include "components/panels/Panel.h"
#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;

bool WaitFor(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 60'000); }

class ExamplePanels : public testing::Test {
 protected:
  /// Opens an example; what stands in its file may be changed first.
  void Open(const QString& name, const QString& before = {}, const QString& after = {}) {
    const QString fileName = SourceFile("examples/panels/" + name);
    QString text = QString::fromUtf8(Contents(fileName));
    if (!before.isEmpty()) {
      ASSERT_TRUE(text.contains(before));
      text.replace(before, after);
    }
    panel = TPanel::FromText(text, fileName, &faults);
    if (panel) panel->Start();
    ASSERT_TRUE(panel);
    EXPECT_THAT(faults, ElementsAre());
    panel->Root()->setAttribute(Qt::WA_DontShowOnScreen);
    panel->Root()->show();
    settings_ = panel->Settings();
  }
  /// What measuring has changed is no reason to ask at the end whether it is to be saved.
  void ExpectUnchangedSettings() const {
    EXPECT_EQ(panel->Settings().toStdString(), settings_.toStdString());
  }
  template <class T>
  T* Find(const char* name) {
    return &Child<T>(*panel->Root(), name);
  }
  /// Pixels of a graph with a strong colour, as curves have and axes have not.
  int ColouredPixels(const char* graph) {
    return CountIf(Find<TKorvalGraph>(graph)->Picture(),
                   [](const QColor& color) { return color.hsvSaturation() > 100; });
  }

  QStringList faults;
  std::unique_ptr<TPanel> panel;

 private:
  QString settings_;
};

TEST_F(ExamplePanels, AreReadAndSavedWithoutAFault) {
  qputenv("VELMORA_COM1", "/nowhere/tty");
  for (const char* name : {"signal.ui", "weather.ui", "machine.ui", "replay.ui"}) {
    SCOPED_TRACE(name);
    const bool hasServer = QLatin1String(name) == QLatin1String("weather.ui");
    Open(name, hasServer ? "4001" : "", "1");  // where nobody listens
    if (!panel) continue;
    const QString saved = panel->Text();
    QStringList again;
    const auto second = TPanel::FromText(saved, panel->FileName(), &again);
    EXPECT_THAT(again, ElementsAre());
    EXPECT_EQ(second->Components().size(), panel->Components().size());
    // Everything fits: no label of the form is cut off.
    for (const auto* label : panel->Root()->findChildren<QLabel*>()) {
      EXPECT_GE(label->width(), label->sizeHint().width()) << label->objectName().toStdString();
    }
  }
  qunsetenv("VELMORA_COM1");
}

TEST_F(ExamplePanels, TheSignalIsCountedTransformedAndSorted) {
  Open("signal.ui");
  auto* count = Find<TRunningStatistics>("count");
  ASSERT_TRUE(WaitFor([&] { return count->GetValue() >= 1100.0; }));
  // The power of a sine is half the square of its amplitude: 2, 0.6, and the noise of 0.25.
  const double rms = std::sqrt((2.0 * 2.0 + 0.6 * 0.6) / 2.0 + 0.25 * 0.25);
  EXPECT_NEAR(Find<TRunningStatistics>("rms")->GetValue(), rms, 0.05);
  EXPECT_NEAR(Find<TRunningStatistics>("mean")->GetValue(), 0.0, 0.1);
  EXPECT_EQ(Find<TDataChannel>("trace")->GetPointCount(), 600);
  auto* histogram = Find<TOccurrenceHistogram>("histogram");
  EXPECT_EQ(histogram->GetBins()->GetCycleCount(), count->GetValue());
  const TSeriesList& bars = histogram->GetGraphLink()->GetSeriesList();
  const auto* figures = qobject_cast<const TStatisticsSeries*>(bars.Get(1));
  TStatisticsData record;
  int index = 0;
  ASSERT_TRUE(figures && figures->Statistics && figures->Statistics(index, record));
  EXPECT_NEAR(record.StDev, rms, 0.1);
  EXPECT_GT(ColouredPixels("traceGraph"), 300);
  EXPECT_GT(ColouredPixels("spectrumGraph"), 100);
  ExpectUnchangedSettings();
  // The buttons of the form stop the source and begin anew.
  Find<QCheckBox>("running")->click();
  QCoreApplication::processEvents();
  const double counted = count->GetValue();
  WaitFor([&] { return Find<TColorLabel>("countLabel")->Text() != "0"; });
  EXPECT_EQ(count->GetValue(), counted);
  Find<QPushButton>("reset")->click();
  EXPECT_EQ(count->GetValue(), 0.0);
  EXPECT_EQ(Find<TDataChannel>("trace")->GetPointCount(), 0);
}

TEST_F(ExamplePanels, TheCompassShowsTheWindOfTheServer) {
  QByteArray packages;
  for (int second = 10; second < 60; ++second) {
    packages += "<wind id=\"tower\" time=\"20240501 1200" + QByteArray::number(second) +
                "000\">\r\n7.25 123.5 18.75\r\n</wind>\r\n";
  }
  const TStartedProgram server(
      "examples/package-server/package-server",
      {"--port", "0", "--rate", "20", "--replay", WriteTestFile("wind.packages", packages)});
  Open("weather.ui", "4001", server.FirstLine.section(' ', -1));
  ASSERT_TRUE(WaitFor([&] { return Find<TCompass>("compass")->GetAngle() != 0.0; }));
  EXPECT_DOUBLE_EQ(Find<TCompass>("compass")->GetAngle(), 123.5);
  EXPECT_TRUE(Find<TCompass>("compass")->Fault().isEmpty());
  ASSERT_TRUE(WaitFor([&] { return Find<TLinkedLabel>("temperatureNow")->IsValid(); }));
  EXPECT_EQ(Find<TLinkedLabel>("temperatureNow")->text(), "18.75 \u00b0C");
  ASSERT_TRUE(WaitFor([&] { return Find<TLinkedLabel>("speedValue1")->IsValid(); }));
  EXPECT_EQ(Find<TLinkedLabel>("speedValue1")->text(), "7.3 m/s");
  EXPECT_TRUE(WaitFor([&] { return ColouredPixels("speedGraph") > 50; }));
  ExpectUnchangedSettings();
}

TEST_F(ExamplePanels, TheMachineIsReadFromTheSerialDevice) {
  const QString line = TestFolder() + "/COM1";
  const TStartedProgram device("examples/device-simulator/device-simulator",
                               {"--machine", "--link", line});
  qputenv("VELMORA_COM1", line.toLocal8Bit());
  Open("machine.ui");
  ASSERT_TRUE(WaitFor([&] { return Find<TColorLabel>("channel4Status")->Text() != "No data"; }));
  auto* source = Find<TChannelSource>("source");
  const auto present = [&](int channel) {
    TStatSet record;
    EXPECT_TRUE(
        source->GetSets()->GetItem(0)->GetChannels()->GetItem(channel)->GetStats()->GetCurrent(
            0, record));
    return record.ShownValue(svMean);
  };
  EXPECT_NEAR(present(0), 1479.0, 15.0);
  EXPECT_NEAR(present(3), 62.0, 5.0);
  EXPECT_NEAR(present(4), 4.2, 0.2);
  EXPECT_EQ(Find<TColorLabel>("channel0Status")->Text(), "Normal");
  EXPECT_EQ(Find<TColorLabel>("channel2Status")->Text(), "Normal");
  // It vibrates at the drive end beyond the limit within half of a swell.
  EXPECT_TRUE(WaitFor([&] { return Find<TColorLabel>("channel1Status")->Text() == "Alarm"; }));
  EXPECT_GT(ColouredPixels("driveGraph"), 50);
  ExpectUnchangedSettings();
  qunsetenv("VELMORA_COM1");
}

TEST_F(ExamplePanels, TheReplayTakesEveryRowOfTheRecordedFile) {
  std::vector<double> east;
  for (const QByteArray& row : Contents(SourceFile("examples/mast.packages")).split('\n')) {
    const QByteArrayList fields = row.trimmed().split(' ');
    if (fields.size() == 6 && !row.startsWith('<')) east.push_back(fields[2].toDouble());
  }
  ASSERT_EQ(east.size(), 3000u);
  Open("replay.ui", "<number>529</number>", "<number>40000</number>");
  auto* client = Find<TXMLFileClient>("file");
  auto* channel = Find<TDataChannel>("east");
  ASSERT_TRUE(WaitFor([&] { return client->GetStatus() == "File closed"; }));
  ASSERT_EQ(channel->GetPointCount(), 1000);
  for (int row = 0; row < 1000; ++row) {
    ASSERT_EQ(channel->GetData()->Row(row)[TFloatList::kValue], east[2000 + row]) << row;
  }
  EXPECT_EQ(Find<QLabel>("status")->text(), "File closed");
  EXPECT_GT(ColouredPixels("eastGraph"), 300);
  EXPECT_GT(ColouredPixels("spectrumGraph"), 50);
  ExpectUnchangedSettings();
  Find<QPushButton>("play")->click();
  EXPECT_TRUE(client->GetActive());
}

}  // namespace
