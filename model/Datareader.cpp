#include "model/Datareader.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "model/Alignment.h"

namespace {

TNode NodeOf(const TNodeRecord& record) {
  const auto& v = record.Values;
  TNode node(record.ID, v[0], v[1], v[2]);
  node.Angles = {v[3], v[4], v[5]};
  return node;
}

/// Zeroes what cannot be drawn; dropping the record would put a filler with a misleading amplitude
/// in its place.
void MakeUsable(TReading& reading, TNodeRecord& record) {
  if (record.IsUsable()) return;
  for (double& value : record.Values) {
    if (!IsUsable(value)) value = 0.0;
  }
  reading.Report.AddAt(reading.Scanner, record.Position, [&record] {
    return QStringLiteral("node %1 has a value that is no number or beyond 1e30; it was set to 0")
        .arg(record.ID);
  });
}

void NoteExcess(TReading& reading, const TNodeRecord& record, bool hasModel) {
  reading.Report.AddAt(reading.Scanner, record.Position, [&record, hasModel] {
    return (hasModel ? QStringLiteral("the record of node %1 is beyond the number of the model's "
                                      "nodes and was dropped")
                     : QStringLiteral("there is no model for the record of node %1; it was "
                                      "dropped"))
        .arg(record.ID);
  });
}

void NoteUnknown(TReading& reading, const TNodeRecord& record) {
  reading.Report.AddAt(reading.Scanner, record.Position, [&record] {
    return QStringLiteral("the model has no node %1; its record was dropped").arg(record.ID);
  });
}

double LargestAmplitude(const TNodeList& nodes) {
  double square = 0.0;
  for (const TNode* node : nodes) square = std::max(square, SquaredLength(node->Position));
  return std::sqrt(square);
}

}  // namespace

bool ReadDataSet(TReading& reading, const TModelNodes& model, TDataContent& content) {
  bool first = true;
  const bool goOn = ReadNodeRecords(reading, [&](TNodeRecord& record) {
    if (std::exchange(first, false)) content.Nodes.Reserve(model.Nodes.Count());
    if (content.Nodes.Count() >= model.Nodes.Count()) {
      NoteExcess(reading, record, !model.Nodes.Empty());
      return;
    }
    MakeUsable(reading, record);
    const std::ptrdiff_t index = model.Index.Find(record.ID);
    if (index < 0) NoteUnknown(reading, record);
    TNode* node = content.Nodes.Emplace(NodeOf(record));
    if (index >= 0) node->Link = model.Nodes.Get(static_cast<std::size_t>(index));
  });
  if (!goOn) return false;
  content.MaxAmplitude = LargestAmplitude(content.Nodes);
  if (!content.Nodes.Empty()) AlignNodes(content.Nodes, model.Nodes, model.Index);
  return true;
}

bool ReadPlainDataSet(TReading& reading, TDataContent& content) {
  const bool goOn = ReadNodeRecords(reading, [&](TNodeRecord& record) {
    MakeUsable(reading, record);
    content.Nodes.Emplace(NodeOf(record));
  });
  content.MaxAmplitude = LargestAmplitude(content.Nodes);
  return goOn;
}

TDataContent CopyOf(const TNodeList& nodes, double maxAmplitude) {
  TDataContent copy;
  copy.Nodes.Reserve(nodes.Count());
  for (const TNode* node : nodes) copy.Nodes.Emplace(*node);
  copy.MaxAmplitude = maxAmplitude;
  return copy;
}

double FrequencyOf(TTextScanner& sectionName) {
  const std::string_view text = sectionName.Text();
  if (text.empty() || text[0] != 'F') return 0.0;
  sectionName.SetPosition(1);
  sectionName.SkipWhiteSpace();
  if (sectionName.AtEnd() || text[sectionName.Position()] != '=') return 0.0;
  sectionName.SetPosition(sectionName.Position() + 1);
  double frequency = 0.0;
  return sectionName.ReadReal(frequency) && IsUsable(frequency) ? frequency : 0.0;
}
