// Macros: any text is compiled, evaluated and destroyed, and its program has the value of its tree.

#include <QApplication>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "components/channels/Variable.h"
#include "components/sources/macro/Macrocompiler.h"
#include "components/sources/macro/Macroprogram.h"

namespace {

/// What the texts may name.
class TNames {
 public:
  TNames() {
    for (TVariable* variable : {&first_, &second_}) list_.Add(variable);
    first_.SetName(QStringLiteral("a"));
    second_.SetName(QStringLiteral("Var1"));
    first_.SetValue(-2.5);
    second_.SetValue(1e300);
  }
  const TKorvalCompList* List() const { return &list_; }

 private:
  TVariable first_;
  TVariable second_;
  TKorvalCompList list_{nullptr, &TVariable::staticMetaObject};
};

const TNames& Names() {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "fuzz_macrotext";
  static char* argv[] = {name, nullptr};
  static QApplication application(argc, argv);
  static const TNames names;
  return names;
}

bool SameValue(double a, double b) {
  return std::isnan(a) ? std::isnan(b)
                       : std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

}  // namespace

/// What Qt keeps for the life of the process.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libQt6Gui\nleak:libfontconfig\n";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QString text =
      QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  TMacroCompiler compiler;
  compiler.SetVariables(Names().List());
  const std::unique_ptr<TMacroItem> tree = compiler.Compile(text);
  if (compiler.Ok() != (tree || text.isEmpty())) std::abort();
  if (compiler.Position() < 0 || compiler.Position() > text.size() + 1) std::abort();
  if (!tree) return 0;
  const double value = tree->Evaluate();
  const bool random = text.contains('R');
  if (!SameValue(TMacroProgram(*tree).Run(), value) && !random) std::abort();
  return 0;
}
