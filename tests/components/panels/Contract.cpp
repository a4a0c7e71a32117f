#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTimer>
#include <algorithm>
#include <memory>

#include "components/channels/Channelset.h"
#include "components/channels/Statisticsseries.h"
#include "components/graphing/Gseries.h"
#include "components/panels/Registry.h"
#include "tests/components/links/Changedvalues.h"
#include "tests/support/Testsupport.h"

/// What all classes with published properties have in common, with each of them.

namespace {

/// Something that publishes properties, itself and in its sub-objects.
struct TSubject {
  std::unique_ptr<QObject> Root;  ///< the owner of all
  QObject* Object;                ///< that publishes
};

struct TKind {
  QString Name;
  std::function<TSubject()> Make;
};

template <class T>
TKind Free() {
  return {T::staticMetaObject.className(), [] {
            auto object = std::make_unique<T>();
            QObject* shown = object.get();
            return TSubject{std::move(object), shown};
          }};
}

TSubject MakeSet() {
  auto source = std::make_unique<TChannelSource>();
  TChannelSet* set = source->GetSets()->Add();
  set->SetCount(2);
  return {std::move(source), set};
}

TSubject MakeChannel() {
  TSubject set = MakeSet();
  set.Object = static_cast<TChannelSet*>(set.Object)->GetChannels()->GetItem(1);
  return set;
}

/// The component classes, and what they make while they run.
std::vector<TKind> Kinds() {
  std::vector<TKind> kinds = {Free<TSeries>(),          Free<TArraySeries>(),
                              Free<TSliderSeries>(),    Free<TStatisticsSeries>(),
                              Free<TRange>(),           {"TChannelSet", MakeSet},
                              {"TChannel", MakeChannel}};
  for (const TComponentClass& component : ComponentClasses()) {
    kinds.push_back({component.Name, [make = component.Make] {
                       std::unique_ptr<QObject> widget(make(nullptr));
                       QObject* shown = widget.get();
                       return TSubject{std::move(widget), shown};
                     }});
  }
  return kinds;
}

enum TRule {
  kChanges = 1,   ///< takes another value
  kTells = 2,     ///< and tells of it once
  kSilent = 4,    ///< tells of no equal value
  kCopies = 8,    ///< goes into a copy
  kDiffers = 16,  ///< makes two objects different
  kOnce = 32      ///< a copy tells of it once, when all is copied
};

struct TException {
  const char* Path;  ///< ends so
  int Rules;         ///< that do not hold
  const char* Reason;
};

constexpr TException kExceptions[] = {
    {".Active", kChanges, "opens files, sockets and devices"},
    {".Logging", kChanges, "opens a file"},
    {"TFFTChannel.CumulCount", kChanges, "only while its form is read"},
    {"TFFTChannel.UpperFilter", kChanges, "ends at half of the rate"},
    {"TDataTable.DataValues", kChanges, "a table without controls has no columns"},
    {"TChannelValue.ChannelLink.UpdateInterval", kChanges, "the link has no timer"},
    {".Graph", kTells | kCopies, "is news when the graph is found; a copy gets what was found"},
    {".DataControl", kTells | kCopies, "the same of a data control"},
    {".ChannelSource", kTells, "is news when the source is found"},
    {"Link.SeriesData", kTells, "the series tell of it, to their graph"},
    {".Statistics.StatData", kTells, "statistics change with every value"},
    {".Output.Value", kTells, "goes to the control and is news there"},
    {".Input.Value", kSilent, "every value of a stream is news"},
    {"TChannelSource.Sets.Items", kSilent | kOnce, "each set tells; the sets are made anew"},
    {".DataPanel.LineColor", kOnce,
     "the series of a copy are made anew, and it tells of that, too"},
    {".DataPanel.FillColor", kOnce, "the same"},
    {".DataPanel.SeriesData", kSilent, "the series are made anew"},
    {".IsTimeFormat", kDiffers, "two formats are the same if numbers look the same"},
    {".TimeFormatStr", kDiffers, "the same"},
};

/// Whether the rule holds for a property.
bool Holds(TRule rule, const QString& path) {
  return std::ranges::none_of(kExceptions, [&](const TException& exception) {
    return (exception.Rules & rule) && path.endsWith(QLatin1String(exception.Path));
  });
}

/// Calls `visit` with a new subject of each kind, and each property in turn.
template <class TVisit>
void ForEachProperty(TVisit visit) {
  for (const TKind& kind : Kinds()) {
    const TSubject subject = kind.Make();
    int properties = 0;
    ForEachStored(*subject.Object, [&](const TPublished& published) {
      const QString path = kind.Name + '.' + published.Path;
      SCOPED_TRACE(path.toStdString());
      ++properties;
      if (Holds(kChanges, path)) visit(kind, published, path);
    });
    EXPECT_GT(properties, 1) << kind.Name.toStdString();
  }
  TakeMessages();
}

TPublished At(const TSubject& subject, const QString& path) {
  return FindPublished(*subject.Object, path, nullptr).value();
}

TEST(Contract, EveryExceptionIsOne) {
  for (const TException& exception : kExceptions) {
    int found = 0;
    for (const TKind& kind : Kinds()) {
      const TSubject subject = kind.Make();
      ForEachStored(*subject.Object, [&](const TPublished& published) {
        found += (kind.Name + '.' + published.Path).endsWith(QLatin1String(exception.Path));
      });
    }
    EXPECT_GT(found, 0) << exception.Path;
  }
}

TEST(Contract, ASetterReportsARealChangeOnceAndAnEqualValueNever) {
  ForEachProperty([](const TKind&, const TPublished& published, const QString& path) {
    std::vector<TFormValue> told;
    QObject listener;
    auto* sub = qobject_cast<TPersistent*>(published.Object);
    if (sub) {
      QObject::connect(sub, &TPersistent::OnChange, &listener,
                       [&] { told.push_back(WriteFormValue(published)); });
    }
    const TFormValue before = WriteFormValue(published);
    Change(published);
    const TFormValue after = WriteFormValue(published);
    EXPECT_FALSE(after == before) << ShownText(before).toStdString();
    if (sub && Holds(kTells, path)) {
      ASSERT_EQ(told.size(), 1U);
      EXPECT_TRUE(told[0] == after) << "not complete when it is told of";
    }
    told.clear();
    published.Property.write(published.Object, published.Property.read(published.Object));
    EXPECT_TRUE(WriteFormValue(published) == after);
    EXPECT_TRUE(told.empty() || !Holds(kSilent, path));
  });
}

/// Hears every signal that the own classes of objects declare, and repeats it as its own.
class TListener : public QTimer {
 public:
  void Hear(const QObject& sender, const char* but = "") {
    const QMetaObject* base = sender.metaObject();
    while (base->className()[0] != 'Q') base = base->superClass();
    for (int i = base->methodCount(); i < sender.metaObject()->methodCount(); ++i) {
      const QMetaMethod method = sender.metaObject()->method(i);
      if (method.methodType() != QMetaMethod::Signal || method.name() == but) continue;
      connect(&sender, method, this, QMetaMethod::fromSignal(&QTimer::timeout));
    }
  }
};

TEST(Contract, ACopyTakesEveryPropertyAndIsTheSameUntilOneChanges) {
  ForEachProperty([](const TKind& kind, const TPublished& published, const QString& path) {
    auto* source = qobject_cast<TPersistent*>(published.Object);
    if (!source || !Holds(kCopies, path)) return;
    const TSubject other = kind.Make();
    const TPublished twin = At(other, published.Path);
    auto* copy = static_cast<TPersistent*>(twin.Object);
    copy->Assign(source);
    EXPECT_TRUE(copy->SameAs(source));
    EXPECT_TRUE(source->SameAs(copy));
    Change(published);
    EXPECT_EQ(copy->SameAs(source), !Holds(kDiffers, path));
    EXPECT_EQ(source->SameAs(copy), !Holds(kDiffers, path));
    TListener listener;
    int heard = 0, told = 0, last = 0;
    listener.Hear(*copy, "OnRepaint");
    QObject::connect(&listener, &QTimer::timeout, [&] { ++heard; });
    QObject::connect(copy, &TPersistent::OnChange, &listener, [&] {
      ++told;
      last = heard;
      EXPECT_TRUE(copy->SameAs(source) || !Holds(kOnce, path)) << "told too early";
    });
    copy->Assign(source);
    EXPECT_TRUE(copy->SameAs(source));
    EXPECT_TRUE(WriteFormValue(twin) == WriteFormValue(published));
    EXPECT_TRUE(told == 1 || !Holds(kTells, path) || !Holds(kOnce, path)) << told;
    EXPECT_EQ(last, heard) << "something follows OnChange";
  });
}

TEST(Contract, AWholeDiffersWhenAPartOfItDoes) {
  int parts = 0;
  ForEachProperty([&](const TKind& kind, const TPublished& published, const QString& path) {
    const auto wholeOf = [](const QObject* part) {
      const auto* sub = qobject_cast<const TPersistent*>(part);
      return sub ? qobject_cast<TPersistent*>(sub->Owner()) : nullptr;
    };
    TPersistent* const whole = wholeOf(published.Object);
    if (!whole || !Holds(kCopies, path) || !Holds(kDiffers, path)) return;
    const TSubject other = kind.Make();
    TPersistent* const copy = wholeOf(At(other, published.Path).Object);
    copy->Assign(whole);
    EXPECT_TRUE(copy->SameAs(whole));
    Change(published);
    EXPECT_FALSE(copy->SameAs(whole));
    ++parts;
  });
  EXPECT_GT(parts, 0);
}

TEST(Contract, NothingItselfAndAnotherClassAreNoSource) {
  TClick stranger;
  ForEachProperty([&](const TKind&, const TPublished& published, const QString&) {
    auto* object = qobject_cast<TPersistent*>(published.Object);
    if (!object) return;
    const TFormValue before = WriteFormValue(published);
    QSignalSpy changes(object, &TPersistent::OnChange);
    object->Assign(nullptr);
    object->Assign(object);
    object->Assign(&stranger);
    object->AssignTo(nullptr);
    object->AssignTo(&stranger);
    EXPECT_TRUE(WriteFormValue(published) == before);
    EXPECT_EQ(changes.count(), 0);
    EXPECT_TRUE(object->SameAs(object));
    EXPECT_FALSE(object->SameAs(nullptr));
    EXPECT_FALSE(object->SameAs(&stranger));
  });
}

/// A subject that goes, or lets another one go, at the first signal of any of its objects.
struct TDoomed {
  TSubject Subject;
  TListener Listener;

