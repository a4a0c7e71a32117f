#include "exchange/Universalheader.h"

#include <array>

#include "model/Oneline.h"
#include "model/Reading.h"

namespace {

bool IsFactor(double value) { return IsUsable(value) && value > 0.0; }

}  // namespace

void ReadHeader(TUniversalReading& reading) {
  const QString name = reading.ReadText();
  if (reading.HasHeader) {
    reading.LeaveOut(QStringLiteral("a second header; the first counts"));
    return;
  }
  reading.HasHeader = true;
  if (reading.Job.ModelName.isEmpty()) reading.Job.ModelName = name;
  const bool isNamed = !name.isEmpty() && name != QLatin1String("NONE");
  reading.Use(isNamed ? QStringLiteral("header of the model \"%1\"").arg(name)
                      : QStringLiteral("header"));
}

void ReadUnits(TUniversalReading& reading) {
  constexpr std::size_t kNameColumn = 10;
  constexpr std::size_t kNameLength = 20;
  TUnits units;
  if (!reading.Next() || !ToInt(reading.Line().substr(0, kNameColumn), units.Code)) {
    reading.LeaveOut(QStringLiteral("it does not say which units"));
    return;
  }
  const std::string_view line = reading.Line().substr(std::min(kNameColumn, reading.Line().size()));
  units.Name = FromBytes(Trimmed(line.substr(0, kNameLength)));
  std::int32_t mode = 0;
  if (line.size() > kNameLength && ToInt(line.substr(kNameLength), mode)) {
    units.TemperatureMode = mode;
  }
  std::array<double, 4> factors = {1.0, 1.0, 1.0, 0.0};
  const int found = reading.ReadReals(factors, 3, 25);
  if (found == 0 || !IsFactor(factors[0]) || !IsFactor(factors[1]) || !IsFactor(factors[2])) {
    reading.LeaveOut(QStringLiteral("its factors are not above 0"));
    return;
  }
  units.Length = factors[0];
  units.Force = factors[1];
  units.Temperature = factors[2];
  if (IsUsable(factors[3])) units.TemperatureOffset = factors[3];
  double& length = reading.Job.LengthOfFile.back();
  if (length != 0.0 && length != units.Length) {
    reading.LeaveOut(QStringLiteral("it names another unit of length; the first counts"));
    return;
  }
  length = units.Length;
  if (!reading.Job.Units.IsGiven()) reading.Job.Units = units;
  reading.Use(QStringLiteral("units %1").arg(units.Name));
}
