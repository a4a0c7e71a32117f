#include "exchange/Modelwriter.h"

#include <algorithm>
#include <set>
#include <span>

#include "exchange/Linewriter.h"
#include "exchange/Nodeplaces.h"

namespace {

void WriteReal(TLineWriter& out, double value) {
  out.Text(" ");
  out.Shortest(value);
}

void WriteVertex(TLineWriter& out, const TVertex& v) {
  WriteReal(out, v.x);
  WriteReal(out, v.y);
  WriteReal(out, v.z);
}

void WriteOptions(TLineWriter& out, const TModel& model) {
  out.Text("[Options]\nNodeRadius=");
  out.Shortest(model.Nodes.NodeRadius);
  out.Text("\nElementRadius=");
  out.Shortest(model.Nodes.ElementRadius);
  out.Text("\n\n");
}

template <class TNodes>
void WriteElement(TLineWriter& out, const TModel& model, const TElement& element,
                  const TNodes& nodes) {
  out.Int(element.ID, 1);
  out.Text(" ");
  out.Int(element.Type, 1);
  if (element.Type != TElement::kFace) WriteReal(out, element.Radius);
  if (element.Type == TElement::kRoll) {
    WriteReal(out, element.RollParam1);
    WriteReal(out, element.RollParam2);
  }
  out.Text(" ");
  out.Int(element.Color.Value(), 1);
  out.Text(" ");
  out.Int(element.NodeCount(), 1);
  for (const std::int32_t index : nodes) {
    out.Text(" ");
    out.Int(model.Nodes.Get(static_cast<std::size_t>(index))->ID, 1);
  }
  out.EndLine();
}

bool HasAngles(const TDataNodeList& list) {
  return std::any_of(list.begin(), list.end(),
                     [](const TNode* node) { return node->Angles != TVertex{}; });
}

/// Nodes that the model lacks. Those that stand for model nodes without a record are not counted.
std::size_t CountForeign(const TDataNodeList& list) {
  return static_cast<std::size_t>(std::count_if(list.begin(), list.end(), [&](const TNode* node) {
    return !node->Link && (!list.Model || list.Model->NodeIndex(node->ID) < 0);
  }));
}

/// Whether something is known of a set that a data file has no place for.
bool IsDescribed(const TShapeInfo& info) {
  return info.Mode != 0 || info.Damping != 0.0 ||
         std::ranges::any_of(info.Lines, [](const QString& line) { return !line.isEmpty(); });
}

/// The header of a set; one that another set has already gets a number behind its name.
QString UniqueHeader(const QString& header, std::set<QString>& taken) {
  QString name = header;
  for (int number = 2; !taken.insert(name).second; ++number) {
    name = header.chopped(1) + QStringLiteral(" (%1)]").arg(number);
  }
  return name;
}

void WriteRecords(TLineWriter& out, const TDataNodeList& list) {
  const bool angles = HasAngles(list);
  for (const TNode* node : list) {
    if (!node->Link) continue;
    out.Int(node->ID);
    WriteVertex(out, node->Position);
    if (angles) WriteVertex(out, node->Angles);
    out.EndLine();
  }
}

}  // namespace

std::string WriteModelText(const TModel& model) {
  TLineWriter out;
  WriteOptions(out, model);
  out.Text("[Nodes]\n");
  const TNodePlaces places(model);
  for (const TNode* node : model.Nodes) {
    out.Int(node->ID);
    WriteVertex(out, places.Of(*node));
    out.EndLine();
  }
  out.Text("\n[Elements]\n");
  const auto twoSided = std::count_if(model.Elements.begin(), model.Elements.end(),
                                      [](const TElement* element) { return element->IsTwoSided; });
  out.Int(static_cast<std::int64_t>(model.Elements.Count()) + twoSided, 1);
  out.EndLine();
  for (const TElement* element : model.Elements) {
    const auto nodes = element->Nodes();
    WriteElement(out, model, *element, nodes);
    if (!element->IsTwoSided) continue;
    std::vector<std::int32_t> reversed(nodes.rbegin(), nodes.rend());
    WriteElement(out, model, *element, reversed);
  }
  return out.Take();
}

std::string WriteDataText(const TMeasuredData& data, TFindings& findings) {
  TLineWriter out;
  std::set<QString> headers;
  std::size_t foreign = 0;
  std::size_t renamed = 0;
  std::size_t partial = 0;
  std::size_t described = 0;
  for (const TDataNodeList* list : data.All) {
    const QString header = UniqueHeader(list->Section, headers);
    renamed += header != list->Section;
    foreign += CountForeign(*list);
    partial += std::ranges::find(list->Measured, false) != list->Measured.end();
    described += IsDescribed(list->Info);
    out.Text(header.toStdString());
    out.EndLine();
    WriteRecords(out, *list);
    out.EndLine();
  }
  const QString set = QStringLiteral("data set");
  const auto leaveOut = [&](std::size_t count, const QString& what) {
    if (count > 0) findings.LeaveOut({}, 0, what);
  };
  leaveOut(foreign, QStringLiteral("%1 of nodes that the model lacks")
                        .arg(Counted(foreign, QStringLiteral("record"))));
  leaveOut(described,
           QStringLiteral("damping, mode number and texts of ") + Counted(described, set));
  leaveOut(partial, QStringLiteral("which nodes were not measured in ") + Counted(partial, set));
  if (renamed > 0) {
    findings.Warn(
        {}, 0,
        Counted(renamed, set) + QStringLiteral(" with the name of another got a number behind it"));
  }
  return out.Take();
}