  explicit TDoomed(const TKind& kind, TSubject* other = nullptr) : Subject(kind.Make()) {
    TSubject* goes = other ? other : &Subject;
    QObject::connect(&Listener, &QTimer::timeout, [goes] { goes->Root.reset(); });
    std::vector<QObject*> objects;
    ForEachPublished(*Subject.Object, [&](const TPublished& published) {
      if (std::ranges::count(objects, published.Object) == 0) objects.push_back(published.Object);
    });
    for (const QObject* object : objects) Listener.Hear(*object);
  }
};

TEST(Contract, AListenerMayDestroyTheSenderAndWhatIsCopied) {
  int destroyed = 0;
  ForEachProperty([&](const TKind& kind, const TPublished& published, const QString&) {
    TDoomed set(kind);
    Change(At(set.Subject, published.Path));
    destroyed += !set.Subject.Root;
    auto* source = qobject_cast<TPersistent*>(published.Object);
    if (!source) return;
    Change(published);
    TDoomed copied(kind);
    static_cast<TPersistent*>(At(copied.Subject, published.Path).Object)->Assign(source);
    TSubject original = kind.Make();
    TDoomed deserted(kind, &original);
    auto* copy = static_cast<TPersistent*>(At(deserted.Subject, published.Path).Object);
    Change(At(original, published.Path));
    copy->Assign(static_cast<TPersistent*>(At(original, published.Path).Object));
  });
  EXPECT_GT(destroyed, 100);
}

}  // namespace
