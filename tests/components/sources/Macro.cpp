#include "components/sources/Macro.h"

#include "tests/support/Testing.h"

namespace {

using testing::ElementsAre;

class Macro : public testing::Test {
 protected:
  Macro() {
    macro->SetName("m");
    for (TVariable* variable : {a, b}) macro->GetVariables()->Add(variable);
  }

  TVariable* Make(const char* name, double value) {
    auto* variable = new TVariable(&form);
    variable->SetName(QLatin1String(name));
    variable->SetValue(value);
    return variable;
  }
  void ExpectLinks(int ofA, int ofB) {
    EXPECT_EQ(a->LinkCount(), ofA);
    EXPECT_EQ(b->LinkCount(), ofB);
  }
  void SetText(const char* text) { macro->SetMacroText(QLatin1String(text)); }

  QWidget form;
  TVariable* a = Make("a", 2.0);
  TVariable* b = Make("b", 3.0);
  TMacro* macro = new TMacro(&form);
};

TEST_F(Macro, FollowsTheVariablesThatItNames) {
  SetText("[a]*2");
  EXPECT_EQ(macro->GetValue(), 4.0);
  a->SetValue(5.0);
  EXPECT_EQ(macro->GetValue(), 10.0);
  macro->SetValue(1000.0);  // takes its own, whatever it is given
  EXPECT_EQ(macro->GetValue(), 10.0);
  ExpectLinks(1, 0);
  SetText("[b]+1");
  EXPECT_EQ(macro->GetValue(), 4.0);
  ExpectLinks(0, 1);
}

TEST_F(Macro, TellsTheErrorOfItsText) {
  EXPECT_EQ(macro->GetErrorText(), "No errors");
  SetText("[a]*(2");
  EXPECT_EQ(macro->GetErrorText(), "Missing parenthesis");
  EXPECT_EQ(macro->GetErrorCode(), TMacroCompiler::mcMissingParenthesis);
  EXPECT_EQ(macro->GetErrorPosition(), 7);
  EXPECT_EQ(macro->GetValue(), 0.0);
  SetText("");
  EXPECT_EQ(macro->GetErrorText(), "No errors");
  EXPECT_EQ(macro->GetErrorPosition(), 0);
}

TEST_F(Macro, TellsItsValueForEachVariableAndOnceMoreWhenCompiled) {
  std::vector<double> told;
  TValueLink link([&told](double value) { told.push_back(value); });
  macro->AddLink(&link, false);
  SetText("[b]-[a]");
  SetText("[b]-[a]");  // the same: nothing happens
  SetText("7");
  EXPECT_THAT(told, ElementsAre(1, 1, 1, 7));
}

TEST_F(Macro, SubscribesByTheNameAsItStandsInTheText) {
  SetText("[ a ] + 1\n[b]");
  EXPECT_EQ(macro->GetValue(), 3.0);
  ExpectLinks(0, 1);  // blanks: read, but not followed; behind the end: followed, but not read
  TVariable* odd = Make("x[y", 4.0);
  macro->GetVariables()->Add(odd);
  SetText("[x[y]+[a[b]");
  EXPECT_TRUE(odd->LinkCount());
  ExpectLinks(0, 1);
}

TEST_F(Macro, CompilesWhenAVariableThatItNamesComesOrGoes) {
  SetText("[c]");
  EXPECT_EQ(macro->GetErrorText(), "Incorrect variable name");
  QSignalSpy changes(macro, &TMacro::OnChange);
  TVariable* d = Make("d", 1.0);
  macro->GetVariables()->Add(d);
  EXPECT_EQ(changes.count(), 0);
  TVariable* c = Make("c", 8.0);
  macro->GetVariables()->Add(c);
  EXPECT_EQ(macro->GetValue(), 8.0);
  EXPECT_EQ(macro->GetErrorText(), "No errors");
  macro->GetVariables()->DeleteComponent(c);
  EXPECT_EQ(macro->GetValue(), 0.0);
  EXPECT_EQ(macro->GetErrorText(), "Incorrect variable name");
  EXPECT_EQ(c->LinkCount(), 0);
}

/// How a variable may go while the expression reads it.
TEST_F(Macro, ForgetsVariablesHoweverTheyGo) {
  const std::pair<const char*, const char*> cases[] = {
      {"[a]+1", "a"}, {"[a]+1", "z"}, {"[ a ]+1", "a"}};  // and the name that it has then
  for (int i = 0; i < 6; ++i) {
    SCOPED_TRACE(i);
    const auto& [text, name] = cases[i / 2];
    TVariable* variable = Make("a", 2.0);
    macro->GetVariables()->Clear();
    macro->GetVariables()->Add(variable);
    SetText("");
    SetText(text);
    EXPECT_EQ(macro->GetValue(), 3.0);
    variable->SetName(QLatin1String(name));
    if (i % 2) {
      macro->GetVariables()->DeleteComponent(variable);
      EXPECT_EQ(variable->LinkCount(), 0);
    }
    delete variable;
    EXPECT_EQ(macro->GetValue(), 0.0);
    EXPECT_EQ(macro->GetMacroValue(), 0.0);
    EXPECT_EQ(macro->GetErrorCode(), TMacroCompiler::mcIncorrectVariable);
  }
}

TEST_F(Macro, ReadsNoVariableThatIsBeingDestroyed) {
  TVariable* c = Make("c", 1.0);
  std::vector<double> told;
  // Called before the list of the macro is: the variable is a bare widget by then.
  QObject::connect(c, &QObject::destroyed, [&] {
    b->SetValue(10.0);
    told.push_back(macro->GetValue());
  });
  macro->GetVariables()->Add(c);
  SetText("[b]+[c]");
  EXPECT_EQ(macro->GetValue(), 4.0);
  delete c;
  EXPECT_THAT(told, ElementsAre(0));
  EXPECT_EQ(macro->GetErrorCode(), TMacroCompiler::mcIncorrectVariable);
}

TEST_F(Macro, GivesNothingToAClientThatIsBeingDestroyed) {
  SetText("[a]+[b]");
  macro->GetClientControls()->Add(a);
  delete a;  // the macro compiles, and takes a new value, while it is still in the list
  EXPECT_EQ(macro->GetValue(), 0.0);
  EXPECT_EQ(macro->GetClientControls()->Count(), 0);
}

TEST_F(Macro, CompilesOnceWhenItsFormIsComplete) {
  TMacro loaded(&form);
  QSignalSpy changes(&loaded, &TMacro::OnChange);
  loaded.BeginLoading();
  loaded.SetMacroText("[a]*[b]");
  loaded.GetVariables()->SetNames({"a", "b", "m", "unknown"});
  EXPECT_EQ(loaded.GetErrorText(), "No errors");
  EXPECT_EQ(changes.count(), 0);
  loaded.Loaded();
  EXPECT_EQ(loaded.GetValue(), 6.0);
  EXPECT_EQ(changes.count(), 3);                 // for each variable, and for the compilation
  EXPECT_EQ(loaded.GetVariables()->Count(), 2);  // a macro is no variable
  // A variable that leaves while the form is read is not read.
  loaded.BeginLoading();
  loaded.GetVariables()->DeleteComponent(a);
  delete a;
  EXPECT_EQ(loaded.GetMacroValue(), 0.0);
}

TEST_F(Macro, CopiesOnlyListsOfVariables) {
  for (const QMetaObject* kind :
       {&TCustomVariable::staticMetaObject, &TVariable::staticMetaObject}) {
    TKorvalCompList others(nullptr, kind);
    others.Add(b);
    macro->SetVariables(&others);
    EXPECT_EQ(macro->GetVariables()->Count(), kind == &TVariable::staticMetaObject ? 1 : 2);
  }
}

TEST_F(Macro, EndsWhenItIsItsOwnInput) {
  SetText("[a]+1");
  int told = 0;
  TValueLink link([&told](double) { ++told; });
  macro->AddLink(&link, false);
  macro->GetClientControls()->Add(a);
  a->SetValue(0.0);
  EXPECT_LT(told, 20);
  EXPECT_GT(macro->GetValue(), 0.0);
  QCoreApplication::processEvents();
  EXPECT_EQ(TakeMessages().size(), 1);
}

TEST_F(Macro, StandsASubscriberThatDestroysItOrChangesItsText) {
  for (const char* text : {"[a]+[b]", "1"}) {
    auto* brief = new TMacro(&form);
    brief->GetVariables()->Assign(macro->GetVariables());
    TValueLink link([&](double) {
      delete brief;
      brief = nullptr;
    });
    brief->AddLink(&link, false);
    brief->SetMacroText(QLatin1String(text));
    EXPECT_EQ(brief, nullptr);
    ExpectLinks(0, 0);
  }
  TValueLink link([&](double) { SetText("[a]*10"); });
  macro->AddLink(&link, false);
  SetText("[a]+[b]");
  EXPECT_EQ(macro->GetValue(), 20.0);
  ExpectLinks(1, 0);
}

}  // namespace
