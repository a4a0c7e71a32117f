#include <QLocale>
#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "exchange/Assembly.h"
#include "exchange/Lengths.h"
#include "exchange/Numberlist.h"
#include "exchange/Systems.h"
#include "model/Reading.h"

namespace {

/// What is known of a node's motion, a bit each.
constexpr std::uint8_t kDirections = 7;
constexpr std::uint8_t kMeasured = 8;

/// Whether what was measured are lengths, or lengths per time.
bool IsMotion(int quantity) {
  constexpr int kDisplacement = 8;
  constexpr int kVelocity = 11;
  constexpr int kAcceleration = 12;
  return quantity == kDisplacement || quantity == kVelocity || quantity == kAcceleration;
}

/// Sets that agree in all of it may be parts of one shape.
using TIdentity = std::tuple<TShapeKind, double, int, int, double, double, int, bool>;

TIdentity IdentityOf(const TJobShape& shape) {
  const TShapeInfo& info = shape.Info;
  return {info.Kind,    shape.Frequency, info.Mode,     info.LoadCase,
          info.Damping, info.Time,       info.Quantity, !shape.Imaginary.empty()};
}

/// Whether the identity tells a set from all others, so that sets that have it belong together.
bool IsIdentified(const TJobShape& shape) {
  return shape.Frequency != 0.0 || shape.Info.Mode != 0 || shape.Info.Time != 0.0;
}

TVertex ImaginaryAt(const TJobShape& shape, std::size_t i) {
  return i < shape.Imaginary.size() ? shape.Imaginary[i] : TVertex{};
}

/// The directions in which an entry of a set has values.
std::uint8_t DirectionsOf(const TJobShape& shape, std::size_t i) {
  const TVertex& re = shape.Real[i];
  const TVertex im = ImaginaryAt(shape, i);
  return static_cast<std::uint8_t>((re.x != 0.0 || im.x != 0.0 ? 1 : 0) |
                                   (re.y != 0.0 || im.y != 0.0 ? 2 : 0) |
                                   (re.z != 0.0 || im.z != 0.0 ? 4 : 0));
}

/// A value without the directions that are known already.
TVertex Without(const TVertex& v, std::uint8_t directions) {
  return {directions & 1 ? 0.0 : v.x, directions & 2 ? 0.0 : v.y, directions & 4 ? 0.0 : v.z};
}

TVertex TurnedBy(const TAxes& axes, const TVertex& v) {
  return v.x * axes[0] + v.y * axes[1] + v.z * axes[2];
}

void ZeroUnusable(double& value) {
  if (!IsUsable(value)) value = 0.0;
}

/// One component as amplitude and phase.
void SplitPhase(double& real, double& imaginary) {
  const double amplitude = std::hypot(real, imaginary);
  imaginary = amplitude == 0.0 ? 0.0 : std::atan2(imaginary, real);
  real = amplitude;
}

/// A number that reads back to the same.
QString ShortestText(double value) {
  const double size = std::abs(value);
  const bool isPlain = size == 0.0 || (size >= 1e-4 && size < 1e15);
  return QString::number(value, isPlain ? 'f' : 'g', QLocale::FloatingPointShortest);
}

/// What a set is called: by its frequency if it has one or could have one.
QString NameOf(const TJobShape& shape) {
  const TShapeInfo& info = shape.Info;
  const int number = info.Mode != 0 ? info.Mode : info.LoadCase;
  switch (info.Kind) {
    case TShapeKind::Transient:
      return QStringLiteral("t = %1 s").arg(ShortestText(info.Time));
    case TShapeKind::Static:
      return QStringLiteral("Static %1").arg(number);
    case TShapeKind::Buckling:
      return QStringLiteral("Buckling %1").arg(number);
    default:
      return QStringLiteral("F = ") + ShortestText(shape.Frequency);
  }
}

/// The displacement systems of a model's nodes, as the file says that a shape comes from.
class TDisplacementSystems {
 public:
  TDisplacementSystems(const TJob& job, const TModelNodes& model, const TSystems& systems)
      : job_(job), model_(model) {
    isNeeded_ = std::ranges::any_of(
        job.Nodes, [&](const TJobNode& node) { return !systems.IsGlobal(node.Displacement); });
  }

