// Settings files: any text is read, and saving into it twice is the same as saving once.

#include "viewer/window/Settings.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QByteArray text(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  const TSettings settings = ParseSettings(text);
  const QByteArray once = UpdateSettings(text, settings);
  if (UpdateSettings(once, settings) != once) std::abort();
  if (UpdateSettings({}, ParseSettings(once)) != UpdateSettings({}, settings)) std::abort();
  return 0;
}
