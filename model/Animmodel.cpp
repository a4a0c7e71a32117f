#include "model/Animmodel.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>
#include <unordered_map>
#include <utility>

#include "model/Datareader.h"
#include "model/Largememory.h"
#include "model/Modelreader.h"
#include "model/Oneline.h"
#include "model/Readfile.h"
#include "model/Reading.h"
#include "model/Sectionindex.h"

/// Marks a model as being loaded, or as having data loaded for it, while it lives: Loaded is false
/// meanwhile and true afterwards.
class TLoadingMark {
 public:
  explicit TLoadingMark(TModel* model) : model_(model) {
    if (!model_) return;
    model_->loading_ = true;
    model_->Loaded = false;
  }
  ~TLoadingMark() {
    if (!model_) return;
    model_->loading_ = false;
    model_->Loaded = true;
  }
  TLoadingMark(const TLoadingMark&) = delete;
  TLoadingMark& operator=(const TLoadingMark&) = delete;

  static bool On(const TModel* model) { return model && model->loading_; }

 private:
  TModel* model_;
};

namespace {

/// Runs a load of a model, or of data for it. A load that begins while another runs, from a
/// progress callback that lets the user go on, would pull the nodes from under the first and is
/// refused. Memory that runs out becomes a failure.
template <class TRead>
TLoadReport Load(TModel* model, TRead read) {
  TLoadReport report;
  if (TLoadingMark::On(model)) {
    report.Fail(QStringLiteral("another file is being read"));
    return report;
  }
  const TLoadingMark mark(model);
  try {
    read(report);
  } catch (const std::bad_alloc&) {
    report.Fail(QStringLiteral("not enough memory"));
  }
  return report;
}

double ScaleFor(const TModel* model, double maxAmplitude, double otherwise) {
  if (!model || !(maxAmplitude > 0.0)) return otherwise;
  return 0.25 * model->Size / maxAmplitude;
}

/// The text of a name in a file: UTF-8, or Latin-1 where it is not valid UTF-8.
QString FromBytes(std::string_view bytes) {
  const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
  return view.isValidUtf8() ? QString::fromUtf8(view) : QString::fromLatin1(view);
}

/// Moves behind a header that came from FromBytes.
bool SearchHeader(TReading& reading, const QString& header) {
  return reading.Search(header.toUtf8().toStdString()) ||
         reading.Search(header.toLatin1().toStdString());
}

void NoteOrder(const TModel& model, TLoadReport& report) {
  if (model.Index().Ascending()) return;
  report.Add(0, QStringLiteral("the model's nodes are not in ascending order of their numbers, so "
                               "shapes may be wrong"));
}

}  // namespace

TLoadReport TDataNodeList::LoadFromFile(const QString& fileName, const TLoadProgress& progress) {
  return Load(Model, [&](TLoadReport& report) {
    ReadAndParse(fileName, report, progress, [&](std::string_view text, const TLoadProgress& rest) {
      Read(text, report, rest);
    });
  });
}

TLoadReport TDataNodeList::LoadFromMemory(std::string_view text, const TLoadProgress& progress) {
  return Load(Model, [&](TLoadReport& report) { Read(text, report, progress); });
}

void TDataNodeList::Read(std::string_view text, TLoadReport& report,
                         const TLoadProgress& progress) {
  TReading reading(text, report, progress);
  TDataContent content;
  if (SearchHeader(reading, Section)) {
    const bool plain = OwnsNodes || !Model;
    const bool whole = plain ? ReadPlainDataSet(reading, content)
                             : ReadDataSet(reading, {Model->Nodes, Model->Index()}, content);
    if (!whole) return;
    if (!plain && !content.Nodes.Empty()) NoteOrder(*Model, report);
  } else if (!report.Cancelled()) {
    report.Add(0, QStringLiteral("it has no section %1").arg(OneLine(Section)));
  }
  if (!report.Cancelled()) Take(std::move(content));
}