  /// Turns to a file: its own nodes count before those of other files, of several the first.
  void Select(int file) {
    if (!isNeeded_ || file == file_) return;
    file_ = file;
    numbers_.assign(model_.Nodes.Count(), 0);
    Take(0, job_.Nodes.size());
    const auto at = static_cast<std::size_t>(file);
    const auto& first = job_.FirstOfFile;
    if (file < 0 || at >= first.size()) return;
    Take(first[at], at + 1 < first.size() ? first[at + 1] : job_.Nodes.size());
  }

  std::int32_t Of(std::size_t node) const { return isNeeded_ ? numbers_[node] : 0; }

 private:
  void Take(std::size_t from, std::size_t to) {
    while (to-- > from) {
      const std::ptrdiff_t index = model_.Index.Find(job_.Nodes[to].ID);
      if (index >= 0) numbers_[static_cast<std::size_t>(index)] = job_.Nodes[to].Displacement;
    }
  }

  const TJob& job_;
  const TModelNodes& model_;
  bool isNeeded_ = false;
  int file_ = -2;  ///< none yet
  std::vector<std::int32_t> numbers_;
};

/// Makes the data sets of one model from all shapes of a job.
class TShapeAssembly {
 public:
  TShapeAssembly(TJob& job, const TModelNodes& model, const TVertex& centre, std::size_t mostNodes,
                 TFindings& findings)
      : job_(job),
        model_(model),
        centre_(centre),
        mostNodes_(mostNodes),
        findings_(findings),
        lengths_(job),
        systems_(lengths_.Systems(), noted_),
        displacement_(job, model, systems_) {}

  std::vector<TDataSet> Assemble() {
    for (TJobShape& raw : job_.Shapes) {
      TJobShape shape = std::move(raw);  // its memory is free for the next set
      Add(shape);
    }
    job_.Shapes.clear();
    std::vector<TDataSet> sets;
    sets.reserve(groups_.size());
    for (TGroup& group : groups_) sets.push_back(Finish(group));
    NoteTheRest();
    return sets;
  }

 private:
  /// A data set in the making: real parts stand as positions, imaginary ones as angles.
  struct TGroup {
    TDataSet set;
    TPlace place;
    bool isComplex;
    std::vector<std::uint8_t> known;  ///< per node
  };

  void Note(const TPlace& place, TFindings::TKind kind, const QString& text) {
    findings_.ReturnTo(place.File);
    const QString set = place.SetOr(QStringLiteral("shapes"));
    if (kind == TFindings::TKind::LeftOut) {
      findings_.LeaveOut(set, place.Line, text);
    } else {
      findings_.Warn(set, place.Line, text);
    }
  }

  void Add(TJobShape& shape) {
    for (double* value : {&shape.Frequency, &shape.Info.Damping, &shape.Info.Time}) {
      ZeroUnusable(*value);
    }
    if (!FindNodes(shape)) {
      Note(shape.Place, TFindings::TKind::LeftOut,
           QStringLiteral("none of its nodes is in the model"));
      return;
    }
    displacement_.Select(shape.Place.File);
    if (TGroup* group = GroupFor(shape)) {
      Put(shape, *group);
    } else {
      ++beyond_;
    }
  }

  /// The model's nodes that the entries of a set are for; false if there are none.
  bool FindNodes(const TJobShape& shape) {
    const std::size_t count = std::min(shape.IDs.size(), shape.Real.size());
    places_.clear();
    bool any = false;
    for (std::size_t i = 0; i < count; ++i) {
      places_.push_back(static_cast<std::int32_t>(model_.Index.Find(shape.IDs[i])));
      any |= places_.back() >= 0;
      if (places_.back() < 0) foreign_[shape.Place.File].Add(shape.IDs[i]);
    }
    return any;
  }

  /// The set that this one is a part of, or a new one; null if there is no room.
  TGroup* GroupFor(const TJobShape& shape) {
    constexpr std::size_t kMostTried = 8;
    std::vector<std::size_t>& kin = groupsOf_[IdentityOf(shape)];
    if (IsIdentified(shape)) {
      for (std::size_t i = kin.size() - std::min(kin.size(), kMostTried); i < kin.size(); ++i) {
        if (Collides(shape, groups_[kin[i]])) continue;
        ++merged_;
        return &groups_[kin[i]];
      }
    }
    if (!Affordable()) return nullptr;
    kin.push_back(groups_.size());
    return &groups_.emplace_back(Begin(shape));
  }

