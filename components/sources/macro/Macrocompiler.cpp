#include "components/sources/macro/Macrocompiler.h"

#include <algorithm>
#include <utility>

#include "components/channels/Variable.h"
#include "components/sources/macro/Macrofunctions.h"
#include "model/Textscanner.h"

namespace {

constexpr QStringView kOpeners = u"({";
constexpr QStringView kClosers = u")}";
constexpr QStringView kDigits = u"0123456789";
constexpr QStringView kOperators = u"+-*/^";
constexpr QStringView kPunctuation = u".[] ;";
constexpr QChar kEnd = u'\n';

bool IsUpper(QChar c) { return c >= u'A' && c <= u'Z'; }
bool IsLetter(QChar c) { return IsUpper(c) || (c >= u'a' && c <= u'z'); }
bool IsDigit(QChar c) { return c >= u'0' && c <= u'9'; }
bool IsHexDigit(QChar c) {
  return IsDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}
bool IsSign(QChar c) { return c == u'+' || c == u'-'; }

bool IsLegal(QChar c) {
  return c == kEnd || IsLetter(c) || Contains(kDigits, c) || Contains(kOpeners, c) ||
         Contains(kClosers, c) || Contains(kOperators, c) || Contains(kPunctuation, c);
}

/// Position of the first character from `from` on that is none of `isDigit`.
template <class TIsDigit>
qsizetype SkipDigits(QStringView text, qsizetype from, TIsDigit isDigit) {
  while (from < text.size() && isDigit(text[from])) ++from;
  return from;
}

/// How much of `text` is digits with at most one point; 0 if there is no digit.
template <class TIsDigit>
qsizetype MantissaLength(QStringView text, TIsDigit isDigit) {
  const qsizetype whole = SkipDigits(text, 0, isDigit);
  if (whole == text.size() || text[whole] != u'.') return whole;
  const qsizetype all = SkipDigits(text, whole + 1, isDigit);
  return all > 1 ? all : 0;
}

/// How much of `text` is an exponent; 0 if it has no digit.
qsizetype ExponentLength(QStringView text, QChar letter) {
  if (text.isEmpty() || text[0].toLower() != letter) return 0;
  const qsizetype digits = text.size() > 1 && IsSign(text[1]) ? 2 : 1;
  const qsizetype end = SkipDigits(text, digits, IsDigit);
  return end > digits ? end : 0;
}

/// How much of `text`, which begins with a digit or a point, the C library takes for a number:
/// 1.5e3 and 0x1.8p1 whole, the 1 of 1e, the 0 of 0x, nothing of a bare point.
qsizetype NumberLength(QStringView text) {
  if (text.size() > 2 && text[0] == u'0' && text[1].toLower() == u'x') {
    const qsizetype mantissa = MantissaLength(text.mid(2), IsHexDigit);
    if (mantissa > 0) return 2 + mantissa + ExponentLength(text.mid(2 + mantissa), u'p');
  }
  const qsizetype mantissa = MantissaLength(text, IsDigit);
  return mantissa > 0 ? mantissa + ExponentLength(text.mid(mantissa), u'e') : 0;
}

TMacroItem::TFunction2 Operator(QChar c) {
  switch (c.unicode()) {
    case u'+':
      return Macrofunctions::Add;
    case u'-':
      return Macrofunctions::Subtract;
    case u'*':
      return Macrofunctions::Multiply;
    case u'/':
      return Macrofunctions::Divide;
    default:
      return Macrofunctions::Power;
  }
}

}  // namespace

bool Contains(QStringView set, QChar c) { return set.contains(c); }

void TMacroCompiler::SetVariables(const TKorvalCompList* variables) {
  const bool fits = variables && variables->GetBaseClass() == &TVariable::staticMetaObject;
  variables_ = fits ? variables : nullptr;
}

