#pragma once

#include "components/channels/Channelset.h"

/// The sets of the monitor, in their order in the source.
enum TMonitoredSet : int { kMast, kWeather, kMachine };

/// Gives a source the three sets, with units, number formats, limits and all histories:
///
/// - "Mast": packages "data" with the id "mast", four accelerations.
/// - "Weather": packages "wind" with the id "tower".
/// - "Machine": 16 inputs of a serial device of `deviceRate` Hz. The first one counts packets, the
///   others are voltages of -10 to 10 V over the whole range of the converter.
void AddMonitoredSets(TChannelSource& source, double deviceRate);

/// All values of the last minute, hour, ...: what the history of the interval holds, and what the
/// shorter ones have not passed on to it yet. With its moments; a Count of 0 for nothing.
TStatSet Summary(const TChannelStatistics& statistics, TStatInterval interval);

/// The value that came last to a channel, in its unit.
double LatestValue(const TChannelSet& set, const TChannel& channel);

/// A value as the channel shows it: number and unit. A number too long to be read has an exponent.
QString ValueText(TChannel& channel, double value);

/// What the limits are, such as "Alarm above 12 m/s, warning from 10.5 m/s on"; empty without any.
QString LimitsText(TChannel& channel);
