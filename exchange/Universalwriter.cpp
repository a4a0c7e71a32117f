#include "exchange/Universalwriter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <unordered_map>
#include <vector>

#include "exchange/Linewriter.h"
#include "exchange/Nodeplaces.h"

namespace {

constexpr int kGlobalSystem = 1;
constexpr int kColor = 11;

void WriteMark(TLineWriter& out) { out.Text("    -1\n"); }

void BeginSet(TLineWriter& out, int type) {
  WriteMark(out);
  out.Int(type, 6);
  out.EndLine();
}

void WriteInts(TLineWriter& out, std::initializer_list<std::int64_t> values) {
  for (const std::int64_t value : values) out.Int(value);
  out.EndLine();
}

void WriteReals(TLineWriter& out, std::initializer_list<double> values) {
  for (const double value : values) out.Packed(value);
  out.EndLine();
}

/// A line of free text, which can neither end the set nor be longer than a line.
void WriteText(TLineWriter& out, QString text) {
  constexpr qsizetype kColumns = 80;
  text.replace('\n', ' ').replace('\r', ' ');
  if (text.trimmed() == QLatin1String("-1")) text.prepend('_');
  const QString line = text.left(kColumns);
  out.Text(line.trimmed().isEmpty() ? "NONE" : line.toStdString());
  out.EndLine();
}

void WriteHeader(TLineWriter& out, const QDateTime& written) {
  const QString program = QStringLiteral("Velmora Animator");
  const QString date =
      written.isValid() ? written.toString(QStringLiteral("dd-MM-yy  HH:mm:ss")) : QString();
  BeginSet(out, 151);
  for (const QString& line : {QString(), QString(), program, date, date, program, date}) {
    WriteText(out, line);
  }
  WriteMark(out);
}

void WriteUnits(TLineWriter& out, const TUnits& units) {
  constexpr int kUserDefined = 9;
  constexpr std::size_t kNameColumns = 20;
  const bool given = units.IsGiven();
  std::string name = given ? units.Name.toLatin1().toStdString() : "not known";
  name.resize(kNameColumns, ' ');
  BeginSet(out, 164);
  out.Int(given ? units.Code : kUserDefined);
  out.Text(name);
  out.Int(units.TemperatureMode);
  out.EndLine();
  for (const double factor : {units.Length, units.Force, units.Temperature}) {
    out.Exponent(factor, 25, 16);
  }
  out.EndLine();
  out.Exponent(units.TemperatureOffset, 25, 16);
  out.EndLine();
  WriteMark(out);
}

void WriteNodes(TLineWriter& out, const TModel& model) {
  const TNodePlaces places(model);
  BeginSet(out, 2411);
  for (const TNode* node : model.Nodes) {
    WriteInts(out, {node->ID, kGlobalSystem, kGlobalSystem, kColor});
    const TVertex p = places.Of(*node);
    for (const double value : {p.x, p.y, p.z}) out.Exponent(value, 25, 16);
    out.EndLine();
  }
  WriteMark(out);
}

/// The corners of an element without those that come twice running.
using TCorners = std::vector<std::int32_t>;

/// What of a model's elements a universal file can hold.
class TDrawing {
 public:
  explicit TDrawing(const TModel& model) {
    for (const TElement* element : model.Elements) Add(*element);
  }

  const std::vector<std::array<std::int32_t, 2>>& Bars() const { return bars_; }
  const std::vector<TCorners>& Faces() const { return faces_; }

  void Note(TFindings& findings) const {
    const auto note = [&](std::size_t count, const char* what, const char* how) {
      if (count > 0) findings.Warn({}, 0, Counted(count, QLatin1String(what)) + QLatin1String(how));
    };
    note(rolls_, "roll", " written as lines");
    note(points_, "point", " not written: the format has no such elements");
    note(oneSided_, "face", " that in the file can be seen from both sides");
    note(split_, "face", " of more than four corners written as triangles");
    note(styled_, "element", " without its own radius or colour");
  }

 private:
  struct TSide {
    std::size_t index;  ///< in faces_
    bool isAlone;       ///< shows from one side unless the other one comes
  };

