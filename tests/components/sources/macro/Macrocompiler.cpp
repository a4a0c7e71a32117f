#include "components/sources/macro/Macrocompiler.h"

#include <bit>

#include "components/channels/Variable.h"
#include "components/sources/macro/Macroprogram.h"
#include "tests/support/Testing.h"

namespace {

using TRowTest = std::function<void(const QString& subject, const QString&, const QString&)>;

/// Tests each row of a table of lines "subject: left, separator, right | left, separator, right
/// ...", in which backslashes begin escapes as in C++.
void ForEachRow(const QString& table, const QString& separator, const TRowTest& test) {
  for (QString line : table.split('\n', Qt::SkipEmptyParts)) {
    line.replace("\\n", "\n").replace("\\r", "\r").replace("\\t", "\t");
    const QString subject = line.section(": ", 0, 0);
    for (const QString& row : line.mid(subject.size() + 2).split(" | ")) {
      SCOPED_TRACE(row.toStdString());
      test(subject, row.section(separator, 0, -2), row.section(separator, -1));
    }
  }
}

class MacroCompiler : public testing::Test {
 protected:
  MacroCompiler() {
    compiler.SetVariables(&list);
    const std::pair<const char*, double> values[] = {{"a", 2},  {"Var1", -3}, {"o_d", 5},
                                                     {"a", 99}, {"", 6},      {"x[y", 7}};
    for (std::size_t i = 0; i < variables.size(); ++i) {
      variables[i].SetName(values[i].first);
      variables[i].SetValue(values[i].second);
      list.Add(&variables[i]);
    }
  }

  double Value(const QString& text) {
    const std::unique_ptr<TMacroItem> tree = compiler.Compile(text);
    EXPECT_EQ(compiler.ErrorMessage().toStdString(), "No errors") << text.left(60).toStdString();
    EXPECT_EQ(compiler.Position(), 0);
    if (!tree) return kNan;
    const double value = tree->Evaluate();
    const double again = TMacroProgram(*tree).Run();
    EXPECT_EQ(std::bit_cast<quint64>(value), std::bit_cast<quint64>(again));
    return value;
  }

  TKorvalCompList list{nullptr, &TVariable::staticMetaObject};
  std::array<TVariable, 6> variables;
  TVariable& two = variables[0];
  TMacroCompiler compiler;
};

/// Expressions and their values, by what they are about.
TEST_F(MacroCompiler, HasTheValuesWorkedByHand) {
  ForEachRow(R"(
operators: 1+2*3 = 7 | (1+2)*3 = 9 | 7-2-3 = 2 | 8/4/2 = 1 | 2*3+4*5 = 26 | 2^3^2 = 64
operators: 2*3^2 = 18 | 1/0 = inf | -1/0 = -inf | 2^0.5^2 = 2
a sign before a sum, and before a factor: -2^2 = -4 | -2*3+10 = 4 | +3 = 3 | +-3 = -3 | --3 = 3
a sign: --3^2 = -9 | 2*-3 = -6 | 2*-3^2 = 18 | 2--3 = 5 | 2+-3 = -1 | 2^-1 = 0.5 | (-2)^2 = 4
a sign: -(-(-1)) = -1
brackets of any kind, and what closes them: (1+2}*{2) = 6 | ((((5}}}} = 5 | ;1) = 1 | MAX((1;2) = 2
numbers: 1.5e3 = 1500 | 1.5E-1 = 0.15 | 1e+2 = 100 | .5 = 0.5 | 5. = 5 | 007 = 7 | 0x10 = 16
numbers: 0X1.8P1 = 3 | 0x.8 = 0.5 | 1e999 = inf | 1e-999 = 0
blanks are nowhere:  1 + 2  = 3 | S I N ( 0 ) = 0 | [ V a r 1 ] = -3
a line feed is the end: 1+2\nand % more = 3
variables: [a] = 2 | [Var1]*2 = -6 | [a]^[a]-[Var1] = 7 | [] = 6 | [x[y] = 7
constants: PI = 3.141592653589793 | E = 2.718281828459045
functions: SIN(0) = 0 | SIN(PI/2) = 1 | COS(0) = 1 | COS(PI) = -1 | TAN(0) = 0 | ABS(-3) = 3
functions: ABS 3 = 3 | ABS[Var1] = 3 | -ABS[Var1]^2 = -9 | 2*-ABS(4) = -8 | MAX(1;2) = 2
functions: MAX(2;1) = 2 | MIN(1;2) = 1 | MIN{2;1) = 1 | MAX 1;2) = 2 | MAX(MIN(5;4);3) = 4
functions: MAX(3;MIN(5;4))+1 = 5 | MAX(1+1;2*3)^2 = 36
comparisons: EQ(1;1) = 1 | EQ(1;2) = 0 | NEQ(1;1) = 0 | NEQ(1;2) = 1 | GT(2;1) = 1 | GT(1;1) = 0
comparisons: LT(1;2) = 1 | LT(1;1) = 0 | GOET(1;1) = 1 | GOET(1;2) = 0 | LOET(1;1) = 1 | LOET(2;1) = 0
not a number, no comparison holds but "differs": EQ(0/0;0/0) = 0 | NEQ(0/0;0/0) = 1 | GOET(0/0;1) = 0
not a number, the second argument is taken: MAX(0/0;1) = 1 | MIN(0/0;1) = 1
)",
             " = ", [this](const QString&, const QString& text, const QString& value) {
               EXPECT_DOUBLE_EQ(Value(text), value.toDouble());
             });
  EXPECT_TRUE(std::isnan(Value("0/0")));
  EXPECT_TRUE(std::isnan(Value("MAX(1;0/0)")));
  EXPECT_TRUE(std::signbit(Value("-0")));
}

