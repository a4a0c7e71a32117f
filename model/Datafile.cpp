#include "model/Datafile.h"

#include <optional>
#include <unordered_map>
#include <utility>

#include "model/Largememory.h"
#include "model/Motions.h"
#include "model/Oneline.h"
#include "model/Sectionindex.h"

namespace {

/// Reads the data sets of one file, one after the other.
class TDataFileReader {
 public:
  TDataFileReader(std::string_view text, const TModelNodes& model, std::size_t mostNodes,
                  TLoadReport& report, const TLoadProgress& progress)
      : reading_(text, report, progress), model_(model), mostNodes_(mostNodes) {}

  /// Counts the nodes of a set that is there already.
  void Count(const TDataSet& set) { nodes_ += set.Content.Nodes.Count(); }

  /// What a section gives. Nothing if the load was cancelled, or if the nodes of all sections
  /// would take too much memory.
  std::optional<TDataContent> Read(const TSection& section, const std::vector<TDataSet>& earlier) {
    // A name that comes again, or ends in another name, has the records of the first.
    const auto [place, fresh] = first_.emplace(section.Records, earlier.size());
    TDataContent content;
    if (!fresh) {
      const TDataContent& same = earlier[place->second].Content;
      if (!Affordable(same.Nodes.Count())) return std::nullopt;
      content = CopyOf(same.Nodes, same.MaxAmplitude);
    } else {
      if (!Affordable(model_.Nodes.Count())) return std::nullopt;
      reading_.Scanner.SetPosition(section.Records);
      if (!ReadDataSet(reading_, model_, content)) return std::nullopt;
    }
    nodes_ += content.Nodes.Count();
    return content;
  }

  /// The frequency in a section's name; nothing if it is named otherwise.
  std::optional<double> Frequency(const TSection& section) {
    TTextScanner name(section.Name);
    const std::optional<double> frequency = NamedFrequency(name);
    if (name.AtDecimalComma()) NoteDecimalComma(reading_, PlaceOf(section));
    return frequency;
  }

  /// Notes that a section that is named after a frequency has no records; others may be remarks.
  void NoteEmpty(const TSection& section) {
    if (model_.Nodes.Empty()) return;
    reading_.Report.AddAt(reading_.Scanner, PlaceOf(section), [] {
      return QStringLiteral("the data set has no records; it shows nothing");
    });
  }

  /// Counts what lies between the sections, and the nodes of one, as done. False once the user has
  /// cancelled.
  bool Advance(std::size_t characters, std::size_t nodes) {
    return reading_.Advance(characters, nodes);
  }

 private:
  std::size_t PlaceOf(const TSection& section) const {
    return static_cast<std::size_t>(section.Name.data() - reading_.Scanner.Text().data());
  }

  /// Whether there is room for more nodes, and for the motions of all.
  bool Affordable(std::size_t more) {
    constexpr std::size_t kWeighEvery = 1'000'000;
    const std::size_t all = nodes_ + more;
    if (all > mostNodes_) return false;
    if (all - weighed_ < kWeighEvery) return true;
    weighed_ = all;
    return all * TMotions::kBytesPerNode <= AvailableMemory();
  }

  TReading reading_;
  const TModelNodes& model_;
  std::size_t mostNodes_;
  std::size_t nodes_ = 0;                               ///< of all sections read
  std::size_t weighed_ = 0;                             ///< of them when the memory was looked at
  std::unordered_map<std::size_t, std::size_t> first_;  ///< start of records, index of data set
};

}  // namespace

void NoteOrder(const TNodeIndex& index, TLoadReport& report) {
  if (index.Ascending()) return;
  report.Add(0, QStringLiteral("the model's nodes are not in ascending order of their numbers, so "
                               "shapes may be wrong"));
}

bool ReadDataSets(std::string_view text, const TModelNodes& model, const TDataLimits& limits,
                  std::vector<TDataSet>& sets, TLoadReport& report, const TLoadProgress& progress) {
  const std::vector<TSection> sections = ReadSectionIndex(text, limits.Sets + 1);
  if (sections.empty()) report.Add(0, QStringLiteral("it holds no data sets"));
  if (!sections.empty()) NoteOrder(model.Index, report);
  const std::size_t before = sets.size();
  TDataFileReader reader(text, model, limits.Nodes, report, progress);
  for (const TDataSet& set : sets) reader.Count(set);
  for (const TSection& section : sections) {
    if (sets.size() == limits.Sets) break;
    const std::optional<double> frequency = reader.Frequency(section);
    std::optional<TDataContent> content = reader.Read(section, sets);
    if (!content || !reader.Advance(section.Name.size() + 2, content->Nodes.Count())) break;
    if (frequency && content->Nodes.Empty()) reader.NoteEmpty(section);
    sets.push_back({.Content = std::move(*content),
                    .Section = '[' + FromBytes(section.Name) + ']',
                    .Frequency = frequency.value_or(0.0)});
  }
  if (report.Cancelled()) return false;
  if (sets.size() - before < sections.size()) {
    report.Add(0,
               QStringLiteral("only the first %1 data sets were kept").arg(sets.size() - before));
  }
  return true;
}