  void Add(const TElement& element) {
    const auto nodes = element.Nodes();
    switch (element.Type) {
      case TElement::kBar:
      case TElement::kRoll:
        if (nodes.size() != 2) return;
        bars_.push_back({nodes[0], nodes[1]});
        rolls_ += element.Type == TElement::kRoll;
        break;
      case TElement::kFace:
        if (nodes.size() < 3) return;
        if (!AddFace(element)) return;
        break;
      default:
        ++points_;
        return;
    }
    styled_ += element.Radius != 0.0 || !element.Color.IsInherited();
  }

  /// False for the other side of a face that is there already.
  bool AddFace(const TElement& element) {
    const auto nodes = element.Nodes();
    TCorners key(nodes.begin(), nodes.end());
    std::sort(key.begin(), key.end());
    const auto [place, fresh] =
        sides_.try_emplace(Hash(key), TSide{faces_.size(), !element.IsTwoSided});
    if (!fresh && IsOtherSide(faces_[place->second.index], nodes)) {
      oneSided_ -= place->second.isAlone;
      sides_.erase(place);
      return false;
    }
    oneSided_ += !element.IsTwoSided;
    split_ += nodes.size() > 4;
    faces_.emplace_back(nodes.begin(), nodes.end());
    return true;
  }

  static std::size_t Hash(const TCorners& corners) {
    std::size_t hash = corners.size();
    for (const std::int32_t corner : corners) {
      hash = (hash ^ static_cast<std::size_t>(corner)) * 0x9E3779B97F4A7C15U;
      hash ^= hash >> 32;
    }
    return hash;
  }

  /// Whether `nodes` goes round the same corners the other way.
  static bool IsOtherSide(const TCorners& face, std::span<const std::int32_t> nodes) {
    const std::size_t count = face.size();
    if (nodes.size() != count) return false;
    const auto start = std::find(nodes.begin(), nodes.end(), face[0]);
    if (start == nodes.end()) return false;
    const auto first = static_cast<std::size_t>(start - nodes.begin());
    for (std::size_t i = 0; i < count; ++i) {
      if (nodes[(first + count - i) % count] != face[i]) return false;
    }
    return true;
  }

  std::vector<std::array<std::int32_t, 2>> bars_;
  std::vector<TCorners> faces_;
  std::unordered_map<std::size_t, TSide> sides_;  ///< by a hash of the sorted corners
  std::size_t rolls_ = 0;
  std::size_t points_ = 0;
  std::size_t oneSided_ = 0;
  std::size_t split_ = 0;
  std::size_t styled_ = 0;
};

/// Writes the elements of a model by the numbers of its nodes.
class TElementWriter {
 public:
  TElementWriter(TLineWriter& out, const TModel& model) : out_(out), model_(model) {}

  /// One trace line: bars that go on where the last one ended are one stroke. Returns how many
  /// were left out, for they name node 0, which lifts the pen.
  std::size_t WriteTraceLine(const std::vector<std::array<std::int32_t, 2>>& bars) {
    std::vector<std::int32_t> entries;
    std::int32_t last = -1;
    std::size_t leftOut = 0;
    for (const auto& [from, to] : bars) {
      if (Number(from) == 0 || Number(to) == 0) {
        ++leftOut;
        continue;
      }
      if (from != last && last >= 0) entries.push_back(0);
      if (from != last) entries.push_back(Number(from));
      entries.push_back(Number(to));
      last = to;
    }
    BeginSet(out_, 82);
    WriteInts(out_, {1, static_cast<std::int64_t>(entries.size()), kColor});
    WriteText(out_, QStringLiteral("lines"));
    WriteLabels(entries);
    WriteMark(out_);
    return leftOut;
  }

  void BeginElements() { BeginSet(out_, 2412); }
  void EndElements() { WriteMark(out_); }

  void WriteBars(const std::vector<std::array<std::int32_t, 2>>& bars) {
    constexpr int kBeam = 21;
    for (const auto& [from, to] : bars) {
      WriteInts(out_, {++label_, kBeam, 1, 1, kColor, 2});
      WriteInts(out_, {0, 1, 1});
      WriteLabels({Number(from), Number(to)});
    }
  }

  void WriteFaces(const std::vector<TCorners>& faces) {
    for (const TCorners& face : faces) {
      if (face.size() <= 4) {
        WriteShell(face);
        continue;
      }
      for (std::size_t i = 2; i < face.size(); ++i) WriteShell({face[0], face[i - 1], face[i]});
    }
  }