/// Expressions and where they are wrong, by their fault.
TEST_F(MacroCompiler, SaysWhatIsWrongAndWhere) {
  ForEachRow(R"(
1 Illegal character: % @1 | 1_2 @2 | 1,5 @2 | 1+\t2 @3 | \r1 @1 | 1+2\r\n @4 | (1\r) @3 | 1*%2 @3
1 Illegal character: MAX(1%;2) @6 | SIN% @4 | [o_d] @6
1 Illegal character, though it would be 7: [none]% @7
2 Incorrect syntax: . @1 | 1+..5 @3 | 2 3 @3 | 1.5.2 @4 | 1e @2 | 1e+ @2 | 1 e5 @3 | 0x @2
2 Incorrect syntax: 0x.p1 @2 | 2PI @2 | 1) @2 | 1] @2 | (1;2) @3 | MAX(1;2;3) @8
3 Missing parenthesis: (1 @3 | (1+2] @5 | [a @3 | [a\n] @3 | MAX(1 2) @7 | MAX 1;2 @8
3 Missing parenthesis, though it would be 1: [a% @4
5 Illegal function: max(1;2) @0 | 1+sin(2) @2 | ABC(1) @3 | SINE @4 | ABS ABS 3 @8 | SIN @3
5 Illegal function: ABS-3 @3 | 1+ @2 | -+3 @1 | ---3 @2 | 2---3 @3 | () @1 |    @2 | \n1 @0
5 Illegal function, as a blank parts nothing: SIN PI @6
5 Illegal function, though it would be 1: ABC% @3
6 Missing argument separator: MAX(1)(2) @7 | EQ[a]1 @6
7 Incorrect variable name: [var1] @7 | [b]+% @4
7 Incorrect variable name, though it would be 1: [n_o] @6
)",
             " @", [this](const QString& fault, const QString& text, const QString& position) {
               EXPECT_EQ(compiler.Compile(text), nullptr);
               EXPECT_EQ(compiler.ErrorMessage(), fault.section(',', 0, 0).section(' ', 1));
               EXPECT_EQ(compiler.ErrorCode(), fault.section(' ', 0, 0).toInt());
               EXPECT_EQ(compiler.Position(), position.toInt());
               EXPECT_FALSE(compiler.Ok());
             });
}

TEST_F(MacroCompiler, KnowsNoCharactersBeyondItsOwn) {
  const QString legalOnes =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789({)}+-*/^.[] ;\n";
  for (int c = 0; c < 0x10000; ++c) {
    const QString text = '1' + QString(QChar(c));
    static_cast<void>(compiler.Compile(text));
    const bool legal = legalOnes.contains(text[1]);
    EXPECT_EQ(compiler.ErrorCode() == TMacroCompiler::mcIllegalCharacter, !legal) << c;
  }
}

TEST_F(MacroCompiler, FindsNoErrorInAnEmptyText) {
  static_cast<void>(compiler.Compile("("));
  EXPECT_EQ(compiler.Compile({}), nullptr);
  EXPECT_TRUE(compiler.Ok());
  EXPECT_EQ(compiler.Position(), 0);
  for (const int code : {-1, 0, 8, 255}) EXPECT_EQ(TMacroCompiler::ErrorMessage(code), "No errors");
  EXPECT_EQ(TMacroCompiler::ErrorMessage(4), "Incorrect format");
}

TEST_F(MacroCompiler, TakesVariablesOnlyFromAListOfVariables) {
  TKorvalCompList others(nullptr, &TCustomVariable::staticMetaObject);
  others.Add(&two);
  compiler.SetVariables(&others);
  EXPECT_EQ(compiler.GetVariables(), nullptr);
  EXPECT_EQ(compiler.Compile("[a]"), nullptr);
  EXPECT_EQ(compiler.ErrorCode(), TMacroCompiler::mcIncorrectVariable);
  {
    const TKorvalCompList brief(nullptr, &TVariable::staticMetaObject);
    compiler.SetVariables(&brief);
  }
  EXPECT_EQ(compiler.Compile("[a]"), nullptr);
}

