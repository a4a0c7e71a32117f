#include "exchange/Assembly.h"

#include <QHashFunctions>
#include <algorithm>
#include <bit>
#include <map>

#include "exchange/Lengths.h"
#include "exchange/Numberlist.h"
#include "exchange/Skin.h"
#include "exchange/Systems.h"
#include "model/Reading.h"

namespace {

/// How far apart, relative to its largest coordinate, two places of one node are the same: formats
/// of five digits stand beside those of sixteen.
constexpr double kSamePlace = 1e-5;

bool IsUsablePlace(const TVertex& p) { return IsUsable(p.x) && IsUsable(p.y) && IsUsable(p.z); }

/// Makes the nodes of a model.
class TNodeAssembly {
 public:
  TNodeAssembly(const TJob& job, TModelContent& content, TFindings& findings)
      : job_(job),
        content_(content),
        findings_(findings),
        lengths_(job),
        systems_(lengths_.Systems(), findings) {}

  void Assemble() {
    content_.Nodes.Reserve(job_.Nodes.size());
    content_.Display.Reserve(job_.Nodes.size());
    std::vector<std::int32_t> ids;
    ids.reserve(job_.Nodes.size());
    for (const std::uint64_t key : KeysByNumber()) {
      const auto place = static_cast<std::uint32_t>(key);
      const TJobNode& node = job_.Nodes[place];
      NoteUnknownSystem(node.Definition);
      NoteUnknownSystem(node.Displacement);
      if (!Add(node, FileOf(place))) continue;
      ids.push_back(node.ID);
    }
    content_.Index.Build(ids);
    Centre();
    lengths_.Note(findings_);
    NoteTheRest();
  }

 private:
  /// The nodes by number, those with one number in the order of the files: the number in the upper
  /// half, the place in the lower one.
  TLarge<std::uint64_t> KeysByNumber() const {
    constexpr std::uint32_t kSign = 0x8000'0000;  // negative numbers come first
    TLarge<std::uint64_t> keys;
    keys.reserve(job_.Nodes.size());
    for (std::size_t i = 0; i < job_.Nodes.size(); ++i) {
      const std::uint32_t number = static_cast<std::uint32_t>(job_.Nodes[i].ID) ^ kSign;
      keys.push_back(std::uint64_t{number} << 32 | i);
    }
    if (!std::ranges::is_sorted(keys)) std::ranges::sort(keys);
    return keys;
  }

  int FileOf(std::uint32_t node) const {
    const auto behind = std::ranges::upper_bound(job_.FirstOfFile, node);
    return static_cast<int>(behind - job_.FirstOfFile.begin()) - 1;
  }

  /// Whether the node is new to the model and has a place.
  bool Add(const TJobNode& node, int file) {
    const TVertex place =
        systems_.ToGlobal(node.Definition, node.Coordinates, lengths_.Factor(file));
    if (!IsUsablePlace(place)) {
      unusable_[file].Add(node.ID);
      return false;
    }
    const std::size_t count = content_.Nodes.Count();
    if (count > 0 && content_.Nodes.Get(count - 1)->ID == node.ID) {
      const TVertex& first = content_.Nodes.Get(count - 1)->Position;
      const double size = std::max({std::abs(first.x), std::abs(first.y), std::abs(first.z)});
      if (Length(first, place) > kSamePlace * size) elsewhere_[file].Add(node.ID);
      return false;
    }
    const TNode* made = content_.Nodes.Emplace(node.ID, place);
    content_.Display.Emplace(node.ID, TVertex{})->Link = made;
    KeepAxes(node.Displacement, place);
    extent_.Add(place);
    return true;
  }

  /// Nodes before the first that has axes of its own get theirs with it.
  void KeepAxes(std::int32_t displacement, const TVertex& place) {
    if (content_.Axes.empty() && systems_.IsGlobal(displacement)) return;
    content_.Axes.resize(content_.Nodes.Count(), systems_.AxesAt(0, place));
    content_.Axes.back() = systems_.AxesAt(displacement, place);
  }

  void Centre() {
    MoveToCentre(content_, extent_);
    double square = 0.0;
    for (const TNode* node : content_.Nodes) {
      square = std::max(square, SquaredLength(node->Position));
    }
    content_.Size = std::sqrt(square);
    SetRadii(content_);
  }

