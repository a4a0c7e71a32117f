#include "examples/generate/Structure.h"

#include <charconv>
#include <cmath>
#include <stdexcept>

#include "examples/generate/Decimals.h"

namespace {

void AppendInt(std::string& text, int value, std::size_t width) {
  const std::string digits = std::to_string(value);
  text.append(digits.size() < width ? width - digits.size() : 1, ' ');
  text += digits;
}

/// The shortest form, without padding: 12.5, not 12.50.
std::string Shortest(double value) {
  char buffer[64];
  return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

double RoundTo(double value, double step) { return std::round(value / step) * step; }

constexpr double kAmplitudeStep = 1e-4;  ///< mm: what the files resolve
constexpr int kAmplitudeDecimals = 4;
constexpr int kAngleDecimals = 4;

struct TPolar {
  double amplitude, angle;
};

/// Rounded before the angle is taken: what is too small for the file would only give the noise of
/// its last bits as an angle.
TPolar ToPolar(const std::complex<double>& motion) {
  const double amplitude = RoundTo(std::abs(motion), kAmplitudeStep);
  if (amplitude == 0.0) return {0.0, 0.0};
  const double limit = 1e-6 * std::abs(motion);
  const double re = motion.real();
  const double im = std::abs(motion.imag()) < limit ? 0.0 : motion.imag();
  return {amplitude, std::atan2(im, re)};
}

}  // namespace

int TStructure::AddNode(int id, const TVertex& position) {
  if (!nodes_.empty() && nodes_.back().id >= id) {
    throw std::logic_error("node " + std::to_string(id) + " does not ascend");
  }
  nodes_.push_back({id, position});
  return id;
}

void TStructure::Move(const TVertex& by) {
  for (TPlace& node : nodes_) node.position += by;
}

void TStructure::AddBar(int from, int to, std::int32_t color, double radius) {
  elements_.push_back({1, {radius}, color, {from, to}});
}

void TStructure::AddRoll(int from, int to, std::int32_t color, double radius, double shaftRadius,
                         double shaftFraction) {
  elements_.push_back({2, {radius, shaftRadius, shaftFraction}, color, {from, to}});
}

void TStructure::AddFace(std::initializer_list<int> nodes, std::int32_t color) {
  elements_.push_back({3, {}, color, nodes});
}

void TStructure::AddTwoSidedFace(std::initializer_list<int> nodes, std::int32_t color,
                                 std::int32_t back) {
  elements_.push_back({3, {}, color, nodes});
  elements_.push_back({3, {}, back, {std::rbegin(nodes), std::rend(nodes)}});
}

void TStructure::AddBox(const int (&n)[8], std::int32_t color) {
  AddFace({n[3], n[2], n[1], n[0]}, color);
  AddFace({n[4], n[5], n[6], n[7]}, color);
  for (int i = 0; i < 4; ++i) {
    const int next = (i + 1) % 4;
    AddFace({n[i], n[next], n[4 + next], n[4 + i]}, color);
  }
}

std::string TStructure::ModelText() const {
  std::string text = "[Options]\nNodeRadius=" + Shortest(NodeRadius) +
                     "\nElementRadius=" + Shortest(ElementRadius) + "\n\n[Nodes]\n";
  for (const TPlace& node : nodes_) {
    AppendInt(text, node.id, 6);
    for (const double c : {node.position.x, node.position.y, node.position.z}) {
      AppendReal(text, c, 4, 12);
    }
    text += '\n';
  }
  text += "\n[Elements]\n" + std::to_string(elements_.size()) + '\n';
  int id = 0;
  for (const TJoin& element : elements_) {
    AppendInt(text, ++id, 5);
    AppendInt(text, element.type, 2);
    for (const double value : element.shape) text += ' ' + Shortest(value);
    AppendInt(text, element.color, 9);
    AppendInt(text, static_cast<int>(element.nodes.size()), 2);
    text += ' ';
    for (const int node : element.nodes) AppendInt(text, node, 5);
    text += '\n';
  }
  return text;
}

std::string DataText(const TStructure& structure, const std::vector<TShape>& shapes,
                     TRecordForm form) {
  std::string text;
  for (const TShape& shape : shapes) {
    if (!text.empty()) text += '\n';
    text += "[F = " + Shortest(RoundTo(shape.frequency * 100.0, 1.0) / 100.0) + "]\n";
    for (std::size_t i = 0; i < shape.motions.size(); ++i) {
      AppendInt(text, structure.Nodes()[i].id, 6);
      const TMotion& motion = shape.motions[i];
      const std::complex<double> axes[] = {motion.x, motion.y, motion.z};
      for (const auto& axis : axes) {
        const double value = form == TRecordForm::Real ? axis.real() : ToPolar(axis).amplitude;
        AppendReal(text, value, kAmplitudeDecimals, 10);
      }
      if (form == TRecordForm::Complex) {
        for (const auto& axis : axes) AppendReal(text, ToPolar(axis).angle, kAngleDecimals, 10);
      }
      text += '\n';
    }
  }
  return text;
}
