#include "exchange/Universal.h"

#include "exchange/Universalelements.h"
#include "exchange/Universalfunctions.h"
#include "exchange/Universalheader.h"
#include "exchange/Universalnodes.h"
#include "exchange/Universalreading.h"
#include "exchange/Universalshapes.h"

namespace {

constexpr struct {
  QLatin1StringView Type;
  void (*Read)(TUniversalReading&);
} kReaders[] = {
    {QLatin1StringView("15"), ReadNodes15},      {QLatin1StringView("18"), ReadSystems18},
    {QLatin1StringView("55"), ReadShape55},      {QLatin1StringView("58"), ReadFunction58},
    {QLatin1StringView("58b"), ReadFunction58b}, {QLatin1StringView("82"), ReadTraceLine},
    {QLatin1StringView("151"), ReadHeader},      {QLatin1StringView("164"), ReadUnits},
    {QLatin1StringView("780"), ReadElements780}, {QLatin1StringView("781"), ReadNodes2411},
    {QLatin1StringView("2411"), ReadNodes2411},  {QLatin1StringView("2412"), ReadElements2412},
    {QLatin1StringView("2414"), ReadShape2414},  {QLatin1StringView("2420"), ReadSystems2420},
};

void ReadSet(TUniversalReading& reading) {
  for (const auto& [type, read] : kReaders) {
    if (reading.Type() == type) return read(reading);
  }
  reading.LeaveOut(QStringLiteral("its type is not known"));
}

}  // namespace

bool IsUniversal(std::string_view start) {
  constexpr int kFirstLines = 100;
  TLineScanner lines(start);
  bool marked = false;
  for (int i = 0; i < kFirstLines && lines.Next(); ++i) {
    if (marked && !TypeOn(lines.Line()).empty()) return true;
    marked = IsMark(lines.Line());
  }
  return false;
}

void ReadUniversal(std::string_view text, TJob& job, TFindings& findings,
                   const TLoadProgress& progress) {
  job.BeginFile();
  TUniversalReading reading(text, job, findings, progress);
  while (reading.BeginSet()) {
    ReadSet(reading);
    reading.EndSet();
  }
  if (reading.Rotations == 0) return;
  reading.LeaveOutOfFile(
      QStringLiteral("the rotations of %1").arg(Counted(reading.Rotations, "data set")));
}
