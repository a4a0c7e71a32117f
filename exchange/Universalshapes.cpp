#include "exchange/Universalshapes.h"

#include <array>
#include <cmath>
#include <numbers>

#include "model/Animmodel.h"
#include "model/Reading.h"

namespace {

/// "6I10" of both types.
struct TShapeHead {
  std::int32_t ModelType = 0;
  std::int32_t Analysis = 0;
  std::int32_t Characteristic = 0;
  std::int32_t Quantity = 0;
  std::int32_t DataType = 0;
  std::int32_t ValuesPerNode = 0;

  bool IsComplex() const { return DataType == 5 || DataType == 6; }
  bool IsDouble() const { return DataType == 4 || DataType == 6; }
  TShapeKind Kind() const {
    return Analysis >= 0 && Analysis <= 7 ? static_cast<TShapeKind>(Analysis) : TShapeKind::Unknown;
  }
};

bool ReadShapeHead(TUniversalReading& reading, TShapeHead& head) {
  std::array<std::int32_t, 6> ints;
  if (reading.ReadInts(ints) < 6) {
    reading.LeaveOut(QStringLiteral("it does not say what kind of data it holds"));
    return false;
  }
  head = {ints[0], ints[1], ints[2], ints[3], ints[4], ints[5]};
  return true;
}

/// Why data of this kind are no motions of nodes; empty if they are.
QString WhyNoMotion(const TShapeHead& head) {
  if (head.Characteristic == 1) return QStringLiteral("it holds scalars, no motions");
  if (head.Characteristic >= 4) return QStringLiteral("it holds tensors, no motions");
  if (head.ValuesPerNode != 3 && head.ValuesPerNode != 6) {
    return QStringLiteral("%1 values per node are no motion").arg(head.ValuesPerNode);
  }
  if (head.DataType < 1 || head.DataType > 6 || head.DataType == 3) {
    return QStringLiteral("its data type %1 is not known").arg(head.DataType);
  }
  return {};
}

bool IsComplexMode(TShapeKind kind) {
  return kind == TShapeKind::ComplexMode || kind == TShapeKind::ComplexModeSecondOrder;
}

void ReadLines(TUniversalReading& reading, TShapeInfo& info) {
  for (QString& line : info.Lines) line = reading.ReadText();
}

/// Reads so many reals; those that are missing or cannot be reckoned with are 0.
template <std::size_t kCount>
std::array<double, kCount> ReadSpecials(TUniversalReading& reading, std::size_t count = kCount) {
  std::array<double, kCount> reals = {};
  reading.ReadReals(std::span(reals).first(count), 6, 13);
  for (double& value : reals) {
    if (IsUsable(value)) continue;
    value = 0.0;
    reading.Warn(QStringLiteral("a value of its head is no number or beyond 1e30; it counts as 0"));
  }
  return reals;
}

/// The frequency with which a complex mode swings, and how it fades.
void TakeEigenvalue(std::complex<double> eigenvalue, TJobShape& shape) {
  shape.Info.Eigenvalue = eigenvalue;
  shape.Frequency = std::abs(eigenvalue.imag()) / (2.0 * std::numbers::pi);
  shape.Info.Damping = -eigenvalue.real() / std::abs(eigenvalue);
}

/// Frequency, modal mass, viscous and hysteretic damping.
void TakeMode(std::span<const double> reals, TJobShape& shape) {
  shape.Frequency = reals[0];
  shape.Info.ModalMass = reals[1];
  shape.Info.Damping = reals[2];
  shape.Info.HystereticDamping = reals[3];
}

/// The two lines of numbers that depend on the analysis. Both begin with how many there are.
void ReadSpecifics55(TUniversalReading& reading, TJobShape& shape) {
  constexpr std::int32_t kMostReals = 12;
  std::array<std::int32_t, 8> ints = {};
  reading.ReadInts(ints);
  for (std::int32_t more = 6; more < std::min(ints[0], 64); more += 8) reading.Next();
  TShapeInfo& info = shape.Info;
  info.LoadCase = ints[2];
  if (ints[0] >= 2) info.Mode = ints[3];
  const std::int32_t count = std::clamp(ints[1], 0, kMostReals);
  const auto reals = ReadSpecials<kMostReals>(reading, static_cast<std::size_t>(count));
  if (info.Kind == TShapeKind::Transient) {
    info.Time = reals[0];
  } else if (info.Kind == TShapeKind::Response) {
    shape.Frequency = reals[0];
  } else if (info.Kind == TShapeKind::Buckling) {
    info.Eigenvalue = reals[0];
  } else if (IsComplexMode(info.Kind) && (count == 2 || count >= 6)) {
    if (reals[0] != 0.0 || reals[1] != 0.0) TakeEigenvalue({reals[0], reals[1]}, shape);
    info.ModalA = {reals[2], reals[3]};
    info.ModalB = {reals[4], reals[5]};
  } else if (info.Kind == TShapeKind::NormalMode || IsComplexMode(info.Kind)) {
    TakeMode(reals, shape);
  }
}

void ReadSpecifics2414(TUniversalReading& reading, TJobShape& shape) {
  std::array<std::int32_t, 8> ints = {};
  reading.ReadInts(ints);
  reading.Next();  // by what and in what form it was made
  const auto [time, frequency, eigenvalue, mass, viscous, hysteretic] = ReadSpecials<6>(reading);
  const auto more = ReadSpecials<6>(reading);
  TShapeInfo& info = shape.Info;
  info.LoadCase = ints[4];
  info.Mode = ints[5];
  if (info.Kind == TShapeKind::Transient) {
    info.Mode = ints[6];
    info.Time = time;
    return;
  }
  if (info.Kind == TShapeKind::Static || info.Kind == TShapeKind::Unknown) return;
  info.ModalMass = mass;
  info.Damping = viscous;
  info.HystereticDamping = hysteretic;
  info.Eigenvalue = eigenvalue;
  info.ModalA = {more[2], more[3]};
  info.ModalB = {more[4], more[5]};
  if (info.Kind != TShapeKind::Buckling) shape.Frequency = frequency;
  if (info.Kind == TShapeKind::NormalMode && frequency == 0.0 && eigenvalue > 0.0) {
    shape.Frequency = std::sqrt(eigenvalue) / (2.0 * std::numbers::pi);
  }
  if (info.Kind == TShapeKind::Response) info.Mode = ints[7];
  if (IsComplexMode(info.Kind) && (more[0] != 0.0 || more[1] != 0.0)) {
    TakeEigenvalue({more[0], more[1]}, shape);
  }
}

/// The values at nodes, and the end of a data set.
class TShapeReader {
 public:
  TShapeReader(TUniversalReading& reading, const TShapeHead& head)
      : reading_(reading),
        head_(head),
        count_(static_cast<std::size_t>(head.ValuesPerNode * (head.IsComplex() ? 2 : 1))) {}

