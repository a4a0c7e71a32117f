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

template <class T>
T& Find(TPortDialog& dialog, const char* name) {
  T* const found = dialog.findChild<T*>(QLatin1String(name));
  EXPECT_TRUE(found) << name;
  return *found;
}

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
      Find<QSpinBox>(dialog, property.name()).setValue(4096);
      expected[property.name()] = 4096;
    } else {
      Find<QDoubleSpinBox>(dialog, property.name()).setValue(62.5);
      expected[property.name()] = 62.5;
    }
  });
  expected["PortNum"] = "COM2";
  EXPECT_EQ(port.GetBaudRate(), TQLXSettings::brs115200);  // nothing is stored yet
  dialog.accept();
  EXPECT_EQ(WritePublished(port), expected);
}

TEST(TPortDialog, OkKeepsARateThatItCannotShowWhole) {
  TTrialSettings port;
  port.SetQLXSampleRate(1000.0 / 7.0);
  TPortDialog dialog(port);
  dialog.accept();
  EXPECT_EQ(port.GetQLXSampleRate(), 1000.0 / 7.0);
}

TEST(TPortDialog, CancelChangesNothing) {
  TTrialSettings port;
  TPortDialog dialog(port);
  Find<QComboBox>(dialog, "PortNum").setCurrentIndex(5);
  dialog.reject();
  EXPECT_EQ(port.GetPortNum(), "COM1");
}

TEST(TPortDialog, NamesTheDeviceAndTriesWhatIsChosen) {
  TTrialSettings port;
  TPortDialog dialog(port);
  qputenv("VELMORA_COM5", "/dev/ttyUSB7");
  Find<QComboBox>(dialog, "PortNum").setCurrentText("COM5");
  EXPECT_EQ(Find<QLabel>(dialog, "Device").text(), "/dev/ttyUSB7");
  qunsetenv("VELMORA_COM5");
  QTest::mouseClick(&Find<QPushButton>(dialog, "Test"), Qt::LeftButton);
  EXPECT_EQ(Find<QLabel>(dialog, "TestResult").text(), "Tried COM5");
  EXPECT_EQ(port.GetPortNum(), "COM1");
}

TEST(TPortDialog, ResolutionAndTestAreOffWhileThePortIsOpen) {
  TTrialSettings port;
  port.Connected = true;
  TPortDialog dialog(port);
  EXPECT_FALSE(Find<QComboBox>(dialog, "Resolution").isEnabled());
  EXPECT_FALSE(Find<QPushButton>(dialog, "Test").isEnabled());
  EXPECT_TRUE(Find<QComboBox>(dialog, "PortNum").isEnabled());
}

}  // namespace
