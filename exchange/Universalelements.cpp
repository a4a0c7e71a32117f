#include "exchange/Universalelements.h"

#include <algorithm>
#include <array>
#include <map>

namespace {

constexpr std::size_t kLabelsPerLine = 8;
constexpr std::int32_t kMostNodes = 32;  ///< of any element that this format knows

/// Which of the nodes of an element are its corners: nodes at mid-side stand between them, along
/// the edges of a shell, and of a solid floor by floor.
struct TElementCorners {
  TElementShape Shape;
  std::uint8_t NodeCount;
  std::uint8_t Count;
  std::array<std::uint8_t, 8> Nodes;
};

constexpr TElementCorners kElementCorners[] = {
    {TElementShape::Bar, 2, 2, {0, 1}},
    {TElementShape::Bar, 3, 2, {0, 2}},
    {TElementShape::Face, 3, 3, {0, 1, 2}},
    {TElementShape::Face, 4, 4, {0, 1, 2, 3}},
    {TElementShape::Face, 6, 3, {0, 2, 4}},
    {TElementShape::Face, 8, 4, {0, 2, 4, 6}},
    {TElementShape::Tetrahedron, 4, 4, {0, 1, 2, 3}},
    {TElementShape::Tetrahedron, 10, 4, {0, 2, 4, 9}},
    {TElementShape::Wedge, 6, 6, {0, 1, 2, 3, 4, 5}},
    {TElementShape::Wedge, 15, 6, {0, 2, 4, 9, 11, 13}},
    {TElementShape::Brick, 8, 8, {0, 1, 2, 3, 4, 5, 6, 7}},
    {TElementShape::Brick, 20, 8, {0, 2, 4, 6, 12, 14, 16, 18}},
};

constexpr bool IsBeam(std::int32_t descriptor) {
  return descriptor == 11 || (descriptor >= 21 && descriptor <= 24);
}

/// Rigid bars, springs and dampers between two nodes.
constexpr bool IsLink(std::int32_t descriptor) {
  return descriptor == 121 || descriptor == 136 || descriptor == 137 || descriptor == 141;
}

/// The shape of a descriptor; false for what is not drawn.
bool ShapeOf(std::int32_t descriptor, TElementShape& shape) {
  const std::int32_t order = descriptor % 10;
  if (IsBeam(descriptor) || IsLink(descriptor)) {
    shape = TElementShape::Bar;
  } else if (descriptor > 40 && descriptor < 100 &&
             (order == 1 || order == 2 || order == 4 || order == 5)) {
    shape = TElementShape::Face;
  } else if (descriptor == 111 || descriptor == 118) {
    shape = TElementShape::Tetrahedron;
  } else if (descriptor == 112 || descriptor == 113) {
    shape = TElementShape::Wedge;
  } else if (descriptor == 115 || descriptor == 116) {
    shape = TElementShape::Brick;
  } else {
    return false;
  }
  return true;
}

const TElementCorners* CornersOf(TElementShape shape, std::int32_t nodeCount) {
  for (const TElementCorners& corners : kElementCorners) {
    if (corners.Shape == shape && corners.NodeCount == nodeCount) return &corners;
  }
  return nullptr;
}

void AddElement(TJob& job, std::int32_t id, const TElementCorners& corners,
                const std::array<std::int32_t, kMostNodes>& nodes) {
  job.Elements.push_back({.ID = id,
                          .First = static_cast<std::uint32_t>(job.Corners.size()),
                          .Count = corners.Count,
                          .Shape = corners.Shape,
                          .Set = static_cast<std::uint32_t>(job.Places.size())});
  for (std::uint8_t i = 0; i < corners.Count; ++i) job.Corners.push_back(nodes[corners.Nodes[i]]);
}

struct TElementHead {
  std::int32_t ID;
  std::int32_t Descriptor;
  std::int32_t NodeCount;
};

/// The elements of one data set.
class TElementReader {
 public:
  /// `headFields`: how many integers the first line of an element has, the number of nodes last.
  TElementReader(TUniversalReading& reading, std::size_t headFields)
      : reading_(reading), headFields_(headFields) {}

  void Read() {
    TJob& job = reading_.Job;
    const std::size_t before = job.Elements.size();
    TElementHead head;
    while (reading_.Next()) {
      if (!ReadHead(head)) {
        reading_.LeaveOutStray(QStringLiteral("element"));
      } else if (ReadNodes(head)) {
        Add(head);
      }
    }
    job.Places.push_back(reading_.Place());
    reading_.Use(Counted(job.Elements.size() - before, kElement));
    NoteUnknown();
  }

 private:
  const QString kElement = QStringLiteral("element");

  bool ReadHead(TElementHead& head) const {
    std::array<std::int32_t, 8> fields;
    const int count = static_cast<int>(headFields_);
    if (ReadColumns(reading_.Line(), {.Ints = count}, fields.data(), nullptr) < count) return false;
    head = {fields[0], fields[1], fields[headFields_ - 1]};
    return true;
  }

  bool ReadNodes(const TElementHead& head) {
    if (head.NodeCount < 1 || head.NodeCount > kMostNodes) {
      reading_.LeaveOutLine(
          QStringLiteral("element %1 cannot have %2 nodes").arg(head.ID).arg(head.NodeCount));
      return false;
    }
    if (IsBeam(head.Descriptor)) PassOrientation(head);
    const auto wanted = static_cast<std::size_t>(head.NodeCount);
    for (std::size_t count = 0; count < wanted; count += kLabelsPerLine) {
      if (ReadNodeLine(count, std::min(kLabelsPerLine, wanted - count))) continue;
      reading_.LeaveOutLine(QStringLiteral("element %1 has not the %2 nodes that it announces")
                                .arg(head.ID)
                                .arg(wanted));
      return false;
    }
    return true;
  }

