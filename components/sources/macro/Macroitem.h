#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <variant>

/// A node of a compiled expression: a constant, a variable, or a function of one or two operands.
/// Operators are functions too. A node owns its operands. Trees may be as deep as a text is long:
/// nothing here recurs. GUI thread only.
class TMacroItem {
 public:
  /// A variable's value-reading callback.
  using TReader = std::function<double()>;
  using TFunction1 = double (*)(double);
  using TFunction2 = double (*)(double, double);
  /// In the order of the item types. The reader is not owned and must outlive the node.
  using TData = std::variant<double, const TReader*, TFunction1, TFunction2>;

  enum TType : std::uint8_t { miConstant = 1, miVariable, miFunction1, miFunction2 };

  TMacroItem() = default;
  explicit TMacroItem(const TData& data) : data_(data) {}
  /// Destroys the left operand, then the right one.
  ~TMacroItem();
  TMacroItem(const TMacroItem&) = delete;
  TMacroItem& operator=(const TMacroItem&) = delete;

  TType GetType() const { return static_cast<TType>(data_.index() + 1); }
  const TData& Data() const { return data_; }
  void SetData(const TData& data) { data_ = data; }

  const TMacroItem* Parent() const { return parent_; }
  const TMacroItem* Left() const { return left_.get(); }
  const TMacroItem* Right() const { return right_.get(); }
  /// Hangs an operand below the node in place of the one there; null leaves none.
  void SetLeft(std::unique_ptr<TMacroItem> item) { Hang(left_, std::move(item)); }
  void SetRight(std::unique_ptr<TMacroItem> item) { Hang(right_, std::move(item)); }

  /// The value of the tree below the node: the left operand is evaluated before the right one. A
  /// function needs all its operands.
  double Evaluate() const;

  /// Calls `visit` with each node of the tree below and with the node itself: operands first, the
  /// left one before the right one.
  template <class TVisit>
  void Walk(TVisit visit) const {
    for (const TMacroItem* item = FirstLeaf(); item != this; item = item->Next()) visit(*item);
    visit(*this);
  }

 private:
  void Hang(std::unique_ptr<TMacroItem>& place, std::unique_ptr<TMacroItem> item);
  const TMacroItem* FirstLeaf() const;
  const TMacroItem* Next() const;

  TData data_ = 0.0;
  TMacroItem* parent_ = nullptr;  ///< not owned; null for a root
  std::unique_ptr<TMacroItem> left_;
  std::unique_ptr<TMacroItem> right_;
};
