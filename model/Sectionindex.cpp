#include "model/Sectionindex.h"

#include <algorithm>
#include <unordered_map>

namespace {

using TPlaces = std::unordered_map<std::string_view, std::size_t>;

/// Whether SearchString, entering at the "[" of `region`, finds "[" + `name` + "]" at its end.
bool EndsInMatch(std::string_view region, std::string_view name) {
  const auto wanted = [name](std::size_t i) {
    return i == 0 ? '[' : i <= name.size() ? name[i - 1] : ']';
  };
  std::size_t matched = 0;
  for (const char c : region) matched = c == wanted(matched) ? matched + 1 : 0;
  return matched == name.size() + 2;
}

/// The lengths of all names, each once, ascending.
std::vector<std::size_t> LengthsOf(const TPlaces& places) {
  std::vector<std::size_t> lengths;
  for (const auto& [name, place] : places) lengths.push_back(name.size());
  std::sort(lengths.begin(), lengths.end());
  lengths.erase(std::unique(lengths.begin(), lengths.end()), lengths.end());
  return lengths;
}

/// A name with a "[" inside may end in the header of another section: "[x[F = 1]" holds "[F = 1]".
/// Moves the places of such sections forward. The work is limited to a multiple of the text's
/// length; only a file made of brackets for the purpose reaches that limit, and there a section is
/// found at the header of its own.
void FindInsideNames(std::string_view text, const std::vector<std::string_view>& names,
                     TPlaces& places) {
  const std::vector<std::size_t> lengths = LengthsOf(places);
  std::size_t work = 2 * text.size() + 1'000'000;
  for (const std::string_view name : names) {
    if (name.find('[') == std::string_view::npos) continue;
    const auto open = static_cast<std::size_t>(name.data() - text.data()) - 1;
    const std::size_t behind = open + name.size() + 2;
    for (const std::size_t length : lengths) {
      if (length >= name.size()) break;
      if (--work == 0) return;
      if (name[name.size() - length - 1] != '[') continue;
      const std::size_t cost = length + name.size();
      if (work <= cost) return;
      work -= cost;
      const auto place = places.find(name.substr(name.size() - length));
      if (place == places.end() || place->second <= behind) continue;
      if (EndsInMatch(text.substr(open, name.size() + 2), place->first)) place->second = behind;
    }
  }
}

}  // namespace

std::vector<std::string_view> ReadSectionNames(std::string_view text, std::size_t most) {
  std::vector<std::string_view> names;
  std::size_t open = text.find('[');
  while (open != std::string_view::npos && names.size() < most) {
    const std::size_t close = text.find(']', open + 1);
    if (close == std::string_view::npos) break;
    names.push_back(text.substr(open + 1, close - open - 1));
    open = text.find('[', close + 1);
  }
  return names;
}

std::vector<TSection> ReadSectionIndex(std::string_view text, std::size_t most) {
  const std::vector<std::string_view> names = ReadSectionNames(text, most);
  // Every "]" ends whatever a search had matched, so each bracketed name stands by itself, and a
  // name without a "[" inside is found exactly where it stands first.
  TPlaces places;
  for (const std::string_view name : names) {
    const auto behind = static_cast<std::size_t>(name.data() - text.data()) + name.size() + 1;
    places.emplace(name, behind);
  }
  FindInsideNames(text, names, places);

  std::vector<TSection> sections;
  sections.reserve(names.size());
  for (const std::string_view name : names) sections.push_back({name, places.at(name)});
  return sections;
}
