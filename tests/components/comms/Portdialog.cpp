#include "components/comms/Portdialog.h"

#include "components/graphing/Publishedrecord.h"
#include "components/links/Properties.h"
#include "tests/support/Testing.h"

namespace {

/// Settings whose device can be said to be open, and tried.
class TTrialSettings : public TQLXSettings {
 public:
  bool GetConnected() const override { return Connected; }
  QString TryDevice(const TQLXSettings& settings) const override {
    return "Tried " + settings.GetPortNum();
  }
  bool Connected = false;
};

TEST(TPortDialog, EditsEveryPublishedSettingAndStoresThemOnOk) {
  TTrialSettings port;
  port.SetBaudRate(TQLXSettings::brs115200);
  port.SetQLXSampleRate(200.0);
  TPortDialog dialog(port);
  QJsonObject expected = WritePublished(port);
  // Every choice one further than it was, every number another one.
  ForEachOwnProperty(port, [&](const QMetaProperty& property) {
    SCOPED_TRACE(property.name());
    auto* choice = dialog.findChild<QComboBox*>(QLatin1String(property.name()));
    if (choice) {
      const int next = (choice->currentIndex() + 1) % choice->count();
      choice->setCurrentIndex(next);
      if (!property.isEnumType()) return;
      EXPECT_EQ(choice->count(), property.enumerator().keyCount());
      expected[property.name()] = property.enumerator().valueToKey(next);
    } else if (property.typeId() == QMetaType::Int) {
      Child<QSpinBox>(dialog, property.name()).setValue(4096);
      expected[property.name()] = 4096;
    } else {
      Child<QDoubleSpinBox>(dialog, property.name()).setValue(62.5);
      expected[property.name()] = 62.5;
    }
  });
  expected["PortNum"] = "COM2";
  EXPECT_EQ(port.GetBaudRate(), TQLXSettings::brs115200);  // nothing is stored yet
  dialog.accept();
  EXPECT_EQ(WritePublished(port), expected);
}

TEST(TPortDialog, KeepsARateThatItCannotShowWholeAndAllThatIsCancelled) {
  TTrialSettings port;
  port.SetQLXSampleRate(1000.0 / 7.0);
  TPortDialog(port).accept();
  EXPECT_EQ(port.GetQLXSampleRate(), 1000.0 / 7.0);
  TPortDialog dialog(port);
  Child<QComboBox>(dialog, "PortNum").setCurrentIndex(5);
  dialog.reject();
  EXPECT_EQ(port.GetPortNum(), "COM1");
}

TEST(TPortDialog, NamesTheDeviceAndTriesWhatIsChosenWhileThePortIsClosed) {
  TTrialSettings port;
  TPortDialog dialog(port);
  qputenv("VELMORA_COM5", "/dev/ttyUSB7");
  Child<QComboBox>(dialog, "PortNum").setCurrentText("COM5");
  EXPECT_EQ(Child<QLabel>(dialog, "Device").text(), "/dev/ttyUSB7");
  qunsetenv("VELMORA_COM5");
  QTest::mouseClick(&Child<QPushButton>(dialog, "Test"), Qt::LeftButton);
  EXPECT_EQ(Child<QLabel>(dialog, "TestResult").text(), "Tried COM5");
  EXPECT_EQ(port.GetPortNum(), "COM1");
  port.Connected = true;
  TPortDialog meanwhile(port);
  EXPECT_FALSE(Child<QComboBox>(meanwhile, "Resolution").isEnabled());
  EXPECT_FALSE(Child<QPushButton>(meanwhile, "Test").isEnabled());
  EXPECT_TRUE(Child<QComboBox>(meanwhile, "PortNum").isEnabled());
}

}  // namespace
