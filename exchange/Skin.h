#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "exchange/Job.h"

/// How many corners a solid has; 0 for what is none.
std::size_t CornersOf(TElementShape solid);

/// A face of a solid: indices of its three or four corners, about which they run counterclockwise
/// for who looks from outside at a solid whose corners stand in the usual order.
struct TSolidFace {
  std::array<std::int32_t, 4> Corners;
  std::uint8_t Count = 0;
  std::uint32_t Solid = 0;  ///< as given to Add
};

/// Finds the outer faces of solids: those that only one of them has. Takes n log n time.
class TSkin {
 public:
  /// Makes room for the faces of as many solids.
  void Expect(std::size_t solids) { faces_.reserve(kMostFaces * solids); }
  /// `corners`: as many as the shape has, some perhaps the same where the solid has collapsed.
  void Add(std::uint32_t solid, TElementShape shape, std::span<const std::int32_t> corners);

  /// The outer faces in the order of the solids. Empties the skin.
  std::vector<TSolidFace> Take();

 private:
  struct TFace {
    std::array<std::int32_t, 4> sorted;
    TSolidFace face;
  };
  static constexpr std::size_t kMostFaces = 6;  ///< of a solid
  TLarge<TFace> faces_;
};

/// Drops corners that follow themselves, around the end too. Returns how many are left.
std::size_t DropRepeated(std::span<std::int32_t> corners);
