#include "exchange/Universalnodes.h"

#include <array>
#include <cmath>

#include "model/Reading.h"

namespace {

void AddNode(TUniversalReading& reading, const std::int32_t* labels, const double* place,
             std::size_t recordLength) {
  if (!IsUsable(place[0]) || !IsUsable(place[1]) || !IsUsable(place[2])) {
    reading.LeaveOutLine(
        QStringLiteral("node %1: a coordinate is no number or beyond 1e30").arg(labels[0]));
    return;
  }
  reading.MakeRoom(reading.Job.Nodes, recordLength);
  reading.Job.Nodes.push_back({labels[0], labels[1], labels[2], {place[0], place[1], place[2]}});
}

/// Whether a line can be that of labels: four integers. Coordinates without a decimal point are
/// three.
bool IsLabelLine(std::string_view line) {
  std::int32_t labels[4];
  return line.find('.') == line.npos && ReadColumns(line, {.Ints = 4}, labels, nullptr) == 4;
}

void UseNodes(TUniversalReading& reading, std::size_t before) {
  reading.Use(Counted(reading.Job.Nodes.size() - before, QStringLiteral("node")));
}

TVertex Cross(const TVertex& a, const TVertex& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// Right-handed unit vectors: the first along `x`, the second in the plane of both on the side of
/// `y`. False if the two span no plane.
bool SpanAxes(const TVertex& x, const TVertex& y, std::array<TVertex, 3>& axes) {
  const TVertex first = x / Length(x);
  const TVertex third = Cross(first, y / Length(y));
  if (!(Length(third) > 1e-6)) return false;
  axes[0] = first;
  axes[2] = third / Length(third);
  axes[1] = Cross(axes[2], axes[0]);
  return true;
}

bool AreUsable(std::span<const double> values) {
  return std::all_of(values.begin(), values.end(), [](double value) { return IsUsable(value); });
}

void LeaveOutSystem(TUniversalReading& reading, std::int32_t number, const char* why) {
  reading.LeaveOutLine(QStringLiteral("system %1: %2").arg(number).arg(QLatin1StringView(why)));
}

/// Adds a system whose axes and origin are known, unless something is wrong with it.
void AddSystem(TUniversalReading& reading, TLocalSystem system, std::int32_t kind) {
  constexpr std::size_t kMostSystems = 100'000;
  if (kind < 0 || kind > 2) {
    LeaveOutSystem(reading, system.Number, "its kind is not known");
    return;
  }
  if (reading.Job.Systems.size() == kMostSystems) {
    LeaveOutSystem(reading, system.Number, "there are too many");
    return;
  }
  system.Kind = static_cast<TSystemKind>(kind);
  system.Place = reading.Place();
  reading.Job.Systems.push_back(system);
}

void UseSystems(TUniversalReading& reading, std::size_t before) {
  reading.Use(Counted(reading.Job.Systems.size() - before, QStringLiteral("local system")));
}

TVertex VertexAt(std::span<const double> values, std::size_t at) {
  return {values[at], values[at + 1], values[at + 2]};
}

/// The axes that a matrix of nine numbers gives, row by row.
std::array<TVertex, 3> AxesOf(std::span<const double> m, TMatrixReading reading) {
  if (reading == TMatrixReading::RowsAreAxes) {
    return {VertexAt(m, 0), VertexAt(m, 3), VertexAt(m, 6)};
  }
  return {TVertex{m[0], m[3], m[6]}, {m[1], m[4], m[7]}, {m[2], m[5], m[8]}};
}

}  // namespace

void ReadNodes15(TUniversalReading& reading) {
  constexpr std::size_t kRecordLength = 80;
  const std::size_t before = reading.Job.Nodes.size();
  std::array<std::int32_t, 4> labels;
  std::array<double, 3> place;
  while (reading.Next()) {
    if (ReadColumns(reading.Line(), {.Ints = 4, .Reals = 3}, labels.data(), place.data()) == 7) {
      AddNode(reading, labels.data(), place.data(), kRecordLength);
    } else {
      reading.LeaveOutStray(QStringLiteral("node"));
    }
  }
  UseNodes(reading, before);
}

void ReadNodes2411(TUniversalReading& reading) {
  constexpr std::size_t kRecordLength = 117;
  const std::size_t before = reading.Job.Nodes.size();
  std::array<std::int32_t, 4> labels;
  std::array<double, 3> place;
  while (reading.Next()) {
    labels.fill(0);
    if (ReadColumns(reading.Line(), {.Ints = 4}, labels.data(), nullptr) == 0) {
      reading.LeaveOutStray(QStringLiteral("node"));
      continue;
    }
    if (!reading.Next()) {
      reading.LeaveOutLine(QStringLiteral("node %1 has no coordinates").arg(labels[0]));
    } else if (IsLabelLine(reading.Line()) ||
               ReadColumns(reading.Line(), {.Reals = 3, .RealWidth = 25}, nullptr, place.data()) <
                   3) {
      reading.LeaveOutLine(QStringLiteral("node %1 has no coordinates").arg(labels[0]));
      reading.Back();
    } else {
      AddNode(reading, labels.data(), place.data(), kRecordLength);
    }
  }
  UseNodes(reading, before);
}

void ReadSystems18(TUniversalReading& reading) {
  const std::size_t before = reading.Job.Systems.size();
  while (reading.Next()) {
    std::array<std::int32_t, 5> head = {};
    std::array<double, 9> points = {};
    if (ReadColumns(reading.Line(), {.Ints = 5}, head.data(), nullptr) < 3) {
      reading.LeaveOutStray(QStringLiteral("local system"));
      continue;
    }
    reading.ReadText();
    TLocalSystem system;
    system.Number = head[0];
    system.Reference = head[2];
    if (reading.ReadReals(points, 6, 13) < 9 || !AreUsable(points)) {
      LeaveOutSystem(reading, head[0], "its three points are not whole");
      continue;
    }
    system.Origin = VertexAt(points, 0);
    const TVertex x = VertexAt(points, 3) - system.Origin;
    const TVertex inPlane = VertexAt(points, 6) - system.Origin;
    if (SpanAxes(x, Cross(inPlane, x), system.Axes)) {
      AddSystem(reading, system, head[1]);
    } else {
      LeaveOutSystem(reading, head[0], "its three points lie on a line");
    }
  }
  UseSystems(reading, before);
}

void ReadSystems2420(TUniversalReading& reading) {
  const std::size_t before = reading.Job.Systems.size();
  reading.ReadText();  // number and name of the part
  reading.ReadText();
  while (reading.Next()) {
    std::array<std::int32_t, 3> head = {};
    std::array<double, 12> rows = {};
    if (ReadColumns(reading.Line(), {.Ints = 3}, head.data(), nullptr) < 2) {
      reading.LeaveOutStray(QStringLiteral("local system"));
      continue;
    }
    reading.ReadText();
    TLocalSystem system;
    system.Number = head[0];
    if (reading.ReadReals(rows, 3, 25) < 12 || !AreUsable(rows)) {
      LeaveOutSystem(reading, head[0], "its matrix is not whole");
      continue;
    }
    system.Axes = AxesOf(rows, reading.Job.Matrices);
    system.Origin = VertexAt(rows, 9);
    AddSystem(reading, system, head[1]);
  }
  UseSystems(reading, before);
}