 private:
  void WriteShell(const TCorners& corners) {
    constexpr int kTriangle = 91;
    constexpr int kQuadrilateral = 94;
    const auto count = static_cast<std::int64_t>(corners.size());
    WriteInts(out_, {++label_, count == 3 ? kTriangle : kQuadrilateral, 1, 1, kColor, count});
    std::vector<std::int32_t> labels;
    for (const std::int32_t corner : corners) labels.push_back(Number(corner));
    WriteLabels(labels);
  }

  void WriteLabels(const std::vector<std::int32_t>& labels) {
    constexpr std::size_t kPerLine = 8;
    for (std::size_t i = 0; i < labels.size(); ++i) {
      out_.Int(labels[i]);
      if (i % kPerLine == kPerLine - 1 || i + 1 == labels.size()) out_.EndLine();
    }
  }

  std::int32_t Number(std::int32_t index) const {
    return model_.Nodes.Get(static_cast<std::size_t>(index))->ID;
  }

  TLineWriter& out_;
  const TModel& model_;
  std::int32_t label_ = 0;
};

/// One data set as the format knows it.
class TShapeWriter {
 public:
  TShapeWriter(TLineWriter& out, const TUniversalOptions& options) : out_(out), options_(options) {}

  void Write(const TDataNodeList& list, int label) {
    info_ = list.Info;
    frequency_ = list.Frequency;
    if (info_.Kind == TShapeKind::Unknown) {
      info_.Kind = frequency_ > 0.0 ? TShapeKind::Response : TShapeKind::Static;
    }
    complex_ = info_.IsComplex || std::any_of(list.begin(), list.end(), [](const TNode* node) {
                 return node->Angles != TVertex{};
               });
    CompleteEigenvalue();
    if (options_.Shapes == TShapesType::Nodal55) {
      WriteHead55();
    } else {
      WriteHead2414(list, label);
    }
    WriteNodes(list);
    WriteMark(out_);
  }

 private:
  bool IsComplexMode() const {
    return info_.Kind == TShapeKind::ComplexMode ||
           info_.Kind == TShapeKind::ComplexModeSecondOrder;
  }

  /// A complex mode has its frequency in the eigenvalue; one that came without gets it from the
  /// damped frequency and the damping.
  void CompleteEigenvalue() {
    if (!IsComplexMode() || info_.Eigenvalue != std::complex<double>()) return;
    const double damped = 2.0 * std::numbers::pi * frequency_;
    const double ratio = std::clamp(info_.Damping, -0.999, 0.999);
    info_.Eigenvalue = {-ratio * damped / std::sqrt(1.0 - ratio * ratio), damped};
  }

  int DataType() const {
    if (options_.IsDouble) return complex_ ? 6 : 4;
    return complex_ ? 5 : 2;
  }

  void WriteLines() {
    for (const QString& line : info_.Lines) WriteText(out_, line);
  }

  void WriteKind() {
    constexpr int kStructural = 1;
    constexpr int kTranslations = 2;
    WriteInts(out_, {kStructural, static_cast<int>(info_.Kind), kTranslations, info_.Quantity,
                     DataType(), 3});
  }

  void WriteHead55() {
    BeginSet(out_, 55);
    WriteLines();
    WriteKind();
    switch (info_.Kind) {
      case TShapeKind::NormalMode:
        WriteInts(out_, {2, 4, info_.LoadCase, info_.Mode});
        WriteReals(out_, {frequency_, info_.ModalMass, info_.Damping, info_.HystereticDamping});
        break;
      case TShapeKind::ComplexMode:
      case TShapeKind::ComplexModeSecondOrder:
        WriteInts(out_, {2, 6, info_.LoadCase, info_.Mode});
        WriteReals(out_, {info_.Eigenvalue.real(), info_.Eigenvalue.imag(), info_.ModalA.real(),
                          info_.ModalA.imag(), info_.ModalB.real(), info_.ModalB.imag()});
        break;
      case TShapeKind::Transient:
        WriteInts(out_, {2, 1, info_.LoadCase, info_.Mode});
        WriteReals(out_, {info_.Time});
        break;
      case TShapeKind::Response:
        WriteInts(out_, {2, 1, info_.LoadCase, info_.Mode});
        WriteReals(out_, {frequency_});
        break;
      default:
        WriteInts(out_, {1, 1, info_.LoadCase});
        WriteReals(out_, {info_.Eigenvalue.real()});
    }
  }

