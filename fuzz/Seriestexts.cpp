#include <cstdlib>

#include <QGuiApplication>

#include "components/controls/Colorlevels.h"
#include "components/graphing/Serieslist.h"

namespace {

/// What a list writes, it reads as the same.
void CheckSeries(const QString& text) {
  TSeriesList list;
  if (!list.ReadProperties(text)) return;
  const QString written = list.WriteProperties();
  TSeriesList again;
  if (!again.ReadProperties(written) || again.WriteProperties() != written) std::abort();
  list.RestoreProperties(text);
  if (list.WriteProperties() != written) std::abort();
}

/// Levels stand by their limits, and every value is in the one below it.
void CheckLevels(const QString& text) {
  TColorLevels levels;
  levels.SetLevels(text.split('\n'));
  for (int i = 1; i < levels.Count(); ++i) {
    if (!(levels.Get(i - 1).Limit <= levels.Get(i).Limit)) std::abort();
  }
  for (const double value : {-1e300, 0.0, 1.0, 80.0, 1e300}) {
    const int level = levels.LevelOf(value, -1);
    if (level < -1 || level >= levels.Count()) std::abort();
    if (level >= 0 && levels.Get(level).Limit > value) std::abort();
  }
}

}  // namespace

/// Texts of a form that describe series and colour levels.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const auto quiet =
      qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  Q_UNUSED(quiet)
  const QString text =
      QString::fromUtf8(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
  CheckSeries(text);
  CheckLevels(text);
  return 0;
}
