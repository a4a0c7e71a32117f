#include "components/links/Propclasses.h"

#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;
using TLog = std::vector<std::string>;

/// A subscriber that writes down its name when its sender goes, and then does what the test asks.
class TSubscriber : public QObject {
 public:
  TSubscriber(const char* name, const QObject* sender, TLog& log)
      : name_(name), sender_(sender), log_(log) {}

  std::function<void()> Then;

 protected:
  void customEvent(QEvent* event) override {
    if (event->type() != QEvent::Type(1524)) return;
    const auto* message = static_cast<TObjectMessage*>(event);
    EXPECT_EQ(message->Sender, sender_);
    EXPECT_TRUE(message->Flag);
    log_.push_back(name_);
    if (Then) Then();
  }

 private:
  const char* name_;
  const QObject* sender_;
  TLog& log_;
};

struct TNotifyPersistentTest : testing::Test {
  std::unique_ptr<TSubscriber> Subscriber(const char* name) {
    return std::make_unique<TSubscriber>(name, sender.get(), log);
  }
  TLog log;
  std::unique_ptr<TNotifyPersistent> sender = std::make_unique<TNotifyPersistent>();
  std::unique_ptr<TSubscriber> a = Subscriber("a"), b = Subscriber("b"), c = Subscriber("c");
};

TEST_F(TNotifyPersistentTest, TellsEachSubscriberOnceInTheOrderOfSubscription) {
  for (QObject* subscriber : {b.get(), a.get(), b.get(), c.get()}) {
    sender->FreeNotification(subscriber);
  }
  sender->RemoveFreeNotification(a.get());
  sender->RemoveFreeNotification(a.get());
  sender.reset();
  EXPECT_THAT(log, ElementsAre("b", "c"));
}

TEST_F(TNotifyPersistentTest, ForgetsItsSubscribersOnceTheyAreNotified) {
  sender->FreeNotification(a.get());
  sender->BeforeDestruction();
  sender->BeforeDestruction();
  sender.reset();
  EXPECT_THAT(log, ElementsAre("a"));
}

TEST_F(TNotifyPersistentTest, SurvivesSubscribersThatGoOrLeaveWhileOthersAreNotified) {
  for (QObject* subscriber : {a.get(), b.get(), c.get()}) sender->FreeNotification(subscriber);
  a->Then = [this, dying = sender.get()] {
    b.reset();
    dying->RemoveFreeNotification(c.get());
    dying->FreeNotification(a.get());
  };
  sender.reset();
  EXPECT_THAT(log, ElementsAre("a"));
}

TEST(TClick, RunsTheOperationAndNeverReadsAsClicked) {
  TClick button;
  QSignalSpy clicks(&button, &TClick::OnClick);
  button.setProperty("Click", false);
  EXPECT_EQ(clicks.count(), 0);
  button.setProperty("Click", true);
  button.setProperty("Click", true);
  EXPECT_EQ(clicks.count(), 2);
  EXPECT_FALSE(button.property("Click").toBool());
}

TEST(TSelectedCollItem, TellsItemsOfOneNameApartByTheirIndex) {
  QStringList names = {"Ch", "Ch", "Other"};
  TSelectedCollItem selector;
  selector.SetCollection([&names] { return names; });
  QSignalSpy changes(&selector, &TSelectedCollItem::OnChange);
  selector.SetIndex(1);
  EXPECT_EQ(selector.GetIndex(), 1);
  selector.SetIndex(1);
  EXPECT_EQ(changes.count(), 1);
  selector.SetIndex(0);
  EXPECT_EQ(selector.GetIndex(), 0);
  EXPECT_EQ(changes.count(), 2);

  names = {"Other", "Ch"};
  EXPECT_EQ(selector.GetIndex(), 1) << "the name is followed when the collection changes";
  selector.SetIndex(7);
  EXPECT_EQ(selector.GetItem(), "");
  EXPECT_EQ(selector.GetIndex(), -1);
}

}  // namespace
