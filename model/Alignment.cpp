#include "model/Alignment.h"

#include <algorithm>
#include <set>
#include <unordered_map>

namespace {

/// Where the nodes of each ID stand. An ID is named by the index of the first model node that has
/// it; nodes whose ID no model node has are nowhere, since nobody looks for them.
class TPlaces {
 public:
  static constexpr std::ptrdiff_t kNowhere = -1;

  explicit TPlaces(std::size_t count) : places_(count, kNowhere) {}

  /// The first place of an ID, or kNowhere.
  std::ptrdiff_t First(std::ptrdiff_t id) const {
    const std::ptrdiff_t place = places_[static_cast<std::size_t>(id)];
    return place == kCrowd ? *crowds_.at(id).begin() : place;
  }
  void Add(std::ptrdiff_t id, std::ptrdiff_t place) {
    if (id < 0) return;
    std::ptrdiff_t& only = places_[static_cast<std::size_t>(id)];
    if (only == kNowhere) {
      only = place;
      return;
    }
    std::set<std::ptrdiff_t>& crowd = crowds_[id];
    if (only != kCrowd) crowd.insert(std::exchange(only, kCrowd));
    crowd.insert(place);
  }
  void Remove(std::ptrdiff_t id, std::ptrdiff_t place) {
    if (id < 0) return;
    std::ptrdiff_t& only = places_[static_cast<std::size_t>(id)];
    if (only != kCrowd) {
      only = kNowhere;
      return;
    }
    std::set<std::ptrdiff_t>& crowd = crowds_[id];
    crowd.erase(place);
    if (crowd.size() > 1) return;
    only = *crowd.begin();
    crowds_.erase(id);
  }

 private:
  static constexpr std::ptrdiff_t kCrowd = -2;
  std::vector<std::ptrdiff_t> places_;  ///< per ID its only place, kNowhere or kCrowd
  std::unordered_map<std::ptrdiff_t, std::set<std::ptrdiff_t>> crowds_;
};

/// The list while it is being aligned: a head that holds one node per model node dealt with, and
/// the tail of what is left. An insertion lengthens the head and leaves every place in the tail
/// what it was, so places stay good: those of the head count from 0, those of the tail from kTail.
class TAligner {
 public:
  TAligner(TNodeList& nodes, const TNodeList& model, const TNodeIndex& index)
      : nodes_(nodes),
        model_(model),
        index_(index),
        tail_(nodes.Records()),
        places_(model.Count()) {
    head_.reserve(model.Count());
    for (std::size_t i = 0; i < tail_.size(); ++i) places_.Add(IdOf(tail_[i]), TailPlace(i));
  }

  void Align() {
    for (const TNode* wanted : model_) {
      if (tail_[next_]->ID != wanted->ID && !Fetch(IdOf(wanted))) {
        Append(MakeFiller(*wanted));
        continue;
      }
      places_.Remove(IdOf(tail_[next_]), TailPlace(next_));
      Append(tail_[next_++]);
    }
    head_.insert(head_.end(), tail_.begin() + static_cast<std::ptrdiff_t>(next_), tail_.end());
    nodes_.Records() = std::move(head_);
  }

 private:
  static constexpr std::ptrdiff_t kTail = std::ptrdiff_t{1} << 40;
  static std::ptrdiff_t TailPlace(std::size_t i) { return kTail + static_cast<std::ptrdiff_t>(i); }

  std::ptrdiff_t IdOf(const TNode* node) const { return index_.Find(node->ID); }

  void Append(TNode* node) {
    places_.Add(IdOf(node), static_cast<std::ptrdiff_t>(head_.size()));
    head_.push_back(node);
  }

  /// Exchanges the front of the tail with the first node of an ID; false if there is none.
  bool Fetch(std::ptrdiff_t id) {
    const std::ptrdiff_t place = places_.First(id);
    if (place == TPlaces::kNowhere) return false;
    TNode*& front = tail_[next_];
    TNode*& found = place < kTail ? head_[static_cast<std::size_t>(place)]
                                  : tail_[static_cast<std::size_t>(place - kTail)];
    const std::ptrdiff_t frontPlace = TailPlace(next_);
    places_.Remove(id, place);
    places_.Remove(IdOf(front), frontPlace);
    std::swap(front, found);
    places_.Add(id, frontPlace);
    places_.Add(IdOf(found), place);
    return true;
  }

  /// A node for a model node without a record. Every one that is inserted pushes the last of the
  /// list beyond the model's count in the end, so the last is taken for it unless it may be fetched
  /// before: a section of few records needs no more memory than one of many.
  TNode* MakeFiller(const TNode& wanted) {
    TNode* const last = tail_.back();
    if (IdOf(last) >= 0) return nodes_.Emplace(wanted.ID, wanted.Position);
    tail_.pop_back();
    *last = TNode(wanted.ID, wanted.Position);
    return last;
  }

  TNodeList& nodes_;
  const TNodeList& model_;
  const TNodeIndex& index_;
  TNodeList::TRecords head_;
  TNodeList::TRecords tail_;
  std::size_t next_ = 0;  ///< front of the tail
  TPlaces places_;
};

bool InModelOrder(const TNodeList& nodes, const TNodeList& model) {
  return std::equal(model.begin(), model.end(), nodes.begin(),
                    [](const TNode* a, const TNode* b) { return a->ID == b->ID; });
}

}  // namespace

void AlignNodes(TNodeList& nodes, const TNodeList& model, const TNodeIndex& index) {
  while (nodes.Count() < model.Count()) nodes.Emplace(-1, TVertex{});
  const bool inOrder = InModelOrder(nodes, model);
  if (!inOrder) TAligner(nodes, model, index).Align();
  while (nodes.Count() > model.Count()) nodes.DeleteObject(nodes.Count() - 1);
  if (inOrder && index.Ascending()) return;
  std::stable_sort(nodes.Records().begin(), nodes.Records().end(),
                   [](const TNode* a, const TNode* b) { return CompareNodesID(a, b) < 0; });
}
