#include <random>
#include <string>

#include "bench/Bench.h"
#include "components/channels/Channelset.h"
#include "components/comms/Qlxpackage.h"
#include "model/Textscanner.h"

namespace {

constexpr int kChannels = 16;
constexpr int kRowsPerPackage = 100;

struct TText {
  std::string Bytes;
  long Rows = 0;
};

/// Packages of 100 rows with 16 values each, as `format` writes them.
TText Packages(std::size_t size, bool stamped, const char* format) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> value(-500.0, 500.0);
  TText text;
  while (text.Bytes.size() < size) {
    text.Bytes +=
        stamped ? "<data id=\"bench\">\r\n" : "<rows id=\"bench\" time=\"20240501 101112123\">\r\n";
    for (int row = 0; row < kRowsPerPackage; ++row, ++text.Rows) {
      if (stamped) text.Bytes += "20240501 101112123 ";
      for (int channel = 0; channel < kChannels; ++channel) {
        char number[32];
        std::snprintf(number, sizeof number, format, value(random));
        text.Bytes += number;
      }
      text.Bytes += "\r\n";
    }
    text.Bytes += stamped ? "</data>\r\n" : "</rows>\r\n";
  }
  return text;
}

/// What the numbers alone cost, and so what a parser could reach at most.
void MeasureNumbers(TBench& bench, const char* what, const TText& text) {
  double sum = 0.0;
  long count = 0;
  const double seconds = bench.Seconds(5, [&] {
    TTextScanner scanner(text.Bytes);
    count = 0;
    while (!scanner.AtEnd()) {
      double value = 0.0;
      if (scanner.ReadReal(value)) {
        sum += value;
        ++count;
      } else {
        scanner.SetPosition(text.Bytes.find('\n', scanner.Position()));
        scanner.SkipWhiteSpace();
      }
    }
  });
  bench.Row(std::string(what) + ", numbers alone",
            static_cast<double>(text.Bytes.size()) / seconds / 1e6, "MB/s");
  bench.Check(sum != 0.0 && count >= text.Rows * kChannels, std::string(what) + " lost numbers");
}

void Measure(TBench& bench, TChannelSets& sets, const char* what, const TText& text) {
  for (const std::size_t chunk :
       {text.Bytes.size(), std::size_t{65536}, std::size_t{1460}, std::size_t{64}}) {
    TQLXPackage package(&sets);
    long runs = 0;
    const double seconds = bench.Seconds(5, [&] {
      for (std::size_t i = 0; i < text.Bytes.size(); i += chunk) {
        package.Parse(std::string_view(text.Bytes).substr(i, chunk));
      }
      ++runs;
    });
    const std::string pieces =
        chunk == text.Bytes.size() ? "in one piece" : "in pieces of " + std::to_string(chunk);
    bench.Row(std::string(what) + ", " + pieces,
              static_cast<double>(text.Bytes.size()) / seconds / 1e6, "MB/s");
    bench.Check(static_cast<long>(package.Counts().Rows) == runs * text.Rows,
                std::string(what) + " " + pieces + " lost rows");
  }
}

}  // namespace

int main(int argc, char** argv) {
  TBench bench(argc, argv);
  TChannelSets sets;
  for (const char* tag : {"data", "rows"}) {
    TChannelSet* set = sets.Add();
    set->SetXMLTag(QString::fromLatin1(tag));
    set->SetSetID(QStringLiteral("bench"));
    set->SetCount(kChannels);
  }
  const std::size_t size = bench.Quick() ? 1 << 20 : 64 << 20;
  const struct {
    const char* what;
    bool stamped;
    const char* format;
  } texts[] = {{"4 decimals", false, "%.4f "},
               {"4 decimals, a stamp per row", true, "%.4f "},
               {"17 digits", false, "%.17g "}};
  for (const auto& [what, stamped, format] : texts) {
    const TText text = Packages(size, stamped, format);
    MeasureNumbers(bench, what, text);
    Measure(bench, sets, what, text);
  }
  return bench.Result();
}