void TDataNodeList::Take(TDataContent content) {
  static_cast<TNodeList&>(*this) = std::move(content.Nodes);
  MaxAmplitude = content.MaxAmplitude;
  Scale = ScaleFor(Model, MaxAmplitude, Scale);
  NodesChanged();
}

void TDataNodeList::SetVisible(bool visible) {
  visible_ = visible;
  ShowNodes = visible;
  ShowElements = visible;
  if (visible != (motions_.Count() > 0)) NodesChanged();
}

void TDataNodeList::NodesChanged() {
  if (visible_) {
    motions_.Build(*this);
  } else {
    motions_.Clear();
  }
}

std::ptrdiff_t TDataNodeList::IndexOf(std::int32_t id) const {
  const auto found =
      std::find_if(begin(), end(), [id](const TNode* node) { return node->ID == id; });
  return found == end() ? -1 : found - begin();
}

const TNode* TDataNodeList::FindNode(std::int32_t id) const {
  const std::ptrdiff_t index = IndexOf(id);
  return index < 0 ? nullptr : Get(static_cast<std::size_t>(index));
}

TDataNodeList* TNodesSet::Add(std::unique_ptr<TDataNodeList> list) {
  owned_.push_back(std::move(list));
  members_.push_back(owned_.back().get());
  return members_.back();
}

void TNodesSet::Clear() {
  members_.clear();
  for (auto& list : std::exchange(owned_, {})) list.reset();
}

void TNodesSet::UpdateScale() {
  maxAmplitude_ = 0.0;
  for (const TDataNodeList* list : members_) {
    maxAmplitude_ = std::max(maxAmplitude_, list->MaxAmplitude);
  }
  if (!members_.empty()) scale_ = ScaleFor(members_.front()->Model, maxAmplitude_, scale_);
}

void TNodesSet::SetNodeColor(TColor color) {
  if (color == nodeColor_) return;
  nodeColor_ = color;
  for (TDataNodeList* list : members_) list->NodeColor = color;
}

void TNodesSet::SetElementColor(TColor color) {
  if (color == elementColor_) return;
  elementColor_ = color;
  for (TDataNodeList* list : members_) list->ElementColor = color;
}

void TNodesSet::SetEdgeColor(TColor color) {
  if (color == edgeColor_) return;
  edgeColor_ = color;
  for (TDataNodeList* list : members_) list->EdgeColor = color;
}

void TNodesSet::SetNodeShape(TNodeShape shape) {
  if (shape == nodeShape_) return;
  nodeShape_ = shape;
  for (TDataNodeList* list : members_) list->NodeShape = shape;
}

TModel::TModel(QObject* parent) : QObject(parent), Nodes(nullptr, true), Display(this, false) {
  Nodes.Elements = &Elements;
  Display.Elements = &Elements;
  Display.ShowNodes = true;
  Display.ShowElements = true;
}

TModel::~TModel() { Clear(); }

TLoadReport TModel::LoadFromFile(const QString& fileName, const TLoadProgress& progress) {
  const TLoadReport report = Load(this, [&](TLoadReport& findings) {
    ReadAndParse(
        fileName, findings, progress,
        [&](std::string_view text, const TLoadProgress& rest) { Read(text, findings, rest); });
  });
  if (!loading_) emit OnChange(this);
  return report;
}

TLoadReport TModel::LoadFromMemory(std::string_view text, const TLoadProgress& progress) {
  const TLoadReport report =
      Load(this, [&](TLoadReport& findings) { Read(text, findings, progress); });
  if (!loading_) emit OnChange(this);
  return report;
}

void TModel::Read(std::string_view text, TLoadReport& report, const TLoadProgress& progress) {
  TModelContent content;
  const TModelHeaders headers{NodesSection.toStdString(), ElementsSection.toStdString()};
  if (!ReadModel(text, headers, &Nodes, content, report, progress)) return;
  Clear();
  static_cast<TNodeList&>(Nodes) = std::move(content.Nodes);
  static_cast<TNodeList&>(Display) = std::move(content.Display);
  Elements = std::move(content.Elements);
  index_ = std::move(content.Index);
  Size = content.Size;
  Nodes.NodeRadius = Display.NodeRadius = content.NodeRadius;
  Nodes.ElementRadius = Display.ElementRadius = content.ElementRadius;
}

