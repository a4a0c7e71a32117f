#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "model/Color.h"
#include "model/Typedlist.h"
#include "model/Vertex.h"

/// A numbered point: a model node, a node of a data set or a node of the display list.
struct TNode {
  TNode() = default;
  TNode(std::int32_t id, const TVertex& position) : Position(position), ID(id) {}
  TNode(std::int32_t id, double x, double y, double z) : Position{x, y, z}, ID(id) {}

  TVertex Position;             ///< coordinates, amplitude or displacement of the current frame
  std::int32_t ID = 0;          ///< number from the file; need not be unique
  TVertex Angles;               ///< phase angles in radians along x, y and z
  const TNode* Link = nullptr;  ///< model node with the same ID, or null; not owned
};

using TNodeList = TTypedList<TNode, TInBlocks<TNode>>;

/// What joins some of a model's nodes: a bar, a roll, a face or a point.
class TElement {
 public:
  static constexpr std::uint8_t kBar = 1;
  static constexpr std::uint8_t kRoll = 2;
  static constexpr std::uint8_t kFace = 3;

  /// Makes room for the node indices, all 0. A count below 1 becomes 2.
  TElement(std::uint8_t type, std::int32_t nodeCount);

  std::int32_t NodeCount() const { return nodeCount_; }
  std::span<std::int32_t> Nodes() { return {Data(), static_cast<std::size_t>(nodeCount_)}; }
  std::span<const std::int32_t> Nodes() const {
    return {const_cast<TElement*>(this)->Data(), static_cast<std::size_t>(nodeCount_)};
  }

  std::uint8_t Type;                    ///< kBar, kRoll, kFace; any other is a point
  std::int32_t ID = -1;                 ///< number from the file
  bool IsTwoSided = false;              ///< a face that shows from both sides
  TColor Color = TColor::Inherited();   ///< negative: the element colour of the list that draws
  double Radius = 0.0;                  ///< 0: the element radius of the list that draws
  double RollParam1 = 0.0;              ///< of a roll: radius of the shaft
  double RollParam2 = 0.0;              ///< of a roll: shaft length, a fraction of the whole
  const TNodeList* NodeList = nullptr;  ///< the list whose indices Nodes holds; not owned

 private:
  static constexpr std::int32_t kInside = 4;
  std::int32_t* Data() { return more_ ? more_.get() : inside_; }

  std::int32_t nodeCount_;
  std::int32_t inside_[kInside] = {};     ///< the indices of an element of up to four nodes
  std::unique_ptr<std::int32_t[]> more_;  ///< the indices of a larger one
};

using TElementList = TTypedList<TElement, TInBlocks<TElement>>;

/// Component-wise maximum over an element's nodes, each component perhaps from another node;
/// (0, 0, 0) for an element without a node list. Indices outside the list do not count.
TVertex MaxNodeCoordinates(const TElement& element);

/// Order of nodes by ascending ID: -1, 0 or 1. A null operand equals anything.
int CompareNodesID(const TNode* a, const TNode* b);

/// Order of elements by MaxNodeCoordinates: by z, then y, then x, ascending. A null operand equals
/// anything.
int CompareElements(const TElement* a, const TElement* b);
