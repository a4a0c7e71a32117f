#include "components/package/Registry.h"

#include <algorithm>
#include <vector>

#include "components/channels/Datachannel.h"
#include "components/channels/Variable.h"
#include "components/controls/Arrow.h"
#include "components/controls/Compass.h"
#include "components/controls/Standardcomponents.h"
#include "components/graphing/Graph.h"
#include "components/sources/Datalogger.h"
#include "components/sources/Datasheet.h"
#include "components/sources/Tables.h"

namespace {

template <class T>
TComponentClass Component(const char* page, const char* header) {
  return {QString::fromLatin1(T::staticMetaObject.className()), QString::fromLatin1(page),
          QString::fromLatin1(header), requires {T::kIsContainer;
}
, &T::staticMetaObject, [](QWidget* parent) -> QWidget* { return new T(parent); },
    [](QWidget* component) {
      if constexpr (requires(T & t) { t.BeginLoading(); }) {
        static_cast<T*>(component)->BeginLoading();
      } else {
        Q_UNUSED(component)
      }
    },
    [](QWidget* component) { static_cast<T*>(component)->Loaded(); }
};  // namespace
}

}  // namespace

std::span<const TComponentClass> ComponentClasses() {
  static const std::vector<TComponentClass> classes = {
      Component<TVariable>("Data", "components/channels/Variable.h"),
      Component<TDataChannel>("Data", "components/channels/Datachannel.h"),
      Component<TKorvalGraph>("Graphs", "components/graphing/Graph.h"),
      Component<TDataTable>("Tables", "components/sources/Tables.h"),
      Component<TDataSheet>("Tables", "components/sources/Datasheet.h"),
      Component<TDataLogger>("Tables", "components/sources/Datalogger.h"),
      Component<TCompass>("Instruments", "components/controls/Compass.h"),
      Component<TArrow>("Instruments", "components/controls/Arrow.h"),
      Component<TValueEdit>("Instruments", "components/controls/Valueedit.h"),
      Component<TColorLabel>("Instruments", "components/controls/Colorlabel.h"),
      Component<TTextLabel>("Standard", "components/controls/Textlabel.h"),
      Component<TTextPanel>("Standard", "components/controls/Textpanel.h"),
      Component<THyperlink>("Standard", "components/controls/Hyperlink.h"),
      Component<TImageControl>("Standard", "components/controls/Imagecontrol.h"),
  };
  return classes;
}

const TComponentClass* FindComponentClass(const QString& name) {
  const auto classes = ComponentClasses();
  const auto found = std::ranges::find(classes, name, &TComponentClass::Name);
  return found == classes.end() ? nullptr : &*found;
}
