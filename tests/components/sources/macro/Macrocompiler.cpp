#include "components/sources/macro/Macrocompiler.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "components/channels/Variable.h"
#include "components/sources/macro/Macrofunctions.h"
#include "components/sources/macro/Macroprogram.h"

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

class MacroCompiler : public testing::Test {
 protected:
  MacroCompiler() {
    compiler.SetVariables(&list);
    Define(two, "a", 2.0);
    Define(minusThree, "Var1", -3.0);
    Define(odd, "o_d", 5.0);
    Define(twin, "a", 99.0);
    Define(nameless, "", 6.0);
    Define(bracket, "x[y", 7.0);
  }

  void Define(TVariable& variable, const char* name, double value) {
    variable.SetName(QLatin1String(name));
    variable.SetValue(value);
    list.Add(&variable);
  }

  double Value(const QString& text) {
    const std::unique_ptr<TMacroItem> tree = compiler.Compile(text);
    EXPECT_EQ(compiler.ErrorMessage().toStdString(), "No errors") << text.left(60).toStdString();
    EXPECT_EQ(compiler.Position(), 0);
    if (!tree) return std::numeric_limits<double>::quiet_NaN();
    const double value = tree->Evaluate();
    const double again = TMacroProgram(*tree).Run();
    EXPECT_EQ(std::bit_cast<quint64>(value), std::bit_cast<quint64>(again));
    return value;
  }

  TKorvalCompList list{nullptr, &TVariable::staticMetaObject};
  TVariable two, minusThree, odd, twin, nameless, bracket;
  TMacroCompiler compiler;
};

