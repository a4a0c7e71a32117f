#pragma once

#include <QColor>
#include <array>
#include <cstdint>

/// A 32-bit colour value as files and forms hold it: red in the low byte, then green, then blue.
/// Two values stand for no colour of their own: None() is not painted, Inherited() (-1) takes the
/// colour of the surrounding list.
class TColor {
 public:
  constexpr TColor() = default;  ///< black
  constexpr explicit TColor(std::int32_t value) : value_(value) {}

  static constexpr TColor FromRgb(int red, int green, int blue) {
    return TColor((red & 0xff) | (green & 0xff) << 8 | (blue & 0xff) << 16);
  }
  static TColor FromQColor(const QColor& c) { return FromRgb(c.red(), c.green(), c.blue()); }

  static constexpr TColor Black() { return FromRgb(0, 0, 0); }
  static constexpr TColor White() { return FromRgb(255, 255, 255); }
  static constexpr TColor Green() { return FromRgb(0, 255, 0); }
  static constexpr TColor Blue() { return FromRgb(0, 0, 255); }
  static constexpr TColor Yellow() { return FromRgb(255, 255, 0); }
  static constexpr TColor None() { return TColor(0x1fffffff); }
  static constexpr TColor Inherited() { return TColor(-1); }

  constexpr std::int32_t Value() const { return value_; }
  constexpr int RedPart() const { return value_ & 0xff; }
  constexpr int GreenPart() const { return value_ >> 8 & 0xff; }
  constexpr int BluePart() const { return value_ >> 16 & 0xff; }

  /// True for every negative value, the form in which files say "the list's colour".
  constexpr bool IsInherited() const { return value_ < 0; }
  constexpr bool IsNone() const { return *this == None(); }

  /// Half way to a middle grey: paler on black, darker on white, and still to be told on both.
  constexpr TColor HalfGrey() const {
    constexpr int kGrey = 128;
    return FromRgb((RedPart() + kGrey) / 2, (GreenPart() + kGrey) / 2, (BluePart() + kGrey) / 2);
  }

  QColor ToQColor() const { return {RedPart(), GreenPart(), BluePart()}; }
  /// Red, green and blue in [0, 1] for OpenGL.
  constexpr std::array<float, 3> ToFloats() const {
    return {static_cast<float>(RedPart()) / 255.0f, static_cast<float>(GreenPart()) / 255.0f,
            static_cast<float>(BluePart()) / 255.0f};
  }

  friend constexpr bool operator==(TColor, TColor) = default;

 private:
  std::int32_t value_ = 0;
};
