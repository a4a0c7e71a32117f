#pragma once

#include <cstdint>
#include <deque>
#include <random>
#include <string>
#include <string_view>
#include <vector>

/// What an input measures, in parts of the full scale: a level, and a wave about it that swells and
/// falls.
struct TDeviceWave {
  double level = 0.0;
  double amplitude = 0.0;
  double frequencyHz = 1.0;
  double swell = 0.0;         ///< by which part the amplitude swells and falls
  double swellSeconds = 1.0;  ///< from swell to swell
  double noise = 0.0;

  /// At a time, without the noise.
  double Value(double seconds) const;
};

/// A motor with its pump: shaft speed, vibration at the drive end, which comes and goes, and at the
/// other end, bearing temperature, oil pressure.
std::vector<TDeviceWave> MachineWaves();

/// A measuring device as its serial line sees it. Works on memory; the caller gives the time, in
/// seconds from any start, never backwards.
///
/// It takes the commands "lroff", "lron", "sloop0", "sloop1", the data requests "cr", "mr" and
/// "sr", each ended by a carriage return, and BEL, which needs none. In the streaming loop with
/// loop-read on, a request starts a stream of packets with a marker packet before it; else it is
/// answered by one packet. The first inputs measure the Waves. Of those behind, the very first
/// counts the packets, and the others are sine waves of 1 Hz, 2 Hz, ... at half the full scale.
class TDeviceSimulator {
 public:
  struct TFaults {
    double dropRate = 0.0;     ///< probability that a byte is lost
    double garbageRate = 0.0;  ///< probability that 1 to 40 random bytes stand before a packet
    double lateSeconds = 0.0;  ///< all that is sent comes this much later
    bool silent = false;       ///< answers nothing and streams nothing
    bool noise = false;        ///< random bytes in place of the packets
  };

  /// 1 to 85 with 24 bits per sample, to 127 with 16; more are left out of the packets.
  int Inputs = 16;
  double RateHz = 100.0;  ///< packets per second while streaming, above 0
  int MarkerEvery = 0;    ///< packets from one marker to the next; 0 for one at the start
  TFaults Faults;
  std::vector<TDeviceWave> Waves;

  /// Takes bytes that have come from the other end.
  void Receive(std::string_view bytes, double now);
  /// What leaves the device up to now.
  std::string Send(double now);

  bool IsStreaming() const { return streaming_; }
  bool IsPolledLoop() const { return polledLoop_; }
  bool IsLoopReadOn() const { return loopRead_; }
  /// Packets made, whether faults hurt them later or not.
  std::uint64_t PacketsSent() const { return packets_; }
  std::uint64_t MarkersSent() const { return markers_; }
  std::uint64_t RequestsTaken() const { return requests_; }

 private:
  struct TMessage {
    double due;
    std::string bytes;
  };

  void Obey(std::string_view command, double now);
  void Stop();
  void TakeRequest(int bytesPerSample, double now);
  void Stream(double now);
  void PutMarker(double now);
  void PutPacket(double now);
  std::uint32_t Sample(int input, double now);
  void Put(std::string bytes, double now);
  double Chance() { return static_cast<double>(random_()) / 4294967296.0; }

  std::string command_;  ///< what has come of the next command
  bool polledLoop_ = true;
  bool loopRead_ = false;
  bool streaming_ = false;
  int bytesPerSample_ = 3;
  double nextSample_ = 0.0;
  std::uint64_t streamed_ = 0;  ///< packets since the stream was started
  std::deque<TMessage> queue_;
  std::uint64_t packets_ = 0;
  std::uint64_t markers_ = 0;
  std::uint64_t requests_ = 0;
  std::mt19937 random_{1};
};