  void NoteUnknownSystem(std::int32_t number) {
    constexpr std::size_t kMostSystems = 100;
    if (systems_.IsDefined(number)) return;
    if (unknown_.size() < kMostSystems || unknown_.contains(number)) ++unknown_[number];
  }

  void NoteTheRest() {
    for (const auto& [file, nodes] : unusable_) {
      findings_.ReturnTo(file);
      findings_.LeaveOut(
          QStringLiteral("nodes"), 0,
          QStringLiteral("nodes whose place is no number or beyond 1e30: ") + nodes.Text());
    }
    for (const auto& [file, nodes] : elsewhere_) {
      findings_.ReturnTo(file);
      findings_.LeaveOut(QStringLiteral("nodes"), 0,
                         QStringLiteral("nodes that come again at another place, of which the "
                                        "first counts: ") +
                             nodes.Text());
    }
    findings_.BeginJob();
    for (const auto& [number, uses] : unknown_) {
      findings_.Warn(QStringLiteral("systems"), 0,
                     QStringLiteral("system %1, which nodes name, is not defined; it is taken as "
                                    "the global one")
                         .arg(number));
    }
  }

  const TJob& job_;
  TModelContent& content_;
  TFindings& findings_;
  TLengths lengths_;
  TSystems systems_;
  TExtent extent_;
  std::map<int, TNumberList> unusable_;   ///< by file
  std::map<int, TNumberList> elsewhere_;  ///< by file
  std::map<std::int32_t, std::size_t> unknown_;
};

/// Elements that stand already, by what they are and their corners in any order.
class TElementsSeen {
 public:
  TElementsSeen(const TJob& job, std::size_t count)
      : job_(job), places_(std::bit_ceil(2 * count + 1), kFree) {}

  /// False if an element of one kind with the same corners came before.
  bool Insert(std::uint32_t element) {
    Sort(element, sorted_);
    const auto& e = job_.Elements[element];
    // A secret seed: no file can be made so that all its elements fall on one place.
    const auto bytes = sorted_.size() * sizeof(std::int32_t);
    std::size_t at = qHashBits(sorted_.data(), bytes, QHashSeed::globalSeed());
    for (;; ++at) {
      std::uint32_t& place = places_[at & (places_.size() - 1)];
      if (place == kFree) {
        place = element;
        return true;
      }
      const auto& other = job_.Elements[place];
      if (other.Shape != e.Shape || other.Count != e.Count) continue;
      Sort(place, other_);
      if (other_ == sorted_) return false;
    }
  }

 private:
  static constexpr std::uint32_t kFree = 0xffff'ffff;

  void Sort(std::uint32_t element, std::vector<std::int32_t>& corners) const {
    const TJobElement& e = job_.Elements[element];
    const auto first = job_.Corners.begin() + e.First;
    corners.assign(first, first + e.Count);
    std::ranges::sort(corners);
  }

  const TJob& job_;
  std::vector<std::uint32_t> places_;
  std::vector<std::int32_t> sorted_, other_;
};

/// Makes the elements of a model whose nodes are there.
class TElementAssembly {
 public:
  TElementAssembly(const TJob& job, const TNodeList* nodeList, TModelContent& content,
                   TFindings& findings)
      : job_(job),
        nodeList_(nodeList),
        content_(content),
        findings_(findings),
        seen_(job, job.Elements.size()) {}

  void Assemble() {
    const auto& elements = job_.Elements;
    skin_.Expect(static_cast<std::size_t>(std::ranges::count_if(
        elements, [](const TJobElement& element) { return CornersOf(element.Shape) > 0; })));
    for (std::uint32_t i = 0; i < elements.size(); ++i) {
      if (elements[i].Set != set_) NoteSet();
      set_ = elements[i].Set;
      Add(i);
    }
    NoteSet();
    for (TSolidFace& face : skin_.Take()) AddOuterFace(face);
    if (content_.Nodes.Empty() || !content_.Elements.Empty()) return;
    findings_.BeginJob();
    findings_.Warn(QStringLiteral("elements"), 0,
                   QStringLiteral("nothing joins the nodes: there are no lines and no elements"));
  }