void TModel::Clear() {
  Display.ClearObjects();
  Nodes.ClearObjects();
  Elements.ClearObjects();
  index_ = {};
}

const TNodeIndex& TModel::Index() const {
  if (index_.Count() != Nodes.Count()) {
    std::vector<std::int32_t> ids;
    ids.reserve(Nodes.Count());
    for (const TNode* node : Nodes) ids.push_back(node->ID);
    index_.Build(ids);
  }
  return index_;
}

void ReadSections(std::string_view text, QStringList& names) {
  for (const std::string_view name : ReadSectionNames(text, kMostDataSets)) {
    names << FromBytes(name);
  }
}

void ReadSections(const QString& fileName, QStringList& names) {
  TLoadReport report;
  TFileText text;
  if (ReadFile(fileName, text, report)) ReadSections(View(text), names);
}

namespace {

/// Reads the data sets of one file, one after the other.
class TDataFileReader {
 public:
  TDataFileReader(std::string_view text, TModel& model, std::size_t mostNodes, TLoadReport& report,
                  const TLoadProgress& progress)
      : reading_(text, report, progress),
        model_{model.Nodes, model.Index()},
        mostNodes_(mostNodes) {}

  /// What a section gives. Nothing if the load was cancelled, or if the nodes of all sections
  /// would take too much memory.
  std::optional<TDataContent> Read(const TSection& section,
                                   const std::vector<const TDataNodeList*>& earlier) {
    // A name that comes again, or ends in another name, has the records of the first.
    const auto [place, fresh] = first_.emplace(section.Records, earlier.size());
    TDataContent content;
    if (!fresh) {
      const TDataNodeList& same = *earlier[place->second];
      if (!Affordable(same.Count())) return std::nullopt;
      content = CopyOf(same, same.MaxAmplitude);
    } else {
      if (!Affordable(model_.Nodes.Count())) return std::nullopt;
      reading_.Scanner.SetPosition(section.Records);
      if (!ReadDataSet(reading_, model_, content)) return std::nullopt;
    }
    nodes_ += content.Nodes.Count();
    return content;
  }

  /// The frequency in a section's name; nothing if it is named otherwise.
  std::optional<double> Frequency(const TSection& section) {
    TTextScanner name(section.Name);
    const std::optional<double> frequency = NamedFrequency(name);
    if (name.AtDecimalComma()) NoteDecimalComma(reading_, PlaceOf(section));
    return frequency;
  }

  /// Notes that a section that is named after a frequency has no records; others may be remarks.
  void NoteEmpty(const TSection& section) {
    if (model_.Nodes.Empty()) return;
    reading_.Report.AddAt(reading_.Scanner, PlaceOf(section), [] {
      return QStringLiteral("the data set has no records; it shows nothing");
    });
  }

  /// Counts what lies between the sections, and the nodes of one, as done. False once the user has
  /// cancelled.
  bool Advance(std::size_t characters, std::size_t nodes) {
    return reading_.Advance(characters, nodes);
  }

 private:
  std::size_t PlaceOf(const TSection& section) const {
    return static_cast<std::size_t>(section.Name.data() - reading_.Scanner.Text().data());
  }

  /// Whether there is room for more nodes, and for the motions of all.
  bool Affordable(std::size_t more) {
    constexpr std::size_t kWeighEvery = 1'000'000;
    const std::size_t all = nodes_ + more;
    if (all > mostNodes_) return false;
    if (all - weighed_ < kWeighEvery) return true;
    weighed_ = all;
    return all * TMotions::kBytesPerNode <= AvailableMemory();
  }

  TReading reading_;
  TModelNodes model_;
  std::size_t mostNodes_;
  std::size_t nodes_ = 0;                               ///< of all sections read
  std::size_t weighed_ = 0;                             ///< of them when the memory was looked at
  std::unordered_map<std::size_t, std::size_t> first_;  ///< start of records, index of data set
};

}  // namespace

