#include <cstdlib>
#include <string_view>

#include "components/channels/Channelset.h"
#include "components/comms/Qlxpackage.h"

namespace {

/// A set for each kind of package.
struct TSets : TChannelSets {
  TSets() {
    AddSet(QStringLiteral("data"), QString(), 4);
    AddSet(QStringLiteral("data"), QStringLiteral("a"), 300);
    AddSet(QStringLiteral("w"), QStringLiteral("a"), 2);
  }
  void AddSet(const QString& tag, const QString& id, int count) {
    TChannelSet* set = Add();
    set->SetXMLTag(tag);
    set->SetSetID(id);
    set->SetCount(count);
  }
};

TQLXPackage::TCounts Read(std::string_view text, std::size_t chunk) {
  static TSets sets;
  TQLXPackage package(&sets);
  for (std::size_t i = 0; i < text.size(); i += chunk) package.Parse(text.substr(i, chunk));
  return package.Counts();
}

}  // namespace

/// Any bytes as packages: pieces of any size must give the same rows.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size < 1) return 0;
  const std::string_view text(reinterpret_cast<const char*>(bytes) + 1, size - 1);
  const auto whole = Read(text, size);
  const auto pieces = Read(text, 1u + bytes[0] % 32u);
  if (whole.Rows != pieces.Rows || whole.Packages != pieces.Packages ||
      whole.Unmatched != pieces.Unmatched || whole.Abandoned != pieces.Abandoned) {
    std::abort();
  }
  return 0;
}
