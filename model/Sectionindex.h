#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

/// A section of a data file: its name, and where its records begin.
struct TSection {
  std::string_view Name;    ///< the characters between the brackets; a part of the text
  std::size_t Records = 0;  ///< position behind the first "[Name]" that SearchString finds
};

/// All names between "[" and the next "]", in file order; a "[" inside a name is just a character
/// of it. Stops at `most` names. One pass.
std::vector<std::string_view> ReadSectionNames(std::string_view text, std::size_t most);

/// The same with the position of each section's records, which is that of the first occurrence of
/// its header for all sections of one name. In time linear in the length of the text.
std::vector<TSection> ReadSectionIndex(std::string_view text, std::size_t most);
