#include "model/Datareader.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

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

/// Which of a model's nodes have had a record.
class TRecordedNodes {
 public:
  explicit TRecordedNodes(const TModelNodes& model)
      : model_(model), recorded_(model.Nodes.Count()) {}

  void Add(std::ptrdiff_t index) {
    if (index < 0) return;
    const auto place = static_cast<std::size_t>(index);
    count_ += !recorded_[place];
    recorded_[place] = true;
  }

  /// `header`: a position in the line of the section's header.
  void NoteMissing(TReading& reading, std::size_t header) const {
    if (count_ == recorded_.size()) return;
    std::size_t missing = 0;
    std::int32_t first = 0;
    for (std::size_t i = 0; i < recorded_.size(); ++i) {
      const std::int32_t id = model_.Nodes.Get(i)->ID;
      // Records mean the first of several nodes with one number.
      if (recorded_[i] || model_.Index.Find(id) != static_cast<std::ptrdiff_t>(i)) continue;
      if (missing++ == 0) first = id;
    }
    if (missing == 0) return;
    reading.Report.AddAt(reading.Scanner, header, [&] {
      return missing == 1 ? QStringLiteral(
                                "the data set has no record for node %1 of the model; the node "
                                "is not drawn at its place")
                                .arg(first)
                          : QStringLiteral(
                                "the data set has no records for node %1 and %2 more of the "
                                "model; they are not drawn at their places")
                                .arg(first)
                                .arg(missing - 1);
    });
  }

 private:
  const TModelNodes& model_;
  std::vector<bool> recorded_;
  std::size_t count_ = 0;
};

double LargestAmplitude(const TNodeList& nodes) {
  double square = 0.0;
  for (const TNode* node : nodes) square = std::max(square, SquaredLength(node->Position));
  return std::sqrt(square);
}

}  // namespace

bool ReadDataSet(TReading& reading, const TModelNodes& model, TDataContent& content) {
  bool first = true;
  const std::size_t header = reading.Scanner.Position() - 1;
  const std::size_t faults = reading.Report.Count();
  TRecordedNodes recorded(model);
  const bool goOn = ReadNodeRecords(reading, [&](TNodeRecord& record) {
    if (std::exchange(first, false)) content.Nodes.Reserve(model.Nodes.Count());
    if (content.Nodes.Count() >= model.Nodes.Count()) {
      NoteExcess(reading, record, !model.Nodes.Empty());
      return;
    }
    MakeUsable(reading, record);
    const std::ptrdiff_t index = model.Index.Find(record.ID);
    if (index < 0) NoteUnknown(reading, record);
    recorded.Add(index);
    TNode* node = content.Nodes.Emplace(NodeOf(record));
    if (index >= 0) node->Link = model.Nodes.Get(static_cast<std::size_t>(index));
  });
  if (!goOn) return false;
  content.MaxAmplitude = LargestAmplitude(content.Nodes);
  if (content.Nodes.Empty()) return true;
  // A record that was dropped has been reported; that its node has none follows from it.
  if (reading.Report.Count() == faults) recorded.NoteMissing(reading, header);
  AlignNodes(content.Nodes, model.Nodes, model.Index);
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

std::optional<double> NamedFrequency(TTextScanner& sectionName) {
  const std::string_view text = sectionName.Text();
  if (text.empty() || text[0] != 'F') return std::nullopt;
  sectionName.SetPosition(1);
  sectionName.SkipWhiteSpace();
  if (sectionName.AtEnd() || text[sectionName.Position()] != '=') return std::nullopt;
  sectionName.SetPosition(sectionName.Position() + 1);
  double frequency = 0.0;
  if (!sectionName.ReadReal(frequency)) return std::nullopt;
  return IsUsable(frequency) ? frequency : 0.0;
}
