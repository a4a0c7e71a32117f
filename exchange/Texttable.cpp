#include "exchange/Texttable.h"

#include <QByteArrayView>
#include <QStringDecoder>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <unordered_map>

#include "exchange/Fields.h"
#include "model/Animmodel.h"
#include "model/Reading.h"

namespace {

constexpr std::size_t kMostColumns = 64;
constexpr std::size_t kMostCorners = 32;

enum class TTableKind { Nodes, Lines, Faces, Shapes };

/// How the columns of a table stand apart, and what cuts its numbers.
struct TDialect {
  char Separator = ',';
  bool MayHaveComma = false;  ///< as the decimal sign
};

TDialect DialectOf(std::string_view head) {
  for (const char separator : {'\t', ';'}) {
    if (head.find(separator) != head.npos) return {separator, true};
  }
  return {};
}

/// Units of length that a head may name: "x [mm]".
struct TLengthUnit {
  std::string_view Name;
  TUnits Units;
};
const std::array<TLengthUnit, 5>& LengthUnits() {
  static const std::array<TLengthUnit, 5> units = [] {
    const auto make = [](std::string_view name, int code, const char* text, double perMetre) {
      TUnits made;
      made.Code = code;
      made.Name = QLatin1String(text);
      made.Length = perMetre;
      return TLengthUnit{name, made};
    };
    return std::array{make("mm", 5, "Millimetre", 1000.0), make("cm", 6, "Centimetre", 100.0),
                      make("m", 1, "Metre", 1.0), make("in", 7, "Inch", 1.0 / 0.0254),
                      make("ft", 2, "Foot", 1.0 / 0.3048)};
  }();
  return units;
}

/// Cuts the next field off a line; quotes about it are taken off.
std::string_view NextField(std::string_view& line, char separator) {
  std::size_t begin = 0;
  while (begin < line.size() && line[begin] == ' ') ++begin;
  std::size_t end = line.find(separator);
  if (begin < line.size() && line[begin] == '"') {
    const std::size_t quote = line.find('"', begin + 1);
    end = quote == line.npos ? line.npos : line.find(separator, quote);
  }
  std::string_view field = Trimmed(line.substr(0, end));
  line.remove_prefix(end == line.npos ? line.size() : end + 1);
  if (field.size() >= 2 && field.front() == '"' && field.back() == '"') {
    field = Trimmed(field.substr(1, field.size() - 2));
  }
  return field;
}

/// A column's head without case, blanks and brackets: "X [Re]" is "xre".
std::string Plain(std::string_view head) {
  std::string plain;
  for (std::size_t i = 0; i < head.size(); ++i) {
    const char c = head[i];
    if (head.substr(i).starts_with("\xC2\xB0")) {  // a degree sign in UTF-8
      plain += "deg";
      ++i;
    } else if (c == '\xB0') {  // and in Latin-1
      plain += "deg";
    } else if (c >= 'A' && c <= 'Z') {
      plain += static_cast<char>(c + ('a' - 'A'));
    } else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
      plain += c;
    }
  }
  return plain;
}

/// What the columns of a table are, by its head.
class THead {
 public:
  explicit THead(std::string_view line) : dialect_(DialectOf(line)) {
    const std::size_t columns =
        1 + static_cast<std::size_t>(std::count(line.begin(), line.end(), dialect_.Separator));
    for (std::size_t i = 0; i < std::min(columns, kMostColumns); ++i) {
      names_.push_back(Plain(NextField(line, dialect_.Separator)));
    }
    FindKind();
  }

  const TDialect& Dialect() const { return dialect_; }
  std::optional<TTableKind> Kind() const { return kind_; }
  std::size_t Columns() const { return names_.size(); }

  int Node = -1;
  int Frequency = -1;
  std::vector<int> Corners;                  ///< of lines and faces
  std::array<int, 3> Values = {-1, -1, -1};  ///< x, y, z: coordinates, amplitudes or real parts
  std::array<int, 3> Angles = {-1, -1, -1};
  std::array<int, 3> Imaginary = {-1, -1, -1};
  std::array<double, 3> AngleFactor = {1.0, 1.0, 1.0};  ///< to radians
  const TUnits* Units = nullptr;                        ///< of coordinates, if the head names them

