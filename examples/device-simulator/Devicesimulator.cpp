#include "examples/device-simulator/Devicesimulator.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

double Sine(double frequencyHz, double seconds) {
  return std::sin(2.0 * std::numbers::pi * std::fmod(frequencyHz * seconds, 1.0));
}

}  // namespace

double TDeviceWave::Value(double seconds) const {
  const double swollen = 1.0 + swell * Sine(1.0 / swellSeconds, seconds);
  return level + amplitude * swollen * Sine(frequencyHz, seconds);
}

std::vector<TDeviceWave> MachineWaves() {
  return {{0.493, 0.003, 0.11, 0.0, 1.0, 0.001},
          {0.0, 0.26, 24.7, 0.5, 30.0, 0.02},
          {0.0, 0.14, 24.7, 0.2, 47.0, 0.02},
          {0.62, 0.045, 1.0 / 90.0, 0.0, 1.0, 0.001},
          {0.42, 0.015, 0.05, 0.0, 1.0, 0.002}};
}

void TDeviceSimulator::Receive(std::string_view bytes, double now) {
  constexpr std::size_t kLongestCommand = 64;
  for (const char byte : bytes) {
    if (byte == '\a') {
      Stop();
      queue_.clear();
      command_.clear();
    } else if (byte == '\r') {
      Obey(command_, now);
      command_.clear();
    } else if (command_.size() < kLongestCommand) {
      command_ += byte;
    }
  }
}

void TDeviceSimulator::Obey(std::string_view command, double now) {
  if (command == "lroff") {
    loopRead_ = false;
    Stop();
  } else if (command == "lron") {
    loopRead_ = true;
  } else if (command == "sloop0") {
    polledLoop_ = false;
  } else if (command == "sloop1") {
    polledLoop_ = true;
    Stop();
  } else if (command == "cr" || command == "sr") {
    TakeRequest(2, now);
  } else if (command == "mr") {
    TakeRequest(3, now);
  }
}

void TDeviceSimulator::Stop() { streaming_ = false; }

void TDeviceSimulator::TakeRequest(int bytesPerSample, double now) {
  ++requests_;
  bytesPerSample_ = bytesPerSample;
  if (polledLoop_ || !loopRead_) {
    PutPacket(now);
    return;
  }
  streaming_ = true;
  streamed_ = 0;
  nextSample_ = now;
}

std::string TDeviceSimulator::Send(double now) {
  if (streaming_) Stream(now);
  std::string sent;
  for (; !queue_.empty() && queue_.front().due <= now; queue_.pop_front()) {
    for (const char byte : queue_.front().bytes) {
      if (Faults.dropRate <= 0.0 || Chance() >= Faults.dropRate) sent += byte;
    }
  }
  return sent;
}

void TDeviceSimulator::Stream(double now) {
  // A device that was held up for long has missed samples; it does not send them all at once.
  nextSample_ = std::max(nextSample_, now - 1.0);
  for (; nextSample_ <= now; nextSample_ += 1.0 / RateHz) {
    const bool marks =
        MarkerEvery > 0 ? streamed_ % static_cast<unsigned>(MarkerEvery) == 0 : streamed_ == 0;
    if (marks) PutMarker(nextSample_);
    PutPacket(nextSample_);
    ++streamed_;
  }
}

void TDeviceSimulator::PutMarker(double now) {
  ++markers_;
  Put({'\3', 'T', static_cast<char>(markers_ >> 8 & 0xFF), static_cast<char>(markers_ & 0xFF)},
      now);
}

/// 24 bits; 0x800000 stands for 0.
std::uint32_t TDeviceSimulator::Sample(int input, double now) {
  constexpr double kScale = 0x800000;
  const auto index = static_cast<std::size_t>(input);
  double value = 0.0;
  if (index < Waves.size()) {
    const TDeviceWave& wave = Waves[index];
    value = wave.Value(now);
    if (wave.noise > 0.0) value += wave.noise * (2.0 * Chance() - 1.0);
  } else if (input == 0) {
    return static_cast<std::uint32_t>(bytesPerSample_ == 3 ? packets_ : packets_ << 8);
  } else {
    value = 0.5 * Sine(input, now);
  }
  return static_cast<std::uint32_t>(
      std::lround(std::clamp(kScale + kScale * value, 0.0, 2.0 * kScale - 1.0)));
}

void TDeviceSimulator::PutPacket(double now) {
  const int inputs = std::clamp(Inputs, 1, 255 / bytesPerSample_);
  std::string bytes(1, static_cast<char>(inputs * bytesPerSample_));
  for (int input = 0; input < inputs; ++input) {
    const std::uint32_t sample = Sample(input, now);
    bytes += static_cast<char>(sample >> 16 & 0xFF);
    bytes += static_cast<char>(sample >> 8 & 0xFF);
    if (bytesPerSample_ == 3) bytes += static_cast<char>(sample & 0xFF);
  }
  ++packets_;
  if (Faults.garbageRate > 0.0 && Chance() < Faults.garbageRate) {
    std::string garbage(1 + random_() % 40, '\0');
    for (char& byte : garbage) byte = static_cast<char>(random_() & 0xFF);
    bytes.insert(0, garbage);
  }
  if (Faults.noise) {
    for (char& byte : bytes) byte = static_cast<char>(random_() & 0xFF);
  }
  Put(std::move(bytes), now);
}

void TDeviceSimulator::Put(std::string bytes, double now) {
  if (!Faults.silent) queue_.push_back({now + Faults.lateSeconds, std::move(bytes)});
}
