#include "model/Animmodel.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#include "model/Datafile.h"
#include "model/Modelreader.h"
#include "model/Oneline.h"
#include "model/Readfile.h"
#include "model/Reading.h"
#include "model/Sectionindex.h"

TLoadingMark::TLoadingMark(TModel* model) : model_(model) {
  if (!model_) return;
  model_->loading_ = true;
  model_->Loaded = false;
}

TLoadingMark::~TLoadingMark() {
  if (!model_) return;
  model_->loading_ = false;
  model_->Loaded = true;
}

bool TLoadingMark::On(const TModel* model) { return model && model->loading_; }

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

/// Moves behind a header that came from FromBytes.
bool SearchHeader(TReading& reading, const QString& header) {
  return reading.Search(header.toUtf8().toStdString()) ||
         reading.Search(header.toLatin1().toStdString());
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
    if (!plain && !content.Nodes.Empty()) NoteOrder(Model->Index(), report);
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
  if (ReadModel(text, headers, &Nodes, content, report, progress)) Take(std::move(content));
}

void TModel::Replace(TModelContent content) {
  Take(std::move(content));
  Loaded = true;
  emit OnChange(this);
}

void TModel::Take(TModelContent content) {
  Clear();
  static_cast<TNodeList&>(Nodes) = std::move(content.Nodes);
  static_cast<TNodeList&>(Display) = std::move(content.Display);
  Elements = std::move(content.Elements);
  index_ = std::move(content.Index);
  Size = content.Size;
  Centre = content.Centre;
  Units = std::move(content.Units);
  Axes = std::move(content.Axes);
  Nodes.NodeRadius = Display.NodeRadius = content.NodeRadius;
  Nodes.ElementRadius = Display.ElementRadius = content.ElementRadius;
}

void TModel::Clear() {
  Display.ClearObjects();
  Nodes.ClearObjects();
  Elements.ClearObjects();
  Axes.clear();
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
  const TModelNodes nodes{model.Nodes, model.Index()};
  std::vector<TDataSet> sets;
  if (ReadDataSets(text, nodes, {kMostDataSets, MostNodes}, sets, report, progress)) {
    Replace(std::move(sets), model);
  }
}

std::unique_ptr<TDataNodeList> TMeasuredData::MakeList(TModel& model, TDataSet set) const {
  auto list = std::make_unique<TDataNodeList>(&model, false);
  list->Section = std::move(set.Section);
  list->Frequency = set.Frequency;
  list->Info = std::move(set.Info);
  list->Measured = std::move(set.Measured);
  list->NodeShape = All.GetNodeShape();
  list->NodeColor = All.GetNodeColor();
  list->ElementColor = All.GetElementColor();
  list->Take(std::move(set.Content));
  list->Elements = &model.Elements;
  list->NodeRadius = model.Nodes.NodeRadius;
  list->ElementRadius = model.Nodes.ElementRadius;
  return list;
}

void TMeasuredData::Replace(std::vector<TDataSet> sets, TModel& model) {
  std::vector<std::unique_ptr<TDataNodeList>> lists;
  lists.reserve(sets.size());
  for (TDataSet& set : sets) lists.push_back(MakeList(model, std::move(set)));
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
