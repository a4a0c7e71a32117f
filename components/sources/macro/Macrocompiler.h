#pragma once

#include <QHash>
#include <QPointer>
#include <QString>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "components/links/Complist.h"
#include "components/sources/macro/Macroitem.h"

/// Whether `c` occurs in `set`.
bool Contains(QStringView set, QChar c);

/// Compiles a text of the macro language into a tree. By descending precedence: brackets, functions
/// and a sign before a factor; "^" from left to right; "*" and "/"; a sign before a whole sum; "+"
/// and "-". The compiler works on a stack of its own, so no text is too deep, and takes time in
/// proportion to the text. It may be used again and again. GUI thread only.
class TMacroCompiler {
 public:
  enum TErrorCode : std::uint8_t {
    mcOk,
    mcIllegalCharacter,
    mcIncorrectSyntax,
    mcMissingParenthesis,
    mcIncorrectFormat,  ///< reserved: nothing in the grammar raises it
    mcIllegalFunction,
    mcMissingSeparator,
    mcIncorrectVariable,
  };

  /// Where names between brackets are looked up. Not owned, may go first. A list whose base class
  /// is not just TVariable, and null, leave the compiler without variables.
  void SetVariables(const TKorvalCompList* variables);
  const TKorvalCompList* GetVariables() const { return variables_; }

  /// The tree of a text, or null after an error and for an empty text. It reads the variables
  /// through their own callbacks: it must not be evaluated after one of them is gone.
  std::unique_ptr<TMacroItem> Compile(const QString& text);

  bool Ok() const { return error_ == mcOk; }
  TErrorCode ErrorCode() const { return error_; }
  QString ErrorMessage() const { return ErrorMessage(error_); }
  /// "No errors" for a code that there is not.
  static QString ErrorMessage(int code);
  /// Where the compiler stood when it met the error, counted from 1: at the character that it could
  /// not take or behind the name that it did not know; for an illegal function one before that. 0
  /// if there is none.
  int Position() const { return position_; }

  /// Begins a text anew: forgets the error and reads the first character.
  void Initialize(const QString& text);
  /// The value-reading callback of the first variable with this name, which comes in brackets; null
  /// if there is none. Names are those of the first look-up since Initialize.
  const TMacroItem::TReader* DefineVariable(const QString& name);

  /// Makes a node above two operands.
  static std::unique_ptr<TMacroItem> AddToTop(std::unique_ptr<TMacroItem> left,
                                              std::unique_ptr<TMacroItem> right);
  /// Makes a node that is the left or the right operand of `item`.
  static TMacroItem& AddToLeft(TMacroItem& item);
  static TMacroItem& AddToRight(TMacroItem& item);
  /// The item type follows from the data.
  static void SetMacroItem(TMacroItem& item, const TMacroItem::TData& data) { item.SetData(data); }

 private:
  using TItem = std::unique_ptr<TMacroItem>;

  /// What waits for a factor.
  enum class TRule : std::uint8_t {
    Group,           ///< an opened bracket
    Sum,             ///< "+" or "-" behind its left operand
    SumSign,         ///< the "-" before a whole sum: takes the first product
    Product,         ///< "*" or "/" behind its left operand
    Power,           ///< "^" behind its left operand
    Function,        ///< the sign of a factor, or a function of one argument
    FirstArgument,   ///< of a function of two
    SecondArgument,  ///< behind the first one
  };
  struct TWaiting {
    TRule rule;
    TMacroItem::TData function;
    TItem left;
  };

  void NextCh();
  void Fail(TErrorCode error) { error_ = error; }
  void FinalErrorCheck();

  TItem Expression();
  void BeginExpression();
  void BeginSignedFactor();
  TItem BeginFactor();
  TItem EndFactor(TItem item);
  TItem EndFunctions(TItem item);
  TItem EndOperators(TItem item);
  bool EndGroup();
  TItem Number();
  TItem Variable();
  TItem Name();

  bool Waits(TRule rule) const { return !waiting_.empty() && waiting_.back().rule == rule; }
  void Wait(TRule rule, const TMacroItem::TData& function = {}, TItem left = {});
  TItem Combine(TItem item);

  QPointer<const TKorvalCompList> variables_;
  QHash<QString, const TMacroItem::TReader*> readers_;  ///< by name; see DefineVariable
  QString text_;
  QChar ch_;
  int position_ = 0;
  TErrorCode error_ = mcOk;
  std::vector<TWaiting> waiting_;
  std::string number_;  ///< room for the characters of one
};