TLoadReport TMeasuredData::LoadFromFile(const QString& fileName, TModel& model,
                                        const TLoadProgress& progress) {
  return Load(&model, [&](TLoadReport& report) {
    bool opened = false;
    ReadAndParse(fileName, report, progress, [&](std::string_view text, const TLoadProgress& rest) {
      opened = true;
      Read(text, model, report, rest);
    });
    if (!opened && !report.Cancelled()) Clear();
  });
}

TLoadReport TMeasuredData::LoadFromMemory(std::string_view text, TModel& model,
                                          const TLoadProgress& progress) {
  return Load(&model, [&](TLoadReport& report) { Read(text, model, report, progress); });
}

void TMeasuredData::Read(std::string_view text, TModel& model, TLoadReport& report,
                         const TLoadProgress& progress) {
  std::vector<std::unique_ptr<TDataNodeList>> lists;
  if (ReadLists(text, model, report, progress, lists)) Replace(std::move(lists));
}

bool TMeasuredData::ReadLists(std::string_view text, TModel& model, TLoadReport& report,
                              const TLoadProgress& progress,
                              std::vector<std::unique_ptr<TDataNodeList>>& lists) const {
  const std::vector<TSection> sections = ReadSectionIndex(text, kMostDataSets + 1);
  if (sections.empty()) report.Add(0, QStringLiteral("it holds no data sets"));
  if (!sections.empty()) NoteOrder(model, report);
  TDataFileReader reader(text, model, MostNodes, report, progress);
  std::vector<const TDataNodeList*> earlier;
  for (const TSection& section : sections) {
    if (lists.size() == kMostDataSets) break;
    const std::optional<double> frequency = reader.Frequency(section);
    std::optional<TDataContent> content = reader.Read(section, earlier);
    if (!content || !reader.Advance(section.Name.size() + 2, content->Nodes.Count())) break;
    auto list = std::make_unique<TDataNodeList>(&model, false);
    const QString name = FromBytes(section.Name);
    list->Section = '[' + name + ']';
    list->Frequency = frequency.value_or(0.0);
    if (frequency && content->Nodes.Empty()) reader.NoteEmpty(section);
    list->NodeShape = All.GetNodeShape();
    list->NodeColor = All.GetNodeColor();
    list->ElementColor = All.GetElementColor();
    list->Take(std::move(*content));
    list->Elements = &model.Elements;
    list->NodeRadius = model.Nodes.NodeRadius;
    list->ElementRadius = model.Nodes.ElementRadius;
    earlier.push_back(list.get());
    lists.push_back(std::move(list));
  }
  if (report.Cancelled()) return false;
  if (lists.size() < sections.size()) {
    report.Add(0, QStringLiteral("only the first %1 data sets were kept").arg(lists.size()));
  }
  return true;
}

void TMeasuredData::Replace(std::vector<std::unique_ptr<TDataNodeList>> lists) {
  Clear();
  std::vector<bool> shown;
  for (auto& list : lists) {
    const auto i = static_cast<qsizetype>(shown.size());
    shown.push_back(i < CheckedLabels.size() && CheckedLabels[i] == '1');
    All.Add(std::move(list));
  }
  All.UpdateScale();
  Show(shown);
}

bool TMeasuredData::Show(const std::vector<bool>& shown) {
  bool changed = false;
  Shown.Clear();
  for (std::size_t i = 0; i < All.Count(); ++i) {
    TDataNodeList* list = All.Get(i);
    const bool visible = i < shown.size() && shown[i];
    if (list->GetVisible() != visible) {
      list->SetVisible(visible);
      changed = true;
    }
    if (visible) Shown.Refer(list);
  }
  Shown.UpdateScale();
  return changed;
}

QString TMeasuredData::MakeCheckString() const {
  if (All.Empty()) return QStringLiteral("1");
  QString checks;
  for (const TDataNodeList* list : All) checks += list->GetVisible() ? '1' : '0';
  return checks;
}

void TMeasuredData::Clear() {
  Shown.Clear();
  All.Clear();
}
