#include "model/Message.h"

#include <cstdio>
#include <utility>

#include "model/Oneline.h"

namespace {

std::function<void(const QString&)>& Sink() {
  static std::function<void(const QString&)> sink;
  return sink;
}

}  // namespace

void ShowMessage(const QString& text) {
  if (Sink()) {
    Sink()(text);
  } else {
    std::fprintf(stderr, "%s\n", qPrintable(Harmless(text)));
  }
}

void SetMessageSink(std::function<void(const QString&)> sink) { Sink() = std::move(sink); }