  void WriteHead2414(const TDataNodeList& list, int label) {
    constexpr int kAtNodes = 1;
    const bool isMode = info_.Kind == TShapeKind::NormalMode || IsComplexMode();
    const bool isStep = info_.Kind == TShapeKind::Transient;
    BeginSet(out_, 2414);
    WriteInts(out_, {label});
    WriteText(out_, list.Section.sliced(1).chopped(1));
    WriteInts(out_, {kAtNodes});
    WriteLines();
    WriteKind();
    WriteInts(out_, {0, 0, 0, 0, info_.LoadCase, isMode ? info_.Mode : 0, isStep ? info_.Mode : 0,
                     isMode || isStep ? 0 : info_.Mode});
    WriteInts(out_, {0, 0});
    const double eigenvalue = IsComplexMode() ? 0.0 : info_.Eigenvalue.real();
    WriteReals(out_, {info_.Time, frequency_, eigenvalue, info_.ModalMass, info_.Damping,
                      info_.HystereticDamping});
    const std::complex<double> pole = IsComplexMode() ? info_.Eigenvalue : 0.0;
    WriteReals(out_, {pole.real(), pole.imag(), info_.ModalA.real(), info_.ModalA.imag(),
                      info_.ModalB.real(), info_.ModalB.imag()});
  }

  void WriteNodes(const TDataNodeList& list) {
    for (std::size_t i = 0; i < list.Count(); ++i) {
      const TNode& node = *list.Get(i);
      const bool measured = i >= list.Measured.size() || list.Measured[i];
      if (!node.Link || !measured) continue;
      out_.Int(node.ID);
      out_.EndLine();
      WriteValues(node);
    }
  }

  void WriteValues(const TNode& node) {
    const TVertex& a = node.Position;
    const TVertex& p = node.Angles;
    const std::array<std::array<double, 2>, 3> parts = {{{a.x, p.x}, {a.y, p.y}, {a.z, p.z}}};
    constexpr int kPerLine = 4;  // of 20 columns
    int count = 0;
    const auto write = [&](double value) {
      if (!options_.IsDouble) return out_.Packed(value);
      if (count > 0 && count % kPerLine == 0) out_.EndLine();
      ++count;
      out_.Exponent(value, 20, 12);
    };
    for (const auto& [amplitude, angle] : parts) {
      write(complex_ ? amplitude * std::cos(angle) : amplitude);
      if (complex_) write(amplitude * std::sin(angle));
    }
    out_.EndLine();
  }

  TLineWriter& out_;
  const TUniversalOptions& options_;
  TShapeInfo info_;
  double frequency_ = 0.0;
  bool complex_ = false;
};

std::size_t CountUnlinked(const TMeasuredData& data) {
  std::size_t count = 0;
  for (const TDataNodeList* list : data.All) {
    count += static_cast<std::size_t>(
        std::count_if(list->begin(), list->end(), [](const TNode* node) { return !node->Link; }));
  }
  return count;
}

}  // namespace

std::string WriteUniversal(const TModel& model, const TMeasuredData& data,
                           const TUniversalOptions& options, TFindings& findings) {
  TLineWriter out;
  WriteHeader(out, options.Written);
  WriteUnits(out, model.Units);
  WriteNodes(out, model);
  const TDrawing drawing(model);
  TElementWriter elements(out, model);
  const bool traced = options.Lines == TLinesType::TraceLines;
  if (traced && !drawing.Bars().empty()) {
    if (const std::size_t leftOut = elements.WriteTraceLine(drawing.Bars()); leftOut > 0) {
      findings.LeaveOut({}, 0,
                        Counted(leftOut, QStringLiteral("line")) + QStringLiteral(" of node 0"));
    }
  }
  if (!drawing.Faces().empty() || (!traced && !drawing.Bars().empty())) {
    elements.BeginElements();
    if (!traced) elements.WriteBars(drawing.Bars());
    elements.WriteFaces(drawing.Faces());
    elements.EndElements();
  }
  drawing.Note(findings);
  TShapeWriter shapes(out, options);
  int label = 0;
  for (const TDataNodeList* list : data.All) shapes.Write(*list, ++label);
  if (const std::size_t unlinked = CountUnlinked(data); unlinked > 0) {
    findings.LeaveOut({}, 0,
                      QStringLiteral("%1 of nodes without a place in the model")
                          .arg(Counted(unlinked, QStringLiteral("value"))));
  }
  return out.Take();
}
