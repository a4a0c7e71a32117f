#include "components/links/Complist.h"

#include "tests/support/Testing.h"

#include "components/links/Componentref.h"

namespace {

/// A form with the labels a, b and c and the button x, and what its list tells: who comes and goes,
/// and then whom it holds.
struct TKorvalCompListTest : testing::Test {
  TKorvalCompListTest() {
    for (const char* name : {"a", "b", "c"}) (new QLabel(&form))->setObjectName(name);
    (new QPushButton(&form))->setObjectName("x");
    QObject::connect(&list, &TKorvalCompList::OnItemChanged,
                     [this](QObject*, QObject* item, TListAction action) {
                       told << (action == laAdded ? "+" : "-") + item->objectName();
                     });
    QObject::connect(&list, &TKorvalCompList::OnChange, [this] { told << Names(); });
  }
  QWidget* At(const char* name) { return form.findChild<QWidget*>(name); }
  QString Names() const { return list.GetNames().join(' '); }

  QWidget form;
  QStringList told;
  TKorvalCompList list{&form, &QLabel::staticMetaObject};
};

TEST_F(TKorvalCompListTest, HoldsEachComponentOfItsClassOnce) {
  EXPECT_TRUE(list.Add(At("a")));
  EXPECT_TRUE(list.Insert(0, At("b")));
  EXPECT_FALSE(list.Add(At("a")));
  EXPECT_FALSE(list.Add(At("x")));
  EXPECT_FALSE(list.Add(nullptr));
  EXPECT_FALSE(list.Insert(3, At("c")));
  EXPECT_EQ(Names(), "b a");
  EXPECT_EQ(list.Get<QLabel>(1), At("a"));
  EXPECT_FALSE(list.Delete(2));
  EXPECT_TRUE(list.DeleteComponent(At("b")));
  EXPECT_FALSE(list.DeleteComponent(At("b")));
  EXPECT_EQ(told, QStringList({"+a", "a", "+b", "b a", "-b", "a"}));
}

TEST_F(TKorvalCompListTest, AsksBeforeEachChangeAndAcceptsAVeto) {
  QStringList asked;
  list.OnBeforeChange = [&](QObject* item, TListAction action, bool& allow) {
    asked << (action == laAdded ? "+" : "-") + item->objectName();
    allow = item->objectName() != "b";
  };
  EXPECT_TRUE(list.Add(At("a")));
  EXPECT_FALSE(list.Add(At("b")));
  list.OnBeforeChange = [](QObject*, TListAction, bool& allow) { allow = false; };
  EXPECT_FALSE(list.Delete(0));
  list.Clear();
  EXPECT_EQ(asked, (QStringList{"+a", "+b"}));
  EXPECT_EQ(told, (QStringList{"+a", "a"}));
}

TEST_F(TKorvalCompListTest, ADestroyedComponentLeavesWithoutBeingAskedFor) {
  for (const char* name : {"a", "b", "c"}) list.Add(At(name));
  list.OnBeforeChange = [](QObject*, TListAction, bool&) { ADD_FAILURE() << "asked"; };
  told.clear();
  delete At("b");
  EXPECT_EQ(told, (QStringList{"-b", "a c"}));
}

TEST_F(TKorvalCompListTest, SurvivesAHookThatDestroysTheComponentItIsAskedAbout) {
  list.Add(At("b"));
  list.OnBeforeChange = [](QObject* item, TListAction, bool&) { delete item; };
  EXPECT_FALSE(list.Add(At("a")));
  EXPECT_FALSE(list.Delete(0));
  EXPECT_EQ(list.Count(), 0);
}

TEST_F(TKorvalCompListTest, SurvivesAListenerThatTakesOthersAway) {
  const std::function<void(TKorvalCompList&)> changes[] = {
      [](TKorvalCompList& l) { l.SetBaseClass(&QPushButton::staticMetaObject); },
      [](TKorvalCompList& l) { l.Clear(); },
      [](TKorvalCompList& l) { l.Assign(std::make_unique<TKorvalCompList>().get()); },
  };
  for (const auto& change : changes) {
    TKorvalCompList shrinking(&form, &QLabel::staticMetaObject);
    for (const char* name : {"a", "b", "c"}) shrinking.Add(At(name));
    QObject::connect(&shrinking, &TKorvalCompList::OnItemChanged, [&] { shrinking.Delete(0); });
    change(shrinking);
    EXPECT_EQ(shrinking.Count(), 0);
  }
}

TEST_F(TKorvalCompListTest, ResolvesNamesInTheirPlacesAndKeepsUnknownOnes) {
  list.setProperty("Components", QStringList{"later", "b", "x", "a"});
  EXPECT_EQ(list.Count(), 0);
  EXPECT_EQ(Names(), "later b x a") << "saved again before it is resolved, nothing is lost";
  told.clear();
  list.GetComponentsByNames();
  EXPECT_EQ(told.count("later b x a"), 1);
  ASSERT_EQ(list.Count(), 2) << "x is a button";
  EXPECT_EQ(list.Get(0), At("b"));
  EXPECT_EQ(Names(), "later b x a");

  (new QLabel(&form))->setObjectName("later");
  list.GetComponentsByNames();
  EXPECT_EQ(list.Get(0), At("later"));
  EXPECT_EQ(Names(), "later b x a");
}

TEST_F(TKorvalCompListTest, ANameMeansTheComponentNearestToTheOwner) {
  QWidget other(nullptr);
  auto* twin = new QWidget(&other);
  form.setParent(&other);
  (new QLabel(twin))->setObjectName("a");
  (new QLabel(&other))->setObjectName("outside");
  list.SetNames({"a", "outside"});
  list.GetComponentsByNames();
  EXPECT_EQ(list.Get(0), At("a"));
  EXPECT_EQ(list.Count(), 2);
  form.setParent(nullptr);
}

TEST_F(TKorvalCompListTest, AssignMakesTheOtherListHoldTheSameInTheSameOrder) {
  for (const char* name : {"c", "a"}) list.Add(At(name));
  TKorvalCompList other(&form, &QLabel::staticMetaObject);
  for (const char* name : {"a", "b"}) other.Add(At(name));
  int asked = 0;
  other.OnBeforeChange = [&asked](QObject*, TListAction, bool&) { ++asked; };
  QSignalSpy changes(&other, &TKorvalCompList::OnChange);
  other.Assign(&list);
  EXPECT_EQ(other.GetNames().join(' '), "c a");
  EXPECT_TRUE(other.SameAs(&list));
  EXPECT_EQ(asked, 2) << "what stays is not taken out and put back";
  other.Assign(&list);
  EXPECT_EQ(changes.count(), 1);
  other.OnBeforeChange = [](QObject*, TListAction action, bool& allow) {
    allow = action == laAdded;
  };
  list.Delete(0);
  other.Assign(&list);
  EXPECT_EQ(other.GetNames().join(' '), "c a") << "what must stay comes first";

  TKorvalCompList buttons(&form, &QPushButton::staticMetaObject);
  buttons.Assign(&list);
  EXPECT_EQ(buttons.Count(), 0);
}

TEST_F(TKorvalCompListTest, ANewBaseClassSendsTheOthersAwayThoughAListenerMovesThem) {
  list.SetBaseClass(&QWidget::staticMetaObject);
  for (const char* name : {"x", "a", "b"}) EXPECT_TRUE(list.Add(At(name)));
  list.SetBaseClass(&QLabel::staticMetaObject);
  EXPECT_EQ(Names(), "a b");
  QObject::connect(&list, &TKorvalCompList::OnItemChanged, [&] { list.Insert(0, At("x")); });
  list.SetBaseClass(&QPushButton::staticMetaObject);
  EXPECT_EQ(Names(), "x");
}

TEST_F(TKorvalCompListTest, AListenerMayDestroyIt) {
  list.Add(At("c"));
  const std::pair<bool, std::function<void(TKorvalCompList&)>> changes[] = {
      {true, [this](TKorvalCompList& it) { it.Add(At("c")); }},
      {true, [](TKorvalCompList& it) { it.Delete(0); }},
      {true, [](TKorvalCompList& it) { it.SetNames({"c"}); }},
      {true, [this](TKorvalCompList& it) { it.Assign(&list); }},
      {false, [](TKorvalCompList& it) { it.GetComponentsByNames(); }}};
  for (const auto& change : changes) {
    for (const bool beforehand : {true, false}) {
      auto doomed = std::make_unique<TKorvalCompList>(&form, &QLabel::staticMetaObject);
      doomed->SetNames({"a", "b"});
      if (change.first) doomed->GetComponentsByNames();
      if (beforehand) {
        doomed->OnBeforeChange = [&doomed](QObject*, TListAction, bool&) { doomed.reset(); };
      } else {
        QObject::connect(doomed.get(), &TKorvalCompList::OnItemChanged, [&] { doomed.reset(); });
      }
      change.second(*doomed);
      EXPECT_FALSE(doomed);
    }
  }
}

TEST_F(TKorvalCompListTest, AReferenceHoldsOneComponentOrAName) {
  TComponentRef<QWidget> ref(&form);
  EXPECT_TRUE(ref.SetName("a") && !ref.SetName("a"));
  EXPECT_TRUE(ref.Set(nullptr) && !ref.Set(nullptr));
  EXPECT_EQ(ref.GetName(), "") << "a name that waits goes, too";
  EXPECT_TRUE(ref.Set(At("a")) && !ref.Set(At("a")));
  QObject::connect(&ref, &TKorvalCompList::OnItemChanged, [&] { ref.Set(At("x")); });
  ref.Set(At("b"));
  EXPECT_EQ(ref.GetNames().join(' '), "x") << "what the listener has set stays";
}

}  // namespace