 private:
  int Find(std::initializer_list<std::string_view> names) const {
    for (const std::string_view name : names) {
      const auto found = std::find(names_.begin(), names_.end(), name);
      if (found != names_.end()) return static_cast<int>(found - names_.begin());
    }
    return -1;
  }

  void FindKind() {
    Node = Find({"node", "nodeid", "nodenumber", "id", "point", "label"});
    Frequency = Find({"frequency", "frequencyhz", "freq", "freqhz", "f", "fhz"});
    for (std::size_t axis = 0; axis < 3; ++axis) FindAxis(axis);
    FindCorners();
    const auto given = [](int column) { return column >= 0; };
    if (Corners.size() >= 3) {
      kind_ = TTableKind::Faces;
    } else if (Corners.size() == 2) {
      kind_ = TTableKind::Lines;
    } else if (given(Node) && given(Frequency) &&
               std::any_of(Values.begin(), Values.end(), given)) {
      kind_ = TTableKind::Shapes;
    } else if (given(Node) && std::all_of(Values.begin(), Values.end(), given)) {
      kind_ = TTableKind::Nodes;
    }
  }

  void FindAxis(std::size_t axis) {
    const std::string name(1, "xyz"[axis]);
    Values[axis] = Find({name});
    for (const auto& [unit, units] : LengthUnits()) {
      if (Values[axis] >= 0) break;
      Values[axis] = Find({name + std::string(unit)});
      if (Values[axis] >= 0) Units = &units;
    }
    Imaginary[axis] = Find({name + "im", name + "imag", "im" + name, "imag" + name});
    if (Imaginary[axis] >= 0) {
      Values[axis] = Find({name + "re", name + "real", "re" + name, "real" + name, name});
    }
    Angles[axis] = Find({"p" + name, "p" + name + "rad"});
    if (Angles[axis] >= 0) return;
    Angles[axis] = Find({"p" + name + "deg", "p" + name + "degrees"});
    if (Angles[axis] >= 0) AngleFactor[axis] = std::numbers::pi / 180.0;
  }

  void FindCorners() {
    for (std::size_t i = 1; i <= kMostCorners; ++i) {
      const std::string number = std::to_string(i);
      const int column = Find({"n" + number, "node" + number});
      if (column < 0) break;
      Corners.push_back(column);
    }
  }

  TDialect dialect_;
  std::vector<std::string> names_;
  std::optional<TTableKind> kind_;
};

std::string_view WithoutMark(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  return text;
}

/// A text in UTF-16, which spreadsheets call Unicode, by the mark at its start.
bool IsWide(std::string_view text) {
  return text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF");
}