  bool Collides(const TJobShape& shape, const TGroup& group) const {
    for (std::size_t i = 0; i < places_.size(); ++i) {
      if (places_[i] < 0) continue;
      const std::uint8_t known = group.known[static_cast<std::size_t>(places_[i])];
      if ((known & kDirections & DirectionsOf(shape, i)) != 0) return true;
    }
    return false;
  }

  /// Whether there is room for another set, and for the motions of all.
  bool Affordable() {
    constexpr std::size_t kWeighEvery = 1'000'000;
    const std::size_t all = (groups_.size() + 1) * model_.Nodes.Count();
    if (groups_.size() == kMostDataSets || all > mostNodes_) return false;
    if (all - weighed_ < kWeighEvery) return true;
    weighed_ = all;
    return all * TMotions::kBytesPerNode <= AvailableMemory();
  }

  TGroup Begin(const TJobShape& shape) {
    TGroup group;
    group.place = shape.Place;
    group.isComplex = !shape.Imaginary.empty();
    group.known.resize(model_.Nodes.Count());
    group.set.Frequency = shape.Frequency;
    group.set.Info = shape.Info;
    group.set.Section = SectionFor(shape);
    group.set.Content.Nodes.Reserve(model_.Nodes.Count());
    for (const TNode* node : model_.Nodes) {
      group.set.Content.Nodes.Emplace(node->ID, TVertex{})->Link = node;
    }
    return group;
  }

  /// Data files tell sets apart by their sections alone, so none may have that of another.
  QString SectionFor(const TJobShape& shape) {
    const QString name = NameOf(shape);
    const std::size_t number = ++named_[name];
    return number == 1 ? '[' + name + ']' : QStringLiteral("[%1 (%2)]").arg(name).arg(number);
  }

  /// What the values of a set are multiplied by to have the unit of the model.
  double UnitFor(const TJobShape& shape) {
    const double factor = lengths_.Factor(shape.Place.File);
    if (factor == 1.0 || !IsMotion(shape.Info.Quantity)) return 1.0;
    scaled_.insert(shape.Place.File);
    return factor;
  }

  /// The axes of what a set says of a node, unless they are the global ones: by the nodes of the
  /// job, or if it has none, of the model that stays.
  std::optional<TAxes> AxesOf(const TJobShape& shape, std::size_t node) const {
    if (shape.IsGlobal) return {};
    if (!job_.HasGeometry()) {
      return node < model_.Axes.size() ? std::optional(model_.Axes[node]) : std::nullopt;
    }
    const std::int32_t system = displacement_.Of(node);
    if (systems_.IsGlobal(system)) return {};
    return systems_.AxesAt(system, model_.Nodes.Get(node)->Position + centre_);
  }

  void Put(const TJobShape& shape, TGroup& group) {
    TNumberList doubled;
    const double unit = UnitFor(shape);
    for (std::size_t i = 0; i < places_.size(); ++i) {
      if (places_[i] < 0) continue;
      const auto place = static_cast<std::size_t>(places_[i]);
      const std::uint8_t directions = DirectionsOf(shape, i);
      const std::uint8_t taken = group.known[place] & directions;
      if (taken != 0) doubled.Add(shape.IDs[i]);
      group.known[place] |= directions | kMeasured;
      TVertex real = unit * Without(shape.Real[i], taken);
      TVertex imaginary = unit * Without(ImaginaryAt(shape, i), taken);
      if (const std::optional<TAxes> axes = AxesOf(shape, place)) {
        real = TurnedBy(*axes, real);
        imaginary = TurnedBy(*axes, imaginary);
      }
      TNode& node = *group.set.Content.Nodes.Get(place);
      node.Position += real;
      node.Angles += imaginary;
    }
    if (doubled.Empty()) return;
    Note(shape.Place, TFindings::TKind::LeftOut,
         QStringLiteral("second values of nodes in one direction: ") + doubled.Text());
  }