  void Read(TJobShape& shape) {
    while (reading_.Next()) {
      std::int32_t id;
      if (ReadColumns(reading_.Line(), {.Ints = 1}, &id, nullptr) == 0) {
        reading_.LeaveOutStray(QStringLiteral("node"));
      } else if (ReadValues(id)) {
        Add(id, shape);
      }
    }
  }

 private:
  bool ReadValues(std::int32_t id) {
    // Doubles come in columns of various widths, always with blanks between.
    const int width = head_.IsDouble() ? kAnyWidth : 13;
    const int found = reading_.ReadReals(std::span(values_).first(count_), 6, width);
    if (found == static_cast<int>(count_)) return true;
    reading_.LeaveOutLine(
        QStringLiteral("node %1 has %2 of its %3 values").arg(id).arg(found).arg(count_));
    return false;
  }

  void Add(std::int32_t id, TJobShape& shape) {
    const std::size_t recordLength = 12 + 13 * count_;
    const std::size_t most = reading_.Job.Nodes.size();
    NoteUnusable(id);
    reading_.MakeRoom(shape.IDs, recordLength, most);
    shape.IDs.push_back(id);
    reading_.MakeRoom(shape.Real, recordLength, most);
    if (!head_.IsComplex()) {
      shape.Real.push_back({values_[0], values_[1], values_[2]});
      return;
    }
    shape.Real.push_back({values_[0], values_[2], values_[4]});
    reading_.MakeRoom(shape.Imaginary, recordLength, most);
    shape.Imaginary.push_back({values_[1], values_[3], values_[5]});
  }