TEST_F(MacroCompiler, HasTheValuesWorkedByHand) {
  const struct {
    const char* text;
    double value;
  } cases[] = {
      // operators
      {"1+2*3", 7},
      {"(1+2)*3", 9},
      {"7-2-3", 2},
      {"8/4/2", 1},
      {"2*3+4*5", 26},
      {"2^3^2", 64},
      {"2*3^2", 18},
      {"1/0", kInf},
      {"-1/0", -kInf},
      {"2^0.5^2", 2},
      // a sign before a sum, and before a factor
      {"-2^2", -4},
      {"-2*3+10", 4},
      {"+3", 3},
      {"+-3", -3},
      {"--3", 3},
      {"--3^2", -9},
      {"2*-3", -6},
      {"2*-3^2", 18},
      {"2--3", 5},
      {"2+-3", -1},
      {"2^-1", 0.5},
      {"(-2)^2", 4},
      {"-(-(-1))", -1},
      // brackets of any kind, and what closes them
      {"(1+2}*{2)", 6},
      {"((((5}}}}", 5},
      {";1)", 1},
      {"MAX((1;2)", 2},
      // numbers
      {"1.5e3", 1500},
      {"1.5E-1", 0.15},
      {"1e+2", 100},
      {".5", 0.5},
      {"5.", 5},
      {"007", 7},
      {"0x10", 16},
      {"0X1.8P1", 3},
      {"0x.8", 0.5},
      {"1e999", kInf},
      {"1e-999", 0},
      // blanks are nowhere; a line feed is the end
      {" 1 + 2 ", 3},
      {"S I N ( 0 )", 0},
      {"[ V a r 1 ]", -3},
      {"1+2\nand % more", 3},
      // variables
      {"[a]", 2},
      {"[Var1]*2", -6},
      {"[a]^[a]-[Var1]", 7},
      {"[]", 6},
      {"[x[y]", 7},
      // functions
      {"PI", 3.141592653589793},
      {"E", 2.718281828459045},
      {"SIN(0)", 0},
      {"SIN(PI/2)", 1},
      {"COS(0)", 1},
      {"COS(PI)", -1},
      {"TAN(0)", 0},
      {"ABS(-3)", 3},
      {"ABS 3", 3},
      {"ABS[Var1]", 3},
      {"-ABS[Var1]^2", -9},
      {"2*-ABS(4)", -8},
      {"MAX(1;2)", 2},
      {"MAX(2;1)", 2},
      {"MIN(1;2)", 1},
      {"MIN{2;1)", 1},
      {"MAX 1;2)", 2},
      {"MAX(MIN(5;4);3)", 4},
      {"MAX(3;MIN(5;4))+1", 5},
      {"MAX(1+1;2*3)^2", 36},
      {"EQ(1;1)", 1},
      {"EQ(1;2)", 0},
      {"NEQ(1;1)", 0},
      {"NEQ(1;2)", 1},
      {"GT(2;1)", 1},
      {"GT(1;1)", 0},
      {"LT(1;2)", 1},
      {"LT(1;1)", 0},
      {"GOET(1;1)", 1},
      {"GOET(1;2)", 0},
      {"LOET(1;1)", 1},
      {"LOET(2;1)", 0},
      // not a number: no comparison holds but "differs", and the second argument is taken
      {"EQ(0/0;0/0)", 0},
      {"NEQ(0/0;0/0)", 1},
      {"GOET(0/0;1)", 0},
      {"MAX(0/0;1)", 1},
      {"MIN(0/0;1)", 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_DOUBLE_EQ(Value(QLatin1String(c.text)), c.value);
  }
  EXPECT_TRUE(std::isnan(Value(QStringLiteral("0/0"))));
  EXPECT_TRUE(std::isnan(Value(QStringLiteral("MAX(1;0/0)"))));
  EXPECT_TRUE(std::signbit(Value(QStringLiteral("-0"))));
}

TEST_F(MacroCompiler, SaysWhatIsWrongAndWhere) {
  const struct {
    const char* text;
    const char* message;
    int code, position;
  } cases[] = {
      {"%", "Illegal character", 1, 1},
      {"1_2", "Illegal character", 1, 2},
      {"1,5", "Illegal character", 1, 2},
      {"1+\t2", "Illegal character", 1, 3},
      {"\r1", "Illegal character", 1, 1},
      {"1+2\r\n", "Illegal character", 1, 4},
      {"(1\r)", "Illegal character", 1, 3},
      {"1*%2", "Illegal character", 1, 3},
      {"MAX(1%;2)", "Illegal character", 1, 6},
      {"SIN%", "Illegal character", 1, 4},
      {"[o_d]", "Illegal character", 1, 6},
      {"[none]%", "Illegal character", 1, 7},  // after code 7
      {".", "Incorrect syntax", 2, 1},
      {"1+..5", "Incorrect syntax", 2, 3},
      {"2 3", "Incorrect syntax", 2, 3},
      {"1.5.2", "Incorrect syntax", 2, 4},
      {"1e", "Incorrect syntax", 2, 2},
      {"1e+", "Incorrect syntax", 2, 2},
      {"1 e5", "Incorrect syntax", 2, 3},
      {"0x", "Incorrect syntax", 2, 2},
      {"0x.p1", "Incorrect syntax", 2, 2},
      {"2PI", "Incorrect syntax", 2, 2},
      {"1)", "Incorrect syntax", 2, 2},
      {"1]", "Incorrect syntax", 2, 2},
      {"(1;2)", "Incorrect syntax", 2, 3},
      {"MAX(1;2;3)", "Incorrect syntax", 2, 8},
      {"(1", "Missing parenthesis", 3, 3},
      {"(1+2]", "Missing parenthesis", 3, 5},
      {"[a", "Missing parenthesis", 3, 3},
      {"[a\n]", "Missing parenthesis", 3, 3},
      {"[a%", "Missing parenthesis", 3, 4},  // after code 1
      {"MAX(1 2)", "Missing parenthesis", 3, 7},
      {"MAX 1;2", "Missing parenthesis", 3, 8},
      {"max(1;2)", "Illegal function", 5, 0},
      {"1+sin(2)", "Illegal function", 5, 2},
      {"ABC(1)", "Illegal function", 5, 3},
      {"ABC%", "Illegal function", 5, 3},  // after code 1
      {"SINE", "Illegal function", 5, 4},
      {"SIN PI", "Illegal function", 5, 6},  // a blank parts nothing
      {"ABS ABS 3", "Illegal function", 5, 8},
      {"SIN", "Illegal function", 5, 3},
      {"ABS-3", "Illegal function", 5, 3},
      {"1+", "Illegal function", 5, 2},
      {"-+3", "Illegal function", 5, 1},
      {"---3", "Illegal function", 5, 2},
      {"2---3", "Illegal function", 5, 3},
      {"()", "Illegal function", 5, 1},
      {"  ", "Illegal function", 5, 2},
      {"\n1", "Illegal function", 5, 0},
      {"MAX(1)(2)", "Missing argument separator", 6, 7},
      {"EQ[a]1", "Missing argument separator", 6, 6},
      {"[var1]", "Incorrect variable name", 7, 7},
      {"[b]+%", "Incorrect variable name", 7, 4},
      {"[n_o]", "Incorrect variable name", 7, 6},  // after code 1
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(compiler.Compile(QLatin1String(c.text)), nullptr);
    EXPECT_EQ(compiler.ErrorMessage(), QLatin1String(c.message));
    EXPECT_EQ(compiler.ErrorCode(), c.code);
    EXPECT_EQ(compiler.Position(), c.position);
    EXPECT_FALSE(compiler.Ok());
  }
}

TEST_F(MacroCompiler, KnowsNoCharactersBeyondItsOwn) {
  for (int c = 0; c < 0x10000; ++c) {
    const QString text = QStringLiteral("1") + QChar(static_cast<char16_t>(c));
    static_cast<void>(compiler.Compile(text));
    const bool legal = QStringLiteral(
                           "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                           "0123456789({)}+-*/^.[] ;\n")
                           .contains(text[1]);
    EXPECT_EQ(compiler.ErrorCode() == TMacroCompiler::mcIllegalCharacter, !legal) << c;
  }
}

TEST_F(MacroCompiler, FindsNoErrorInAnEmptyText) {
  static_cast<void>(compiler.Compile(QStringLiteral("(")));
  EXPECT_EQ(compiler.Compile(QString()), nullptr);
  EXPECT_TRUE(compiler.Ok());
  EXPECT_EQ(compiler.Position(), 0);
  for (const int code : {-1, 0, 8, 255}) {
    EXPECT_EQ(TMacroCompiler::ErrorMessage(code), QStringLiteral("No errors"));
  }
  EXPECT_EQ(TMacroCompiler::ErrorMessage(4), QStringLiteral("Incorrect format"));
}

TEST_F(MacroCompiler, TakesVariablesOnlyFromAListOfVariables) {
  TKorvalCompList others(nullptr, &TCustomVariable::staticMetaObject);
  others.Add(&two);
  compiler.SetVariables(&others);
  EXPECT_EQ(compiler.GetVariables(), nullptr);
  EXPECT_EQ(compiler.Compile(QStringLiteral("[a]")), nullptr);
  EXPECT_EQ(compiler.ErrorCode(), TMacroCompiler::mcIncorrectVariable);
  {
    const TKorvalCompList brief(nullptr, &TVariable::staticMetaObject);
    compiler.SetVariables(&brief);
  }
  EXPECT_EQ(compiler.Compile(QStringLiteral("[a]")), nullptr);
}

TEST_F(MacroCompiler, StandsTextsOfAnyLengthAndDepth) {
  constexpr int kDeep = 100'000;
  const auto times = [](const char* text) { return QString::fromLatin1(text).repeated(kDeep); };
  const struct {
    const char* what;
    QString text;
    double value;
  } cases[] = {
      {"brackets", times("(") + '1' + times(")"), 1},
      {"sums to the left", times("1+") + '1', kDeep + 1},
      {"sums to the right", times("1+(") + '1' + times(")"), kDeep + 1},
      {"signs", times("-(") + '1' + times(")"), 1},
      {"signs of factors", '1' + times("*-1"), 1},
      {"functions", times("ABS(") + "-2" + times(")"), 2},
      {"second arguments", times("MAX(1;") + '3' + times(")"), 3},
      {"first arguments", times("MAX(") + '3' + times(";1)"), 3},
      {"powers", '1' + times("^1"), 1},
      {"powers to the right", times("1^(") + '1' + times(")"), 1},
      {"waiting results", times("(1+1)*(") + '1' + times(")"), kInf},
      {"variables", times("[a]-") + "[a]", 2.0 - 2.0 * kDeep},
      {"digits", times("1234567890") + "e-999999", 1.2345678901234567},
      {"blanks", times("          ") + '1', 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    if (c.what == std::string_view("digits")) {
      EXPECT_NEAR(Value(c.text), c.value, 1e-12);
    } else {
      EXPECT_EQ(Value(c.text), c.value);
    }
  }
  for (const char* part :
       {"(", "[", ";", "-", "A", "ABS", "MAX(1;", "1^", "-(", ")", "\n", "%", ".", "[a]+("}) {
    SCOPED_TRACE(part);
    EXPECT_EQ(compiler.Compile(times(part)), nullptr);
    EXPECT_FALSE(compiler.Ok());
  }
}

TEST_F(MacroCompiler, BuildsTreesByHand) {
  // 5 - |[Var1]|
  TMacroItem root;
  TMacroCompiler::SetMacroItem(root, Macrofunctions::Subtract);
  TMacroCompiler::SetMacroItem(TMacroCompiler::AddToLeft(root), 5.0);
  TMacroItem& right = TMacroCompiler::AddToRight(root);
  TMacroCompiler::SetMacroItem(right, Macrofunctions::Absolute);
  compiler.Initialize(QString());
  TMacroCompiler::SetMacroItem(TMacroCompiler::AddToLeft(right),
                               compiler.DefineVariable(QStringLiteral("[Var1]")));
  EXPECT_EQ(root.Evaluate(), 2.0);
  EXPECT_EQ(right.Parent(), &root);
  EXPECT_EQ(root.Left()->GetType(), TMacroItem::miConstant);
  EXPECT_EQ(right.Left()->GetType(), TMacroItem::miVariable);
  EXPECT_EQ(right.GetType(), TMacroItem::miFunction1);
  EXPECT_EQ(root.GetType(), TMacroItem::miFunction2);
}

/// Random expressions with brackets around everything, and what they are worth.
class TExpressions {
 public:
  struct TExpression {
    QString text;
    double value;
  };

  TExpression Make(int depth) {
    const int kind = depth == 0 ? 0 : Draw(6);
    if (kind == 0) {
      const int number = Draw(10);
      return {QString::number(number), static_cast<double>(number)};
    }
    const auto [a, x] = Make(depth - 1);
    const auto [b, y] = Make(depth - 1);
    switch (kind) {
      case 1:
        return {'(' + a + '+' + b + ')', x + y};
      case 2:
        return {'{' + a + '-' + b + '}', x - y};
      case 3:
        return {'(' + a + '*' + b + '}', x * y};
      case 4:
        return {"MAX(" + a + ';' + b + ')', x > y ? x : y};
      default:
        return {"(-" + a + ')', -x};
    }
  }

 private:
  int Draw(int below) { return static_cast<int>(generator_() % static_cast<unsigned>(below)); }

  std::mt19937 generator_{20};
};

TEST_F(MacroCompiler, AgreesWithWhatRandomExpressionsAreWorth) {
  TExpressions expressions;
  for (int i = 0; i < 2000; ++i) {
    const auto [text, value] = expressions.Make(i % 9);
    EXPECT_EQ(Value(text), value) << text.toStdString();
  }
}

TEST_F(MacroCompiler, SquaresAreThoseOfThePowerFunction) {
  const std::unique_ptr<TMacroItem> tree = compiler.Compile(QStringLiteral("[a]^2"));
  TMacroProgram program(*tree);
  std::mt19937_64 generator(5);
  std::vector<double> values = {0.0, -0.0, 1.0, kInf, -kInf, std::nan(""), 5e-324, 1e-140, 1.3e154};
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
  const auto moments = [&](const char* text, auto check) {
    const std::unique_ptr<TMacroItem> tree = compiler.Compile(QLatin1String(text));
    TMacroProgram program(*tree);
    double sum = 0.0;
    double squares = 0.0;
    for (int i = 0; i < kCount; ++i) {
      const double value = i % 2 ? program.Run() : tree->Evaluate();
      check(value);
      sum += value;
      squares += value * value;
    }
    const double mean = sum / kCount;
    return std::pair(mean, std::sqrt(squares / kCount - mean * mean));
  };
  // Five times the deviation of the mean of so many is 0.02 and 0.07.
  const auto uniform = moments("RAND(2;4)", [](double value) {
    EXPECT_GE(value, 2.0);
    EXPECT_LE(value, 4.0);
    EXPECT_NEAR(std::remainder(value - 2.0, 2.0 / 32767.0), 0.0, 1e-12);
  });
  EXPECT_NEAR(uniform.first, 3.0, 0.021);
  EXPECT_NEAR(uniform.second, 1.0 / std::sqrt(3.0), 0.02);
  const auto normal = moments("RNDG(10;2)", [](double value) {
    EXPECT_EQ(value, static_cast<double>(static_cast<float>(value)));
  });
  EXPECT_NEAR(normal.first, 10.0, 0.071);
  EXPECT_NEAR(normal.second, 2.0, 0.06);
}

}  // namespace