QString TMacroCompiler::ErrorMessage(int code) {
  switch (code) {
    case mcIllegalCharacter:
      return QStringLiteral("Illegal character");
    case mcIncorrectSyntax:
      return QStringLiteral("Incorrect syntax");
    case mcMissingParenthesis:
      return QStringLiteral("Missing parenthesis");
    case mcIncorrectFormat:
      return QStringLiteral("Incorrect format");
    case mcIllegalFunction:
      return QStringLiteral("Illegal function");
    case mcMissingSeparator:
      return QStringLiteral("Missing argument separator");
    case mcIncorrectVariable:
      return QStringLiteral("Incorrect variable name");
    default:
      return QStringLiteral("No errors");
  }
}

// Nodes

TMacroCompiler::TItem TMacroCompiler::AddToTop(TItem left, TItem right) {
  auto item = std::make_unique<TMacroItem>();
  item->SetLeft(std::move(left));
  item->SetRight(std::move(right));
  return item;
}

TMacroItem& TMacroCompiler::AddToLeft(TMacroItem& item) {
  auto added = std::make_unique<TMacroItem>();
  TMacroItem& result = *added;
  item.SetLeft(std::move(added));
  return result;
}

TMacroItem& TMacroCompiler::AddToRight(TMacroItem& item) {
  auto added = std::make_unique<TMacroItem>();
  TMacroItem& result = *added;
  item.SetRight(std::move(added));
  return result;
}

// Characters

void TMacroCompiler::Initialize(const QString& text) {
  text_ = text;
  position_ = 0;
  error_ = mcOk;
  readers_.clear();
  waiting_.clear();
  NextCh();
}

void TMacroCompiler::NextCh() {
  do {
    ++position_;
    ch_ = position_ <= text_.size() ? text_[position_ - 1] : kEnd;
    if (!IsLegal(ch_)) Fail(mcIllegalCharacter);
  } while (ch_ == u' ');
}

// Rules

TMacroCompiler::TItem TMacroCompiler::Compile(const QString& text) {
  Initialize(text);
  TItem item;
  if (!text.isEmpty()) item = Expression();
  FinalErrorCheck();
  waiting_ = std::vector<TWaiting>();
  readers_ = {};
  return Ok() ? std::move(item) : nullptr;
}

void TMacroCompiler::FinalErrorCheck() {
  if (Ok() && ch_ != kEnd) Fail(mcIncorrectSyntax);
  if (error_ == mcIncorrectFormat || error_ == mcIllegalFunction) --position_;
  if (Ok()) position_ = 0;
}

/// The item of a whole expression; null after an error.
TMacroCompiler::TItem TMacroCompiler::Expression() {
  BeginExpression();
  while (Ok()) {
    TItem item = BeginFactor();
    if (item && Ok()) item = EndFactor(std::move(item));
    if (item) return item;
  }
  return nullptr;
}

/// A minus here negates the whole first product: -2^2 is -4.
void TMacroCompiler::BeginExpression() {
  if (IsSign(ch_)) {
    if (ch_ == u'-') Wait(TRule::SumSign, Macrofunctions::Negate);
    NextCh();
  }
  BeginSignedFactor();
}

/// A minus here negates just its factor: 2*-3^2 is 18.
void TMacroCompiler::BeginSignedFactor() {
  if (!Ok() || ch_ != u'-') return;
  Wait(TRule::Function, Macrofunctions::Negate);
  NextCh();
}

/// Reads what a factor begins with. Null after an error, and if another factor comes first: the one
/// in the bracket, or the argument.
TMacroCompiler::TItem TMacroCompiler::BeginFactor() {
  if (IsDigit(ch_) || ch_ == u'.') return Number();
  if (ch_ == u'[') return Variable();
  if (!Contains(kOpeners, ch_) && ch_ != u';') return Name();
  Wait(TRule::Group);
  NextCh();
  if (Ok()) BeginExpression();
  return nullptr;
}

TMacroCompiler::TItem TMacroCompiler::Number() {
  const QStringView rest = QStringView(text_).mid(position_ - 1);
  const qsizetype length = NumberLength(rest);
  if (length == 0) {
    Fail(mcIncorrectSyntax);
    return nullptr;
  }
  number_.clear();
  for (const QChar c : rest.left(length)) number_ += c.toLatin1();
  double value = 0.0;
  static_cast<void>(TTextScanner(number_).ReadReal(value));
  position_ += static_cast<int>(length) - 1;
  NextCh();
  return std::make_unique<TMacroItem>(value);
}