  /// Some writers leave out the line with the orientation of a beam.
  void PassOrientation(const TElementHead& head) {
    std::array<std::int32_t, 3> orientation;
    if (reading_.ReadInts(orientation) == 2 && head.NodeCount == 2) reading_.Back();
  }

  /// A line with more nodes begins the next element, or is noted as a stray one.
  bool ReadNodeLine(std::size_t at, std::size_t wanted) {
    std::array<std::int32_t, kLabelsPerLine> labels;
    const auto found = static_cast<std::size_t>(reading_.ReadInts(labels));
    const bool more =
        std::any_of(labels.begin() + static_cast<std::ptrdiff_t>(wanted),
                    labels.begin() + static_cast<std::ptrdiff_t>(std::max(found, wanted)),
                    [](std::int32_t label) { return label != 0; });
    if (more) reading_.Back();
    if (more || found < wanted) return false;
    std::copy_n(labels.begin(), wanted, nodes_.begin() + static_cast<std::ptrdiff_t>(at));
    return true;
  }

  void Add(const TElementHead& head) {
    constexpr std::size_t kRecordLength = 80;
    TElementShape shape;
    if (!ShapeOf(head.Descriptor, shape)) return CountUnknown(head.Descriptor);
    const TElementCorners* const corners = CornersOf(shape, head.NodeCount);
    if (!corners) {
      reading_.LeaveOutLine(QStringLiteral("element %1 of descriptor %2 cannot have %3 nodes")
                                .arg(head.ID)
                                .arg(head.Descriptor)
                                .arg(head.NodeCount));
      return;
    }
    if (!reading_.HasRoom()) {
      reading_.LeaveOutLine(QStringLiteral("element %1: there are too many").arg(head.ID));
      return;
    }
    reading_.MakeRoom(reading_.Job.Elements, kRecordLength);
    reading_.MakeRoom(reading_.Job.Corners, kRecordLength / 4);
    AddElement(reading_.Job, head.ID, *corners, nodes_);
  }

  void CountUnknown(std::int32_t descriptor) {
    constexpr std::size_t kMostDescriptors = 50;
    if (unknown_.size() < kMostDescriptors || unknown_.contains(descriptor)) {
      ++unknown_[descriptor];
    } else {
      ++others_;
    }
  }

  void NoteUnknown() {
    for (const auto& [descriptor, count] : unknown_) {
      reading_.LeaveOut(
          QStringLiteral("%1 of descriptor %2").arg(Counted(count, kElement)).arg(descriptor));
    }
    if (others_ == 0) return;
    reading_.LeaveOut(QStringLiteral("%1 of other descriptors").arg(Counted(others_, kElement)));
  }

  TUniversalReading& reading_;
  std::size_t headFields_;
  std::array<std::int32_t, kMostNodes> nodes_ = {};
  std::map<std::int32_t, std::size_t> unknown_;  ///< elements of each descriptor not drawn
  std::size_t others_ = 0;
};

/// Draws strokes between the nodes of a trace line.
class TPen {
 public:
  TPen(TJob& job, std::int32_t id) : job_(job), id_(id) {}

  /// 0 lifts the pen.
  void MoveTo(std::int32_t label) {
    if (label != 0) {
      job_.Corners.push_back(label);
      if (at_ != 0 && at_ != label) Stroke();
    }
    at_ = label;
  }

 private:
  void Stroke() {
    job_.Elements.push_back({.ID = id_,
                             .First = static_cast<std::uint32_t>(job_.Corners.size() - 2),
                             .Count = 2,
                             .IsTraced = true,
                             .Set = static_cast<std::uint32_t>(job_.Places.size())});
  }

  TJob& job_;
  std::int32_t id_;
  std::int32_t at_ = 0;
};

}  // namespace

void ReadTraceLine(TUniversalReading& reading) {
  std::array<std::int32_t, 3> head = {};
  if (reading.ReadInts(head) < 2) {
    reading.LeaveOut(QStringLiteral("its first line holds no number of nodes"));
    return;
  }
  const QString name = reading.ReadText();
  TJob& job = reading.Job;
  const std::size_t before = job.Elements.size();
  TPen pen(job, head[0]);
  std::array<std::int32_t, kLabelsPerLine> labels;
  std::size_t count = 0;
  while (reading.Next()) {
    if (!reading.HasRoom()) {
      reading.LeaveOutLine(
          QStringLiteral("the rest of the trace line: there are too many strokes"));
      break;
    }
    const int found = ReadColumns(reading.Line(), {.Ints = labels.size()}, labels.data(), nullptr);
    if (found == 0) reading.LeaveOutStray(QStringLiteral("node"));
    for (std::size_t i = 0; i < static_cast<std::size_t>(found); ++i) pen.MoveTo(labels[i]);
    count += static_cast<std::size_t>(found);
  }
  job.Places.push_back(reading.Place());
  reading.Use(QStringLiteral("trace line \"%1\" of %2")
                  .arg(name, Counted(job.Elements.size() - before, QStringLiteral("stroke"))));
  if (head[1] >= 0 && count == static_cast<std::size_t>(head[1])) return;
  reading.WarnOfSet(QStringLiteral("it announces %1 nodes and holds %2").arg(head[1]).arg(count));
}

void ReadElements780(TUniversalReading& reading) { TElementReader(reading, 8).Read(); }

void ReadElements2412(TUniversalReading& reading) { TElementReader(reading, 6).Read(); }