 private:
  void Add(std::uint32_t place) {
    const TJobElement& element = job_.Elements[place];
    if (!FindNodes(element)) {
      ++incomplete_;
      return;
    }
    if (!seen_.Insert(place)) return;
    if (const std::size_t corners = CornersOf(element.Shape); corners > 0) {
      if (indices_.size() == corners) return skin_.Add(place, element.Shape, indices_);
      flat_.Add(element.ID);
      return;
    }
    indices_.resize(DropRepeated(indices_));
    const bool isBar = element.Shape == TElementShape::Bar;
    if (isBar ? indices_.size() != 2 : indices_.size() < 3) {
      flat_.Add(element.ID);
      return;
    }
    Make(isBar ? TElement::kBar : TElement::kFace, element.ID, indices_)->IsTwoSided = !isBar;
  }

  /// The indices of an element's nodes; false if one is missing.
  bool FindNodes(const TJobElement& element) {
    indices_.clear();
    bool all = true;
    for (const std::int32_t id : std::span(job_.Corners).subspan(element.First, element.Count)) {
      const std::ptrdiff_t index = content_.Index.Find(id);
      indices_.push_back(static_cast<std::int32_t>(index));
      if (index >= 0) continue;
      missing_.Add(id);
      all = false;
    }
    return all;
  }

  TElement* Make(std::uint8_t type, std::int32_t id, std::span<const std::int32_t> nodes) {
    TElement* element = content_.Elements.Emplace(type, static_cast<std::int32_t>(nodes.size()));
    std::ranges::copy(nodes, element->Nodes().begin());
    element->ID = id;
    element->NodeList = nodeList_;
    return element;
  }

  const TVertex& At(std::int32_t node) const {
    return content_.Nodes.Get(static_cast<std::size_t>(node))->Position;
  }

  /// Files list the corners of solids both ways round, and an outer face shows on its front alone.
  void AddOuterFace(TSolidFace& face) {
    const TJobElement& solid = job_.Elements[face.Solid];
    FindNodes(solid);
    TVertex centre;
    for (const std::int32_t node : indices_) centre += At(node) / double(indices_.size());
    const auto corners = std::span(face.Corners).first(face.Count);
    const TVertex a = At(corners[1]) - At(corners[0]);
    const TVertex b = At(corners.back()) - At(corners[1]);
    const TVertex out = At(corners[0]) - centre;
    const double volume = out.x * (a.y * b.z - a.z * b.y) + out.y * (a.z * b.x - a.x * b.z) +
                          out.z * (a.x * b.y - a.y * b.x);
    if (volume < 0.0) std::ranges::reverse(corners);
    Make(TElement::kFace, solid.ID, corners);
  }

  /// Notes what was left out of the data set whose elements end here.
  void NoteSet() {
    const TPlace place = set_ < job_.Places.size() ? job_.Places[set_] : TPlace{-1, 0};
    findings_.ReturnTo(place.File);
    const QString set = place.SetOr(QStringLiteral("elements"));
    if (incomplete_ > 0) {
      findings_.LeaveOut(
          set, place.Line,
          (incomplete_ == 1
               ? QStringLiteral("1 element names nodes that are missing: ")
               : QStringLiteral("%1 elements name nodes that are missing: ").arg(incomplete_)) +
              missing_.Text());
    }
    if (!flat_.Empty()) {
      findings_.LeaveOut(
          set, place.Line,
          QStringLiteral("elements that have not the corners of their kind: ") + flat_.Text());
    }
    incomplete_ = 0;
    missing_ = {};
    flat_ = {};
  }

  const TJob& job_;
  const TNodeList* nodeList_;
  TModelContent& content_;
  TFindings& findings_;
  TElementsSeen seen_;
  TSkin skin_;
  std::vector<std::int32_t> indices_;  ///< of the element being added
  std::uint32_t set_ = 0;
  std::size_t incomplete_ = 0;  ///< elements of the set that name missing nodes
  TNumberList missing_;
  TNumberList flat_;
};

}  // namespace

TModelContent AssembleModel(const TJob& job, const TNodeList* nodeList, TFindings& findings) {
  TModelContent content;
  content.Units = job.Units;
  TNodeAssembly(job, content, findings).Assemble();
  TElementAssembly(job, nodeList, content, findings).Assemble();
  return content;
}