TMacroCompiler::TItem TMacroCompiler::Variable() {
  QString name;
  for (; ch_ != u']' && ch_ != kEnd; NextCh()) name += ch_;
  if (ch_ == kEnd) {
    Fail(mcMissingParenthesis);
    return nullptr;
  }
  const TMacroItem::TReader* reader = DefineVariable(name + ch_);
  if (!reader) Fail(mcIncorrectVariable);
  NextCh();
  return reader ? std::make_unique<TMacroItem>(reader) : nullptr;
}

const TMacroItem::TReader* TMacroCompiler::DefineVariable(const QString& name) {
  if (readers_.isEmpty() && variables_) {
    for (int i = 0; i < variables_->Count(); ++i) {
      const auto* variable = variables_->Get<TVariable>(i);
      if (!variable) continue;
      const TMacroItem::TReader*& reader = readers_['[' + variable->objectName() + ']'];
      if (!reader) reader = &variable->ValueReader();
    }
  }
  return readers_.value(name);
}

TMacroCompiler::TItem TMacroCompiler::Name() {
  QString word;
  for (; IsUpper(ch_); NextCh()) word += ch_;
  const TMacroName* name = FindMacroName(word);
  if (!name) {
    Fail(mcIllegalFunction);
    return nullptr;
  }
  if (std::holds_alternative<double>(name->data)) return std::make_unique<TMacroItem>(name->data);
  const bool two = std::holds_alternative<TMacroItem::TFunction2>(name->data);
  Wait(two ? TRule::FirstArgument : TRule::Function, name->data);
  return nullptr;
}

// What a factor ends

void TMacroCompiler::Wait(TRule rule, const TMacroItem::TData& function, TItem left) {
  waiting_.push_back({rule, function, std::move(left)});
}

/// Makes `item` the last operand of what waits for it.
TMacroCompiler::TItem TMacroCompiler::Combine(TItem item) {
  TWaiting waiting = std::move(waiting_.back());
  waiting_.pop_back();
  TItem result = waiting.left ? AddToTop(std::move(waiting.left), std::move(item))
                              : AddToTop(std::move(item), nullptr);
  SetMacroItem(*result, waiting.function);
  return result;
}

/// Joins a factor with all that it ends. Returns the whole expression, or null after an error and
/// if another factor follows.
TMacroCompiler::TItem TMacroCompiler::EndFactor(TItem item) {
  while (true) {
    item = EndFunctions(std::move(item));
    if (item) item = EndOperators(std::move(item));
    if (!item || waiting_.empty()) return item;
    if (!EndGroup()) return nullptr;
  }
}

TMacroCompiler::TItem TMacroCompiler::EndFunctions(TItem item) {
  while (Waits(TRule::Function) || Waits(TRule::SecondArgument)) item = Combine(std::move(item));
  if (!Waits(TRule::FirstArgument)) return item;
  if (ch_ == u';') {
    waiting_.back().rule = TRule::SecondArgument;
    waiting_.back().left = std::move(item);
  } else {
    Fail(mcMissingSeparator);
  }
  return nullptr;
}

TMacroCompiler::TItem TMacroCompiler::EndOperators(TItem item) {
  static constexpr std::pair<TRule, QStringView> kLevels[] = {
      {TRule::Power, u"^"}, {TRule::Product, u"*/"}, {TRule::Sum, u"+-"}};
  for (const auto& [rule, operators] : kLevels) {
    if (Waits(rule) || (rule == TRule::Sum && Waits(TRule::SumSign))) {
      item = Combine(std::move(item));
    }
    if (!Contains(operators, ch_)) continue;
    Wait(rule, Operator(ch_), std::move(item));
    NextCh();
    BeginSignedFactor();
    return nullptr;
  }
  return item;
}

/// Closes a bracket, whose kind need not match. A ";" stays: it opens the next argument.
bool TMacroCompiler::EndGroup() {
  if (!Contains(kClosers, ch_) && ch_ != u';') {
    Fail(mcMissingParenthesis);
    return false;
  }
  waiting_.pop_back();
  if (ch_ != u';') NextCh();
  return Ok();
}
