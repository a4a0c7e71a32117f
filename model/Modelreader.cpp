#include "model/Modelreader.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "model/Reading.h"

namespace {

/// An element record up to its node IDs; what could not be read is 0.
struct TElementRecord {
  std::int32_t ID = 0;
  std::int32_t Type = 0;
  double Radius = 0.0;
  double RollParam1 = 0.0;
  double RollParam2 = 0.0;
  std::int32_t Color = 0;
  std::int32_t NodeCount = 0;
};

void ReadRadius(TReading& reading, std::string_view key, double& radius) {
  double value = 0.0;
  if (!reading.Search(key) || !reading.Scanner.ReadReal(value)) return;
  if (IsUsable(value)) radius = value;
  if (reading.Scanner.AtDecimalComma()) NoteDecimalComma(reading, reading.Scanner.Position());
}

void ReadOptions(TReading& reading, TModelContent& content) {
  if (!reading.Search("[Options]")) return;
  ReadRadius(reading, "NodeRadius=", content.NodeRadius);
  ReadRadius(reading, "ElementRadius=", content.ElementRadius);
}

/// How many records follow: as many as the section has lines. A lower bound of a record's length
/// keeps a section of empty lines from asking for more memory than it is long.
std::size_t ExpectedRecords(const TTextScanner& scanner) {
  constexpr std::size_t kShortestRecord = 8;
  const std::string_view rest = scanner.Text().substr(scanner.Position());
  const std::string_view section = rest.substr(0, rest.find('['));
  const auto lines = static_cast<std::size_t>(std::count(section.begin(), section.end(), '\n'));
  return std::min(lines, section.size() / kShortestRecord + 1);
}

void NoteUnusable(TReading& reading, const TNodeRecord& record) {
  reading.Report.AddAt(reading.Scanner, record.Position, [&] {
    return QStringLiteral(
               "node %1 has a value that is no number or beyond 1e30; the node was dropped")
        .arg(record.ID);
  });
}

void ReadNodes(TReading& reading, std::string_view header, TModelContent& content,
               TExtent& extent) {
  if (!reading.Search(header)) return;
  const std::size_t expected = ExpectedRecords(reading.Scanner);
  content.Nodes.Reserve(expected);
  content.Display.Reserve(expected);
  std::vector<std::int32_t> ids;
  ids.reserve(expected);
  ReadNodeRecords(reading, [&](const TNodeRecord& record) {
    if (!record.IsUsable()) {
      NoteUnusable(reading, record);
      return;
    }
    const auto& v = record.Values;
    TNode* node = content.Nodes.Emplace(record.ID, v[0], v[1], v[2]);
    node->Angles = {v[3], v[4], v[5]};
    content.Display.Emplace(record.ID, TVertex{})->Link = node;
    ids.push_back(record.ID);
    extent.Add(node->Position);
  });
  content.Index.Build(ids);
}

/// Reads the elements of one section.
class TElementReader {
 public:
  TElementReader(TReading& reading, const TNodeList* nodeList, TModelContent& content)
      : reading_(reading), scanner_(reading.Scanner), nodeList_(nodeList), content_(content) {}

  void Read() {
    const std::size_t start = reported_ = scanner_.Position();
    if (!scanner_.ReadInt(announced_, &outOfRange_)) {
      Note(start, [] {
        return QStringLiteral("the number of elements is missing; no elements were read");
      });
      return;
    }
    NoteRange(start);
    // A read that fails without moving fails for ever, so the rest of the count can be left out.
    for (std::int32_t i = 0; i < announced_; ++i) {
      scanner_.SkipWhiteSpace();
      const std::size_t before = scanner_.Position();
      if (!ReadElement() && scanner_.Position() == before) break;
      if (!ReportProgress()) return;
    }
    NoteWrongCount();
  }

 private:
  template <class TMakeWords>
  void Note(std::size_t position, TMakeWords makeWords) {
    reading_.Report.AddAt(scanner_, position, makeWords);
  }

  void NoteRange(std::size_t position) {
    if (outOfRange_) {
      Note(position, [] {
        return QStringLiteral(
            "a number does not fit into 32 bits and was cut to the nearest that does");
      });
    }
    outOfRange_ = false;
  }

  /// Reports the progress. False once the user has cancelled.
  bool ReportProgress() {
    const std::size_t from = std::exchange(reported_, scanner_.Position());
    return reading_.Advance(reported_ - from);
  }

  bool Int(std::int32_t& value) { return scanner_.ReadInt(value, &outOfRange_); }
  bool Real(double& value) { return scanner_.ReadReal(value); }

  /// The two formats of a record; each stops at the first number that it cannot read.
  bool ReadHead(TElementRecord& r) {
    const bool known = Int(r.ID) && Int(r.Type);
    bool complete = false;
    if (r.Type == TElement::kRoll) {
      complete = Real(r.Radius) && Real(r.RollParam1) && Real(r.RollParam2) && Int(r.Color) &&
                 Int(r.NodeCount);
    } else if (r.Type == TElement::kFace) {
      complete = Int(r.Color) && Int(r.NodeCount);
    } else {
      complete = Real(r.Radius) && Int(r.Color) && Int(r.NodeCount);
    }
    return known && complete;
  }

