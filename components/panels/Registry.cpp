#include "components/panels/Registry.h"

#include <algorithm>
#include <type_traits>
#include <vector>

#include "components/channels/Channelset.h"
#include "components/channels/Channelvalue.h"
#include "components/channels/Datachannel.h"
#include "components/channels/Runningstatistics.h"
#include "components/channels/Statsstorage.h"
#include "components/channels/Variable.h"
#include "components/comms/Qlxmaster.h"
#include "components/comms/Qlxxml.h"
#include "components/controls/Arrow.h"
#include "components/controls/Colorlabel.h"
#include "components/controls/Compass.h"
#include "components/controls/Historygraph.h"
#include "components/controls/Hyperlink.h"
#include "components/controls/Imagecontrol.h"
#include "components/controls/Linkedcontrols.h"
#include "components/controls/Standardcomponents.h"
#include "components/controls/Textlabel.h"
#include "components/controls/Textpanel.h"
#include "components/controls/Valueedit.h"
#include "components/graphing/Basichistogram.h"
#include "components/graphing/Graph.h"
#include "components/sources/Datalogger.h"
#include "components/sources/Datasheet.h"
#include "components/sources/Filereader.h"
#include "components/sources/Fourier.h"
#include "components/sources/Macro.h"
#include "components/sources/Simulator.h"
#include "components/sources/Stringreader.h"
#include "components/sources/Tables.h"

namespace {

template <class T, class = void>
constexpr bool kLoadsInSteps = false;
template <class T>
constexpr bool kLoadsInSteps<T, std::void_t<decltype(&T::BeginLoading)>> = true;

template <class T, class = void>
constexpr bool kIsContainer = false;
template <class T>
constexpr bool kIsContainer<T, std::void_t<decltype(T::kIsContainer)>> = true;

template <class T>
QWidget* Make(QWidget* parent) {
  return new T(parent);
}

template <class T>
void BeginLoading(QWidget* component) {
  if constexpr (kLoadsInSteps<T>) static_cast<T*>(component)->BeginLoading();
}

template <class T>
void Loaded(QWidget* component) {
  static_cast<T*>(component)->Loaded();
}

template <class T>
TComponentClass Component(const char* page, const char* header) {
  return {QString::fromLatin1(T::staticMetaObject.className()),
          QString::fromLatin1(page),
          QString::fromLatin1(header),
          kIsContainer<T>,
          &T::staticMetaObject,
          Make<T>,
          BeginLoading<T>,
          Loaded<T>};
}

std::vector<TComponentClass> MakeClasses() {
  return {
      Component<TSignalSimulator>("Sources", "components/sources/Simulator.h"),
      Component<TFileReader>("Sources", "components/sources/Filereader.h"),
      Component<TStringReader>("Sources", "components/sources/Stringreader.h"),
      Component<TQLXXMLClient>("Sources", "components/comms/Qlxxml.h"),
      Component<TXMLFileClient>("Sources", "components/comms/Qlxxml.h"),
      Component<TQLXMasterClient>("Sources", "components/comms/Qlxmaster.h"),
      Component<TVariable>("Data", "components/channels/Variable.h"),
      Component<TDataChannel>("Data", "components/channels/Datachannel.h"),
      Component<TChannelSource>("Data", "components/channels/Channelset.h"),
      Component<TChannelValue>("Data", "components/channels/Channelvalue.h"),
      Component<TRunningStatistics>("Data", "components/channels/Runningstatistics.h"),
      Component<TStatsStorage>("Data", "components/channels/Statsstorage.h"),
      Component<TMacro>("Analysis", "components/sources/Macro.h"),
      Component<TFFTChannel>("Analysis", "components/sources/Fourier.h"),
      Component<TBasicHistogram>("Analysis", "components/graphing/Basichistogram.h"),
      Component<TOccurrenceHistogram>("Analysis", "components/graphing/Basichistogram.h"),
      Component<TKorvalGraph>("Graphs", "components/graphing/Graph.h"),
      Component<TLinkedGraph>("Graphs", "components/controls/Linkedgraph.h"),
      Component<THistoryGraph>("Graphs", "components/controls/Historygraph.h"),
      Component<TDataTable>("Tables", "components/sources/Tables.h"),
      Component<TDataSheet>("Tables", "components/sources/Datasheet.h"),
      Component<TDataLogger>("Tables", "components/sources/Datalogger.h"),
      Component<TLinkedLabel>("Instruments", "components/controls/Linkedlabel.h"),
      Component<TCompass>("Instruments", "components/controls/Compass.h"),
      Component<TArrow>("Instruments", "components/controls/Arrow.h"),
      Component<TValueEdit>("Instruments", "components/controls/Valueedit.h"),
      Component<TColorLabel>("Instruments", "components/controls/Colorlabel.h"),
      Component<TTextLabel>("Standard", "components/controls/Textlabel.h"),
      Component<TTextPanel>("Standard", "components/controls/Textpanel.h"),
      Component<THyperlink>("Standard", "components/controls/Hyperlink.h"),
      Component<TImageControl>("Standard", "components/controls/Imagecontrol.h"),
  };
}

}  // namespace

std::span<const TComponentClass> ComponentClasses() {
  static const std::vector<TComponentClass> classes = MakeClasses();
  return classes;
}

const TComponentClass* FindComponentClass(const QString& name) {
  const auto classes = ComponentClasses();
  const auto found = std::ranges::find(classes, name, &TComponentClass::Name);
  return found == classes.end() ? nullptr : &*found;
}