TEST_F(MacroCompiler, StandsTextsOfAnyLengthAndDepth) {
  constexpr int kDeep = 100'000;
  const auto times = [](const char* text) { return QString::fromLatin1(text).repeated(kDeep); };
  const std::pair<QString, double> cases[] = {
      {times("(") + '1' + times(")"), 1},
      {times("1+") + '1', kDeep + 1},
      {times("1+(") + '1' + times(")"), kDeep + 1},
      {times("-(") + '1' + times(")"), 1},
      {'1' + times("*-1"), 1},
      {times("ABS(") + "-2" + times(")"), 2},
      {times("MAX(1;") + '3' + times(")"), 3},
      {times("MAX(") + '3' + times(";1)"), 3},
      {'1' + times("^1"), 1},
      {times("1^(") + '1' + times(")"), 1},
      {times("(1+1)*(") + '1' + times(")"), kInfinity},
      {times("[a]-") + "[a]", 2.0 - 2.0 * kDeep},
      {times("1234567890") + "e-999999", 1.2345678901234567},
      {times("          ") + '1', 1},
  };
  for (const auto& [text, value] : cases) EXPECT_DOUBLE_EQ(Value(text), value);
  for (const char* part :
       {"(", "[", ";", "-", "A", "ABS", "MAX(1;", "1^", "-(", ")", "\n", "%", ".", "[a]+("}) {
    SCOPED_TRACE(part);
    EXPECT_EQ(compiler.Compile(times(part)), nullptr);
    EXPECT_FALSE(compiler.Ok());
  }
}

/// A random expression with brackets around everything, and what it is worth.
std::pair<QString, double> RandomExpression(std::mt19937& random, int depth) {
  const unsigned kind = depth == 0 ? 0 : random() % 6;
  if (kind == 0) {
    const unsigned number = random() % 10;
    return {QString::number(number), number};
  }
  const auto [a, x] = RandomExpression(random, depth - 1);
  const auto [b, y] = RandomExpression(random, depth - 1);
  if (kind == 1) return {'(' + a + '+' + b + ')', x + y};
  if (kind == 2) return {'{' + a + '-' + b + '}', x - y};
  if (kind == 3) return {'(' + a + '*' + b + '}', x * y};
  if (kind == 4) return {"MAX(" + a + ';' + b + ')', x > y ? x : y};
  return {"(-" + a + ')', -x};
}

TEST_F(MacroCompiler, AgreesWithWhatRandomExpressionsAreWorth) {
  std::mt19937 random(20);
  for (int i = 0; i < 2000; ++i) {
    const auto [text, value] = RandomExpression(random, i % 9);
    EXPECT_EQ(Value(text), value) << text.toStdString();
  }
}

TEST_F(MacroCompiler, SquaresAreThoseOfThePowerFunction) {
  const std::unique_ptr<TMacroItem> tree = compiler.Compile("[a]^2");
  TMacroProgram program(*tree);
  std::mt19937_64 generator(5);
  std::vector<double> values = {0.0,  -0.0,   1.0,    kInfinity, -kInfinity,
                                kNan, 5e-324, 1e-140, 1.3e154};
  for (int i = 0; i < 200'000; ++i) {
    const quint64 bits = generator();
    values.push_back(std::bit_cast<double>(bits));
    values.push_back(std::bit_cast<double>(bits >> 12 | 0x3ff0000000000000));  // from 1 to 2
    values.push_back(std::bit_cast<double>(bits >> 12 | 0x2000000000000000));  // the least squares
  }
  for (const double value : values) {
    two.TDataControl::SetValue(value);
    ASSERT_EQ(std::bit_cast<quint64>(program.Run()), std::bit_cast<quint64>(tree->Evaluate()))
        << value;
  }
}

TEST_F(MacroCompiler, DrawsUniformAndNormalNumbers) {
  constexpr int kCount = 20'000;
  const auto isOfTheSteps = [](double value) {
    const double off = std::remainder(value - 2.0, 2.0 / 32767.0);
    return value >= 2.0 && value <= 4.0 && std::abs(off) < 1e-12;
  };
  const auto isFloat = [](double value) { return value == double{static_cast<float>(value)}; };
  const std::tuple<QString, double, double, std::function<bool(double)>> cases[] = {
      {"RAND(2;4)", 3.0, 1.0 / std::sqrt(3.0), isOfTheSteps}, {"RNDG(10;2)", 10.0, 2.0, isFloat}};
  for (const auto& [text, mean, deviation, isSuch] : cases) {
    const std::unique_ptr<TMacroItem> tree = compiler.Compile(text);
    TMacroProgram program(*tree);
    double sum = 0.0, squares = 0.0;
    for (int i = 0; i < kCount; ++i) {
      const double value = i % 2 ? program.Run() : tree->Evaluate();
      EXPECT_TRUE(isSuch(value)) << value;
      sum += value - mean;
      squares += (value - mean) * (value - mean);
    }
    EXPECT_NEAR(sum / kCount, 0.0, 5.0 * deviation / std::sqrt(kCount));
    EXPECT_NEAR(std::sqrt(squares / kCount), deviation, 0.03 * deviation);
  }
}

}  // namespace