  /// Reads one record and keeps its element if all is well. False if a number was missing.
  bool ReadElement() {
    const std::size_t start = scanner_.Position();
    TElementRecord record;
    const bool complete = ReadHead(record);
    NoteRange(start);
    // Without node IDs to read: those of the file are taken as the start of the next record.
    if (record.NodeCount < 1 || record.Type < 1) return complete && CountWhole();
    missing_ = false;
    const bool all = ReadNodeIds(record.NodeCount);
    NoteRange(start);
    if (!complete || !all) return false;
    if (missing_) {
      Note(start, [&] {
        return QStringLiteral(
                   "element %1 names node %2, which does not exist; the element was dropped")
            .arg(record.ID)
            .arg(missingId_);
      });
    } else {
      MakeUsable(record, start);
      Keep(record);
    }
    return CountWhole();
  }

  bool CountWhole() {
    ++whole_;
    return true;
  }

  bool ReadNodeIds(std::int32_t count) {
    constexpr std::int32_t kTellEvery = 1 << 16;
    indices_.clear();
    bool all = true;
    for (std::int32_t i = 0; i < count; ++i) {
      if (i % kTellEvery == kTellEvery - 1 && !ReportProgress()) return false;
      const std::size_t before = scanner_.Position();
      std::int32_t id = 0;
      if (!Int(id)) {
        all = false;
        if (scanner_.Position() == before) break;
        continue;
      }
      const std::ptrdiff_t index = content_.Index.Find(id);
      if (index < 0 && !missing_) {
        missing_ = true;
        missingId_ = id;
      }
      if (!missing_) indices_.push_back(static_cast<std::int32_t>(index));
    }
    return all;
  }

  void MakeUsable(TElementRecord& record, std::size_t start) {
    bool usable = true;
    for (double* value : {&record.Radius, &record.RollParam1, &record.RollParam2}) {
      if (IsUsable(*value)) continue;
      *value = 0.0;
      usable = false;
    }
    if (usable) return;
    Note(start, [&record] {
      return QStringLiteral(
                 "element %1 has a value that is no number or beyond 1e30; it was set to 0")
          .arg(record.ID);
    });
  }

  void Keep(const TElementRecord& record) {
    // Types beyond 8 bits are points like all the others beyond a face.
    const auto type = static_cast<std::uint8_t>(
        std::min<std::int32_t>(record.Type, std::numeric_limits<std::uint8_t>::max()));
    TElement* element = content_.Elements.Emplace(type, record.NodeCount);
    std::copy(indices_.begin(), indices_.end(), element->Nodes().begin());
    element->ID = record.ID;
    element->Color = TColor(record.Color);
    element->Radius = record.Radius;
    element->RollParam1 = record.RollParam1;
    element->RollParam2 = record.RollParam2;
    element->NodeList = nodeList_;
  }

  void NoteWrongCount() {
    if (whole_ < announced_) {
      Note(scanner_.Position(), [this] {
        return QStringLiteral(
                   "the elements end after %1 of %2 records; the missing ones were dropped")
            .arg(whole_)
            .arg(announced_);
      });
      return;
    }
    const std::size_t behind = scanner_.Position();
    TTextScanner next = scanner_;
    std::int32_t more = 0;
    if (!next.ReadInt(more)) return;
    next.SetPosition(behind);
    next.SkipWhiteSpace();
    Note(next.Position(), [this] {
      return QStringLiteral(
                 "there are more element records than the %1 announced; the rest was dropped")
          .arg(announced_);
    });
  }

  TReading& reading_;
  TTextScanner& scanner_;
  const TNodeList* nodeList_;
  TModelContent& content_;
  std::int32_t announced_ = 0;
  std::int32_t whole_ = 0;    ///< records of which every number was there
  std::size_t reported_ = 0;  ///< position up to which the progress was reported
  bool outOfRange_ = false;
  bool missing_ = false;
  std::int32_t missingId_ = 0;
  std::vector<std::int32_t> indices_;
};

void ReadElements(TReading& reading, std::string_view header, const TNodeList* nodeList,
                  TModelContent& content) {
  if (!reading.Search(header)) return;
  TElementReader(reading, nodeList, content).Read();
}

/// Centres the nodes on the origin, sets Size and gives radii that are unset their defaults.
void Normalise(TModelContent& content, const TExtent& extent) {
  MoveToCentre(content, extent);
  // Measured before the centring: a model far from the origin is meant to get a large Size.
  content.Size = extent.Reach();
  SetRadii(content);
}

}  // namespace

void TExtent::Add(const TVertex& p) {
  low_ = {std::min(low_.x, p.x), std::min(low_.y, p.y), std::min(low_.z, p.z)};
  high_ = {std::max(high_.x, p.x), std::max(high_.y, p.y), std::max(high_.z, p.z)};
  square_ = std::max(square_, SquaredLength(p));
}

void MoveToCentre(TModelContent& content, const TExtent& extent) {
  if (content.Nodes.Empty()) return;
  content.Centre = extent.Centre();
  for (TNode* node : content.Nodes) node->Position -= content.Centre;
}

void SetRadii(TModelContent& content) {
  if (!(content.NodeRadius > 0.0)) content.NodeRadius = 0.01 * content.Size;
  if (!(content.ElementRadius > 0.0)) content.ElementRadius = 0.5 * content.NodeRadius;
}

bool ReadModel(std::string_view text, const TModelHeaders& headers, const TNodeList* nodeList,
               TModelContent& content, TLoadReport& report, const TLoadProgress& progress) {
  TReading reading(text, report, progress);
  ReadOptions(reading, content);
  TExtent extent;
  ReadNodes(reading, headers.Nodes, content, extent);
  if (content.Nodes.Empty()) report.Add(0, QStringLiteral("it holds no nodes"));
  ReadElements(reading, headers.Elements, nodeList, content);
  if (report.Cancelled()) return false;
  Normalise(content, extent);
  return true;
}