std::string Narrowed(std::string_view text) {
  QStringDecoder decode(text[0] == '\xFF' ? QStringDecoder::Utf16LE : QStringDecoder::Utf16BE);
  const QString wide = decode(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
  return wide.toStdString();
}

/// The first line that is not empty.
std::string_view FirstLine(TLineScanner& lines) {
  while (lines.Next()) {
    if (!Trimmed(lines.Line()).empty()) return lines.Line();
  }
  return {};
}

/// Reads the rows behind the head into the job.
class TTableReader {
 public:
  TTableReader(TLineScanner& lines, const THead& head, TJob& job, TFindings& findings)
      : lines_(lines), head_(head), job_(job), findings_(findings), headLine_(lines.Number()) {
    fields_.resize(head.Columns());
    if (head.Kind() == TTableKind::Nodes && head.Units) {
      if (!job.Units.IsGiven()) job.Units = *head.Units;
      job.LengthOfFile.back() = head.Units->Length;
    }
  }

  bool Read(const TLoadProgress& progress) {
    constexpr std::size_t kTellEvery = 1 << 20;
    std::size_t told = 0;
    while (lines_.Next()) {
      if (!Trimmed(lines_.Line()).empty()) ReadRow();
      if (!progress || lines_.Position() - told < kTellEvery) continue;
      told = lines_.Position();
      if (!progress(static_cast<double>(told) / static_cast<double>(lines_.Text().size()))) {
        return false;
      }
    }
    Conclude();
    return true;
  }

 private:
  void ReadRow() {
    std::string_view line = lines_.Line();
    for (std::string_view& field : fields_) field = NextField(line, head_.Dialect().Separator);
    bool taken = false;
    switch (*head_.Kind()) {
      case TTableKind::Nodes:
        taken = TakeNode();
        break;
      case TTableKind::Lines:
      case TTableKind::Faces:
        taken = TakeElement();
        break;
      case TTableKind::Shapes:
        taken = TakeValue();
        break;
    }
    count_ += taken;
  }

  std::string_view Field(int column) const { return fields_[static_cast<std::size_t>(column)]; }

  bool Refuse(const QString& why) {
    findings_.LeaveOut(Name(), lines_.Number(), why);
    return false;
  }

  /// A number, which may have a decimal comma; an empty field and a column that is not there are
  /// `otherwise`.
  bool Real(int column, double& value, double otherwise = 0.0) const {
    value = otherwise;
    const std::string_view field = column < 0 ? std::string_view() : Field(column);
    if (field.empty()) return true;
    const std::size_t comma = field.find(',');
    bool good = false;
    if (comma == field.npos || !head_.Dialect().MayHaveComma) {
      good = ToReal(field, value);
    } else {
      std::string point(field);
      point[comma] = '.';
      good = ToReal(point, value);
    }
    return good && IsUsable(value);
  }

  /// The number of a node; spreadsheets write "7" as "7,0".
  bool Number(int column, std::int32_t& value) const {
    if (ToInt(Field(column), value)) return true;
    double real = 0.0;
    if (Field(column).empty() || !Real(column, real) || std::trunc(real) != real ||
        std::abs(real) > std::numeric_limits<std::int32_t>::max()) {
      return false;
    }
    value = static_cast<std::int32_t>(real);
    return true;
  }

  bool Vertex(const std::array<int, 3>& columns, TVertex& v) const {
    return Real(columns[0], v.x) && Real(columns[1], v.y) && Real(columns[2], v.z);
  }

  bool TakeNode() {
    TJobNode node;
    if (!Number(head_.Node, node.ID)) return Refuse(kNoNode);
    for (const int column : head_.Values) {
      if (Field(column).empty()) return Refuse(kNoNumber);
    }
    if (!Vertex(head_.Values, node.Coordinates)) return Refuse(kNoNumber);
    job_.Nodes.push_back(node);
    return true;
  }

  bool TakeElement() {
    TJobElement element;
    element.First = static_cast<std::uint32_t>(job_.Corners.size());
    for (const int column : head_.Corners) {
      std::int32_t corner = 0;
      if (Field(column).empty()) break;  // a face of fewer corners
      if (!Number(column, corner)) {
        job_.Corners.resize(element.First);
        return Refuse(kNoNode);
      }
      job_.Corners.push_back(corner);
      ++element.Count;
    }
    if (element.Count < 2) {
      job_.Corners.resize(element.First);
      return Refuse(QStringLiteral("the row names fewer than two nodes"));
    }
    element.ID = static_cast<std::int32_t>(count_ + 1);
    element.Shape = element.Count == 2 ? TElementShape::Bar : TElementShape::Face;
    if (count_ == 0) {
      job_.Places.push_back({static_cast<int>(findings_.Files().size()) - 1, headLine_});
    }
    element.Set = static_cast<std::uint32_t>(job_.Places.size() - 1);
    job_.Elements.push_back(element);
    return true;
  }

  bool TakeValue() {
    double frequency = 0.0;
    std::int32_t node = 0;
    TVertex value;
    TVertex angle;
    if (!Real(head_.Frequency, frequency))
      return Refuse(QStringLiteral("the row has no frequency"));
    if (!Number(head_.Node, node)) return Refuse(kNoNode);
    const bool phases = Given(head_.Angles);
    if (!Vertex(head_.Values, value) || !Vertex(phases ? head_.Angles : head_.Imaginary, angle)) {
      return Refuse(kNoNumber);
    }
    TJobShape* const shape = ShapeOf(frequency);
    if (!shape) return Refuse(QStringLiteral("there are too many frequencies"));
    if (phases) ToParts(value, angle);
    shape->IDs.push_back(node);
    shape->Real.push_back(value);
    if (shape->Info.IsComplex) shape->Imaginary.push_back(angle);
    return true;
  }

  static bool Given(const std::array<int, 3>& columns) {
    return std::any_of(columns.begin(), columns.end(), [](int column) { return column >= 0; });
  }

  /// Amplitudes and angles become real and imaginary parts.
  void ToParts(TVertex& value, TVertex& angle) const {
    const auto part = [](double& v, double& a, double factor) {
      const double amplitude = v;
      v = amplitude * std::cos(a * factor);
      a = amplitude * std::sin(a * factor);
    };
    part(value.x, angle.x, head_.AngleFactor[0]);
    part(value.y, angle.y, head_.AngleFactor[1]);
    part(value.z, angle.z, head_.AngleFactor[2]);
  }

  TJobShape* ShapeOf(double frequency) {
    const auto [place, fresh] = shapes_.try_emplace(frequency, job_.Shapes.size());
    if (!fresh) return &job_.Shapes[place->second];
    if (shapes_.size() > kMostDataSets) {
      shapes_.erase(place);
      return nullptr;
    }
    TJobShape shape;
    shape.Frequency = frequency;
    shape.IsGlobal = true;
    shape.Info.Kind = frequency > 0.0 ? TShapeKind::Response : TShapeKind::Static;
    shape.Info.IsComplex = Given(head_.Angles) || Given(head_.Imaginary);
    shape.Place = {static_cast<int>(findings_.Files().size()) - 1, lines_.Number()};
    job_.Shapes.push_back(std::move(shape));
    return &job_.Shapes.back();
  }

  QString Name() const {
    switch (*head_.Kind()) {
      case TTableKind::Nodes:
        return QStringLiteral("table of nodes");
      case TTableKind::Lines:
        return QStringLiteral("table of lines");
      case TTableKind::Faces:
        return QStringLiteral("table of faces");
      case TTableKind::Shapes:
        return QStringLiteral("table of shapes");
    }
    return {};
  }

  QString Row() const {
    switch (*head_.Kind()) {
      case TTableKind::Nodes:
        return QStringLiteral("node");
      case TTableKind::Lines:
        return QStringLiteral("line");
      case TTableKind::Faces:
        return QStringLiteral("face");
      case TTableKind::Shapes:
        return QStringLiteral("value");
    }
    return {};
  }

  void Conclude() {
    if (count_ == 0) return findings_.LeaveOut(Name(), headLine_, QStringLiteral("it has no rows"));
    findings_.Use(Name(), headLine_, Counted(count_, Row()));
  }

  inline static const QString kNoNode = QStringLiteral("the row has no number of a node");
  inline static const QString kNoNumber = QStringLiteral("the row has a value that is no number");

  TLineScanner& lines_;
  const THead& head_;
  TJob& job_;
  TFindings& findings_;
  std::size_t headLine_;
  std::vector<std::string_view> fields_;            ///< of the row, one per column
  std::size_t count_ = 0;                           ///< rows that were taken
  std::unordered_map<double, std::size_t> shapes_;  ///< by frequency, index in the job
};

}  // namespace

bool IsTextTable(std::string_view start) {
  if (IsWide(start)) return IsTextTable(Narrowed(start.substr(0, start.size() & ~std::size_t{1})));
  TLineScanner lines(WithoutMark(start));
  return THead(FirstLine(lines)).Kind().has_value();
}

void ReadTextTable(std::string_view text, TJob& job, TFindings& findings,
                   const TLoadProgress& progress) {
  if (IsWide(text)) return ReadTextTable(Narrowed(text), job, findings, progress);
  job.BeginFile();
  TLineScanner lines(WithoutMark(text));
  const THead head(FirstLine(lines));
  if (!head.Kind()) {
    return findings.LeaveOut(QStringLiteral("table"), lines.Number(),
                             QStringLiteral("its head names no columns that are known"));
  }
  if (!TTableReader(lines, head, job, findings).Read(progress)) findings.Cancel();
}
