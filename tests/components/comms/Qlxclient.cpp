#include "components/comms/Qlxclient.h"

#include <gtest/gtest.h>

#include <QMetaProperty>

#include "components/channels/Channelset.h"
#include "components/comms/Qlxmaster.h"
#include "components/comms/Qlxxml.h"
#include "components/graphing/Publishedrecord.h"

namespace {

/// A form that is saved before it is complete is the form that was read.
TEST(TQLXClient, ReadsBackWhatItsFormSets) {
  TQLXXMLClient xml;
  TQLXMasterClient master;
  TXMLFileClient file;
  const auto reads = [](QObject& object, const char* name, const QVariant& value) {
    EXPECT_NE(object.property(name), value) << name << " says nothing";
    EXPECT_TRUE(object.setProperty(name, value)) << name;
    EXPECT_EQ(object.property(name), value) << name;
  };
  for (TQLXClient* client : std::initializer_list<TQLXClient*>{&xml, &master, &file}) {
    SCOPED_TRACE(client->metaObject()->className());
    client->BeginLoading();
    reads(*client, "AutoConnect", true);
    reads(*client, "Active", true);
    reads(*client, "ChannelSource", QStringLiteral("not there yet"));
    reads(*client, "Logging", true);
    reads(*client, "LogFile", QStringLiteral("rows.packages"));
    EXPECT_FALSE(client->GetActive());
    EXPECT_EQ(client->GetStatus(), QString());
  }
  reads(*xml.GetSocket(), "Address", QStringLiteral("127.0.0.1"));
  reads(*xml.GetSocket(), "Host", QStringLiteral("localhost"));
  reads(*xml.GetSocket(), "Port", 4001);
  reads(*master.GetChSet(), "Item", QStringLiteral("ChannelSet2"));
  TQLXSettings settings;
  settings.SetResolution(TQLXSettings::rs16bits);
  settings.SetPortNum(QStringLiteral("COM9"));
  master.SetPort(nullptr);
  master.GetPort()->Assign(&settings);
  EXPECT_TRUE(settings.SameAs(master.GetPort()));
  reads(file, "FileName", QStringLiteral("rows.packages"));
  reads(file, "BlockSize", 1);
  reads(file, "ReadInterval", 1);
  reads(file, "UseLocalTime", true);
}

}  // namespace
