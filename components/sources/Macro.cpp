#include "components/sources/Macro.h"

#include <QSet>
#include <algorithm>
#include <unordered_set>

#include "components/sources/macro/Macroeditor.h"

namespace {

QString Bracketed(const QString& name) { return '[' + name + ']'; }

/// Finds whether names stand in a text between brackets, just so: blanks count.
class TNameSearch {
 public:
  explicit TNameSearch(const QString& text) : text_(text) {
    qsizetype open = -1;
    for (qsizetype i = 0; i < text.size(); ++i) {
      if (text[i] == u'[') {
        open = i;
      } else if (text[i] == u']') {
        if (open >= 0) names_.insert(QStringView(text).mid(open + 1, i - open - 1));
        open = -1;
      }
    }
  }

  bool Finds(const QString& name) const {
    // The brackets of such a name hide it from the set.
    if (name.contains(u'[') || name.contains(u']')) return text_.contains(Bracketed(name));
    return names_.contains(name);
  }

 private:
  QString text_;
  QSet<QStringView> names_;  ///< between brackets that are next to each other
};

}  // namespace

TMacro::TMacro(QWidget* parent) : TCustomVariable(parent) {
  SetIconImage(QStringLiteral("MacroImage"));
  SetImageSize(QSize(17, 17));
  SetCaptionPos(cpRight);
  compiler_.SetVariables(&variables_);
  connect(&variables_, &TKorvalCompList::OnItemChanged, this, &TMacro::VariablesChanged);
}

void TMacro::SetVariables(const TKorvalCompList* list) {
  if (list && list->GetBaseClass() == &TVariable::staticMetaObject) variables_.Assign(list);
}

void TMacro::SetMacroText(const QString& text) {
  if (text == macroText_) return;
  macroText_ = text;
  if (!IsLoading()) CompileMacro();
}

void TMacro::CompileMacro() {
  ++compilations_;
  UnLinkVariables();
  const std::unique_ptr<TMacroItem> root = compiler_.Compile(macroText_);
  program_ = root ? TMacroProgram(*root) : TMacroProgram();
  FindInputs();
  errorText_ = compiler_.ErrorMessage();
  if (LinkVariables()) TCustomVariable::SetValue(GetMacroValue());
}

double TMacro::GetMacroValue() {
  // The callback of a variable that is being destroyed goes before the variable leaves the list.
  for (const TInput& input : inputs_) {
    if (!input.IsWhole()) return 0.0;
  }
  return program_.Run();
}

void TMacro::SetValue(double value) {
  Q_UNUSED(value)
  TCustomVariable::SetValue(GetMacroValue());
}

void TMacro::Loaded() {
  variables_.GetComponentsByNames();
  TCustomVariable::Loaded();
  CompileMacro();
}

void TMacro::ShowEditor() {
  const QPointer<TMacroEditor> editor = new TMacroEditor(macroText_, variables_, this);
  connect(editor, &TMacroEditor::OnApply, this,
          [this](const QString& text) { SetMacroText(text); });
  editor->exec();
  delete editor;
}

// The variables

void TMacro::UnLinkVariables() {
  for (int i = 0; i < variables_.Count(); ++i) {
    if (auto* variable = variables_.Get<TVariable>(i)) variable->DeleteLink(&link_);
  }
}

/// False if a subscriber destroyed the macro or had it compiled anew.
bool TMacro::LinkVariables() {
  const TNameSearch text(macroText_);
  std::vector<QPointer<TVariable>> named;
  for (int i = 0; i < variables_.Count(); ++i) {
    auto* variable = variables_.Get<TVariable>(i);
    if (variable && text.Finds(variable->objectName())) named.emplace_back(variable);
  }
  const QPointer<TMacro> self(this);
  const int compilation = compilations_;
  for (const QPointer<TVariable>& variable : named) {
    if (variable) variable->AddLink(&link_, true);
    if (!self || compilation != compilations_) return false;
  }
  return true;
}

void TMacro::VariablesChanged(QObject* sender, QObject* component, TListAction action) {
  Q_UNUSED(sender)
  if (IsLoading()) return;
  const bool named = macroText_.contains(Bracketed(component->objectName()));
  auto* variable = qobject_cast<TVariable*>(component);  // null if it is being destroyed
  if (action == laRemoved) {
    // It may have been renamed since the macro subscribed to it.
    if (variable) variable->DeleteLink(&link_);
    if (named || Reads(component)) CompileMacro();
  } else if (named) {
    const QPointer<TMacro> self(this);
    const int compilation = compilations_;
    if (variable) variable->AddLink(&link_, true);
    if (self && compilation == compilations_) CompileMacro();
  }
}

void TMacro::FindInputs() {
  std::unordered_set<const TMacroItem::TReader*> read;
  for (const TMacroProgram::TInput& input : program_.Inputs()) read.insert(input.reader);
  inputs_.clear();
  for (int i = 0; i < variables_.Count(); ++i) {
    const auto* variable = variables_.Get<TVariable>(i);
    if (variable && read.contains(&variable->ValueReader())) {
      inputs_.push_back({variable, variable, variable->metaObject()});
    }
  }
}

bool TMacro::Reads(const QObject* component) const {
  return std::ranges::find(inputs_, component, &TInput::component) != inputs_.end();
}
