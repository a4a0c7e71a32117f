#pragma once

#include <string>

/// What two sensors on a pump gave for eight seconds, and how their volts become units.
namespace pump {

inline constexpr int kSampleRate = 1024;  ///< rows per second
inline constexpr int kRows = 8 * kSampleRate;

/// The pump runs at this frequency, in hertz, and its impeller has seven blades.
inline constexpr double kRunning = 25.0;
inline constexpr double kBlades = 7.0;

/// Acceleration of the bearing, m/s2: 0.1 V per g.
inline constexpr double kAccelerationPerVolt = 98.0665;
/// Pressure behind the pump, bar: 1 V at 0 bar, 10 V at 18 bar.
inline constexpr double kPressurePerVolt = 2.0;
inline constexpr double kPressureAtZeroVolt = -2.0;

/// A loose contact: the pressure sensor gives nothing, 0 V, in one of so many rows.
inline constexpr int kRowsPerDropout = 500;

}  // namespace pump

/// The text of the record: a comment, then a row per sample with the volts of both sensors.
///
/// The acceleration is 6 m/s2 at the running frequency, 2.5 at twice and 1.5 at the blades' times
/// that, with noise of 0.4; once a second a loose part knocks. The pressure is 6 bar and pulsates
/// by 0.8 at 2 Hz and by 0.3 with the blades, with noise of 0.05.
std::string MakePumpRecord();