  void NoteUnusable(std::int32_t id) {
    for (double& value : values_) {
      if (IsUsable(value)) continue;
      value = 0.0;
      reading_.Warn(
          QStringLiteral("node %1: a value is no number or beyond 1e30; it counts as 0").arg(id));
    }
  }

  TUniversalReading& reading_;
  const TShapeHead& head_;
  std::size_t count_;  ///< of reals per node
  std::array<double, 12> values_ = {};
};

QString Described(const TJobShape& shape) {
  const TShapeInfo& info = shape.Info;
  const QString frequency = QString::number(shape.Frequency);
  switch (info.Kind) {
    case TShapeKind::NormalMode:
      return QStringLiteral("mode %1 at %2 Hz").arg(info.Mode).arg(frequency);
    case TShapeKind::ComplexMode:
    case TShapeKind::ComplexModeSecondOrder:
      return QStringLiteral("complex mode %1 at %2 Hz").arg(info.Mode).arg(frequency);
    case TShapeKind::Response:
      return QStringLiteral("response at %1 Hz").arg(frequency);
    case TShapeKind::Transient:
      return QStringLiteral("motion at %1 s").arg(info.Time);
    case TShapeKind::Buckling:
      return QStringLiteral("buckling mode of factor %1").arg(info.Eigenvalue.real());
    case TShapeKind::Static:
      return QStringLiteral("static shape of load case %1").arg(info.LoadCase);
    case TShapeKind::Unknown:
      break;
  }
  return QStringLiteral("shape of an analysis that is not known");
}

/// What both types have from the five identification lines on.
void ReadShape(TUniversalReading& reading,
               void (*readSpecifics)(TUniversalReading&, TJobShape& shape)) {
  TJobShape shape;
  shape.Place = reading.Place();
  ReadLines(reading, shape.Info);
  TShapeHead head;
  if (!ReadShapeHead(reading, head)) return;
  if (const QString why = WhyNoMotion(head); !why.isEmpty()) return reading.LeaveOut(why);
  if (reading.Job.Shapes.size() == kMostDataSets || !reading.HasRoom()) {
    return reading.LeaveOut(QStringLiteral("there are too many"));
  }
  shape.Info.Kind = head.Kind();
  shape.Info.IsComplex = head.IsComplex();
  shape.Info.Quantity = head.Quantity;
  readSpecifics(reading, shape);
  TShapeReader(reading, head).Read(shape);
  if (shape.IDs.empty()) return reading.LeaveOut(QStringLiteral("it has no values"));
  if (head.ValuesPerNode == 6) ++reading.Rotations;
  reading.Use(Described(shape) + QStringLiteral(", ") +
              Counted(shape.IDs.size(), QStringLiteral("node")));
  reading.Job.Shapes.push_back(std::move(shape));
}

}  // namespace

void ReadShape55(TUniversalReading& reading) { ReadShape(reading, ReadSpecifics55); }

void ReadShape2414(TUniversalReading& reading) {
  constexpr std::int32_t kAtNodes = 1;
  reading.Next();  // number and name
  reading.Next();
  std::int32_t location = 0;
  if (reading.ReadInts({&location, 1}) == 1 && location != kAtNodes) {
    reading.LeaveOut(QStringLiteral("its data are not at nodes"));
    return;
  }
  ReadShape(reading, ReadSpecifics2414);
}