  TDataSet Finish(TGroup& group) {
    double square = 0.0;
    for (TNode* node : group.set.Content.Nodes) {
      for (double* value : {&node->Position.x, &node->Position.y, &node->Position.z,
                            &node->Angles.x, &node->Angles.y, &node->Angles.z}) {
        ZeroUnusable(*value);
      }
      if (group.isComplex) {
        SplitPhase(node->Position.x, node->Angles.x);
        SplitPhase(node->Position.y, node->Angles.y);
        SplitPhase(node->Position.z, node->Angles.z);
      }
      square = std::max(square, SquaredLength(node->Position));
    }
    group.set.Content.MaxAmplitude = std::sqrt(square);
    KeepMeasured(group);
    return std::move(group.set);
  }

  /// Marks the nodes that rest for want of a measurement, and notes them.
  void KeepMeasured(TGroup& group) {
    std::vector<bool> measured(group.known.size());
    TNumberList resting;
    for (std::size_t i = 0; i < measured.size(); ++i) {
      measured[i] = (group.known[i] & kMeasured) != 0;
      if (!measured[i]) resting.Add(model_.Nodes.Get(i)->ID);
    }
    std::exchange(group.known, std::vector<std::uint8_t>());
    if (resting.Empty()) return;
    constexpr std::size_t kMostPatterns = 50;
    const auto same = std::ranges::find(patterns_, measured, &TPattern::measured);
    if (same != patterns_.end()) {
      ++same->sets;
    } else if (patterns_.size() < kMostPatterns) {
      patterns_.push_back({measured, resting, group.place, 1});
    }
    group.set.Measured = std::move(measured);
  }

  void NoteTheRest() {
    for (const TPattern& pattern : patterns_) {
      const std::size_t count = pattern.resting.Count();
      const QString nodes = count == 1
                                ? QStringLiteral("1 node has no measurement: ")
                                : QStringLiteral("%1 nodes have no measurement: ").arg(count);
      const QString where =
          pattern.sets == 1 ? QString() : QStringLiteral(" (in %1 data sets)").arg(pattern.sets);
      Note(pattern.place, TFindings::TKind::Warning, nodes + pattern.resting.Text() + where);
    }
    for (const int file : scaled_) {
      lengths_.NoteFactor(file, QStringLiteral("motions"), findings_);
    }
    for (const auto& [file, nodes] : foreign_) {
      Note({file, 0}, TFindings::TKind::LeftOut,
           QStringLiteral("values of nodes that the model does not have: ") + nodes.Text());
    }
    if (merged_ > 0) {
      Note({TFindings::kJob, 0}, TFindings::TKind::Warning,
           QStringLiteral("%1 data sets measure other nodes or directions of the same shapes as "
                          "others and were joined with them")
               .arg(merged_));
    }
    if (beyond_ > 0) {
      Note({TFindings::kJob, 0}, TFindings::TKind::LeftOut,
           QStringLiteral("%1 data sets, for which there is no room").arg(beyond_));
    }
  }

  /// Sets of which the same nodes were measured.
  struct TPattern {
    std::vector<bool> measured;
    TNumberList resting;
    TPlace place;  ///< of the first set
    std::size_t sets;
  };

  TJob& job_;
  const TModelNodes& model_;
  TVertex centre_;
  std::size_t mostNodes_;
  TFindings& findings_;
  TLengths lengths_;
  TFindings noted_;  ///< of the systems, which the geometry has noted already
  TSystems systems_;
  TDisplacementSystems displacement_;
  std::vector<std::int32_t> places_;  ///< of the set being added: model nodes, or -1
  std::vector<TGroup> groups_;
  std::map<TIdentity, std::vector<std::size_t>> groupsOf_;
  std::unordered_map<QString, std::size_t> named_;
  std::vector<TPattern> patterns_;
  std::map<int, TNumberList> foreign_;  ///< by file
  std::set<int> scaled_;                ///< files whose motions have another unit of length
  std::size_t merged_ = 0;
  std::size_t beyond_ = 0;
  std::size_t weighed_ = 0;  ///< nodes of all sets when the memory was looked at
};

}  // namespace

std::vector<TDataSet> AssembleShapes(TJob& job, const TModelNodes& model, const TVertex& centre,
                                     std::size_t mostNodes, TFindings& findings) {
  if (!model.Nodes.Empty()) {
    return TShapeAssembly(job, model, centre, mostNodes, findings).Assemble();
  }
  if (!job.Shapes.empty()) {
    findings.BeginJob();
    findings.LeaveOut(QStringLiteral("shapes"), 0, QStringLiteral("there is no model for them"));
  }
  return {};
}
