// How fast an expression over two changing inputs is evaluated: as a program, through a macro with
// its subscriptions and notifications, by muParser where its package is installed, and compiled by
// the C++ compiler. And how long it takes to compile long texts.

#include <QApplication>
#include <cmath>

#include "bench/Bench.h"
#include "components/sources/Macro.h"

#ifdef VELMORA_MUPARSER
#include <muParser.h>
#endif

namespace {

const QString kText = QStringLiteral("[a]*2 + SIN([b])^2 - MAX([a];[b])/3");

double Formula(double a, double b) {
  return a * 2 + std::pow(std::sin(b), 2) - (a > b ? a : b) / 3;
}

/// An input that costs nothing to change.
struct TInput : TVariable {
  double GetValue() const override { return present; }
  double present = 0.0;
};

/// Inputs that change with each evaluation.
double InputA(int i) { return 0.5 + 1e-6 * i; }
double InputB(int i) { return 1.5 - 1e-6 * i; }

/// The sum of the values that `evaluate` has for the inputs 0 to n - 1, into `sum`.
template <class TEvaluate>
void Measure(const TBench& bench, const char* what, int n, double& sum, TEvaluate evaluate) {
  const double seconds = bench.Seconds(9, [&] {
    sum = 0.0;
    for (int i = 0; i < n; ++i) sum += evaluate(InputA(i), InputB(i));
  });
  bench.Row(what, 1e-6 * n / seconds, "million/s");
}

void Evaluation(TBench& bench) {
  const int n = bench.Quick() ? 1000 : 2'000'000;
  double expected = 0.0;
  double sum = 0.0;
  Measure(bench, "the formula in C++", n, expected, Formula);
  const auto check = [&](const char* what) {
    bench.Check(std::fabs(sum - expected) <= 1e-12 * std::fabs(expected), what);
  };

  TInput a;
  TInput b;
  a.SetName(QStringLiteral("a"));
  b.SetName(QStringLiteral("b"));
  TMacro macro;
  macro.GetVariables()->Add(&a);
  macro.GetVariables()->Add(&b);
  macro.SetMacroText(kText);
  const auto afterChange = [&](auto evaluate) {
    return [&a, &b, evaluate](double valueA, double valueB) {
      a.present = valueA;
      b.present = valueB;
      return evaluate();
    };
  };

#ifdef VELMORA_MUPARSER
  mu::Parser parser;
  double x = 0.0;
  double y = 0.0;
  parser.DefineVar("a", &x);
  parser.DefineVar("b", &y);
  parser.SetExpr("a*2 + sin(b)^2 - max(a,b)/3");
  Measure(bench, "muParser", n, sum, [&](double valueA, double valueB) {
    x = valueA;
    y = valueB;
    return parser.Eval();
  });
  check("muParser");
#endif

  TMacroCompiler compiler;
  compiler.SetVariables(macro.GetVariables());
  const std::unique_ptr<TMacroItem> tree = compiler.Compile(kText);
  TMacroProgram program(*tree);
  Measure(bench, "the program", n, sum, afterChange([&] { return program.Run(); }));
  check("the program");
  Measure(bench, "the tree", n, sum, afterChange([&] { return tree->Evaluate(); }));
  check("the tree");
  Measure(bench, "a macro", n, sum, afterChange([&] { return macro.GetMacroValue(); }));
  check("a macro");
  Measure(bench, "a macro that notifies one subscriber", n, sum, afterChange([&] {
            macro.SetValue(0.0);
            return macro.GetValue();
          }));
  check("a macro that notifies");
}

void Compilation(TBench& bench) {
  const int most = bench.Quick() ? 10'000 : 1'000'000;
  TMacroCompiler compiler;
  const auto measure = [&](const char* what, const QString& text, double value) {
    std::unique_ptr<TMacroItem> tree;
    const double seconds = bench.Seconds(5, [&] { tree = compiler.Compile(text); });
    bench.Row(QStringLiteral("compiling %1 characters: %2")
                  .arg(text.size())
                  .arg(QLatin1String(what))
                  .toStdString(),
              1e9 * seconds / static_cast<double>(text.size()), "ns per character");
    bench.Check(tree && tree->Evaluate() == value, what);
  };
  for (int length = most / 10; length <= most; length *= 10) {
    const int n = length / 2;
    measure("a sum", QStringLiteral("1+").repeated(n) + '1', n + 1);
    measure("brackets", QString(n, '(') + '1' + QString(n, ')'), 1.0);
  }
}

}  // namespace

int main(int argc, char** argv) {
  TBench bench(argc, argv);
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  Evaluation(bench);
  Compilation(bench);
  return bench.Result();
}
