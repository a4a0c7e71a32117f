#include "model/Animmodel.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>
#include <unordered_map>
#include <utility>

#include "model/Datareader.h"
#include "model/Modelreader.h"
#include "model/Readfile.h"
#include "model/Reading.h"
#include "model/Sectionindex.h"

/// Marks a model as being loaded, or as having data loaded for it, while it lives: Loaded is false
/// meanwhile and true afterwards. A second load that begins meanwhile, from a progress callback
/// that lets the user go on, would pull the nodes from under the first and is refused.
class TLoadingMark {
 public:
  TLoadingMark(TModel* model, TLoadReport& report) : model_(model) {
    if (model_ && model_->loading_) {
      report.Fail(QStringLiteral("another file is being read"));
      model_ = nullptr;
      refused_ = true;
    }
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

  bool Refused() const { return refused_; }

 private:
  TModel* model_;
  bool refused_ = false;
};

namespace {

/// Runs `read`, turning memory that runs out into a failure of the report.
template <class TRead>
void WithinMemory(TLoadReport& report, TRead read) {
  try {
    read();
  } catch (const std::bad_alloc&) {
    report.Fail(QStringLiteral("not enough memory"));
  }
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
  return ReadAndParse(fileName, progress, [this](std::string_view text, const TLoadProgress& rest) {
    return LoadFromMemory(text, rest);
  });
}

TLoadReport TDataNodeList::LoadFromMemory(std::string_view text, const TLoadProgress& progress) {
  TLoadReport report;
  const TLoadingMark mark(Model, report);
  if (mark.Refused()) return report;
  WithinMemory(report, [&] {
    TReading reading(text, report, progress);
    TDataContent content;
    if (SearchHeader(reading, Section)) {
      const bool plain = OwnsNodes || !Model;
      const bool whole = plain ? ReadPlainDataSet(reading, content)
                               : ReadDataSet(reading, {Model->Nodes, Model->Index()}, content);
      if (!whole) return;
      if (!plain && !content.Nodes.Empty()) NoteOrder(*Model, report);
    } else if (!report.Cancelled()) {
      report.Add(0, QStringLiteral("it has no section %1").arg(Section));
    }
    if (!report.Cancelled()) Take(std::move(content));
  });
  return report;
}

void TDataNodeList::Take(TDataContent content) {
  static_cast<TNodeList&>(*this) = std::move(content.Nodes);
  MaxAmplitude = content.MaxAmplitude;
  Scale = ScaleFor(Model, MaxAmplitude, Scale);
}

void TDataNodeList::SetVisible(bool visible) {
  visible_ = visible;
  ShowNodes = visible;
  ShowElements = visible;
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
  members_.reserve(members_.size() + 1);
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

TModel::TModel(QObject* parent) : QObject(parent), Nodes(this, true), Display(this, false) {
  Nodes.Elements = &Elements;
  Display.Elements = &Elements;
  Display.ShowNodes = true;
  Display.ShowElements = true;
}

TModel::~TModel() { Clear(); }

TLoadReport TModel::LoadFromFile(const QString& fileName, const TLoadProgress& progress) {
  bool parsed = false;
  const TLoadReport report =
      ReadAndParse(fileName, progress, [&](std::string_view text, const TLoadProgress& rest) {
        parsed = true;
        return LoadFromMemory(text, rest);
      });
  if (!parsed && !loading_) {
    Loaded = true;
    emit OnChange(this);
  }
  return report;
}

TLoadReport TModel::LoadFromMemory(std::string_view text, const TLoadProgress& progress) {
  TLoadReport report;
  {
    const TLoadingMark mark(this, report);
    if (mark.Refused()) return report;
    WithinMemory(report, [&] {
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
    });
  }
  emit OnChange(this);
  return report;
}

void TModel::Clear() {
  Display.ClearObjects();
  Nodes.ClearObjects();
  Elements.ClearObjects();
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
  TDataFileReader(std::string_view text, TModel& model, TLoadReport& report,
                  const TLoadProgress& progress)
      : reading_(text, report, progress), model_{model.Nodes, model.Index()} {}

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

  /// Counts what lies between the sections as done. False once the user has cancelled.
  bool Advance(std::size_t characters) { return reading_.Advance(characters); }

 private:
  bool Affordable(std::size_t more) const {
    constexpr std::size_t kMostMemory = std::size_t{4} << 30;
    constexpr std::size_t kPerNode = 2 * sizeof(TNode);
    return nodes_ + more <= kMostMemory / kPerNode;
  }

  TReading reading_;
  TModelNodes model_;
  std::size_t nodes_ = 0;                               ///< of all sections read
  std::unordered_map<std::size_t, std::size_t> first_;  ///< start of records, index of data set
};

}  // namespace

TLoadReport TMeasuredData::LoadFromFile(const QString& fileName, TModel& model,
                                        const TLoadProgress& progress) {
  bool parsed = false;
  const TLoadReport report =
      ReadAndParse(fileName, progress, [&](std::string_view text, const TLoadProgress& rest) {
        parsed = true;
        return LoadFromMemory(text, model, rest);
      });
  if (!parsed && report.Failed()) Clear();
  return report;
}

TLoadReport TMeasuredData::LoadFromMemory(std::string_view text, TModel& model,
                                          const TLoadProgress& progress) {
  TLoadReport report;
  const TLoadingMark mark(&model, report);
  if (mark.Refused()) return report;
  WithinMemory(report, [&] {
    std::vector<std::unique_ptr<TDataNodeList>> lists;
    if (ReadLists(text, model, report, progress, lists)) Replace(std::move(lists));
  });
  return report;
}

bool TMeasuredData::ReadLists(std::string_view text, TModel& model, TLoadReport& report,
                              const TLoadProgress& progress,
                              std::vector<std::unique_ptr<TDataNodeList>>& lists) const {
  const std::vector<TSection> sections = ReadSectionIndex(text, kMostDataSets);
  if (sections.empty()) report.Add(0, QStringLiteral("it holds no data sets"));
  if (!sections.empty()) NoteOrder(model, report);
  TDataFileReader reader(text, model, report, progress);
  std::vector<const TDataNodeList*> earlier;
  for (const TSection& section : sections) {
    std::optional<TDataContent> content = reader.Read(section, earlier);
    if (!content || !reader.Advance(section.Name.size() + 2)) break;
    auto list = std::make_unique<TDataNodeList>(&model, false);
    const QString name = FromBytes(section.Name);
    list->Section = '[' + name + ']';
    list->Frequency = FrequencyOf(section.Name);
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
  if (lists.size() < sections.size() || sections.size() == kMostDataSets) {
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
