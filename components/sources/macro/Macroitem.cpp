#include "components/sources/macro/Macroitem.h"

#include <utility>
#include <vector>

TMacroItem::~TMacroItem() {
  TMacroItem* item = this;
  while (true) {
    if (item->left_) {
      item = item->left_.get();
    } else if (item->right_) {
      item = item->right_.get();
    } else if (item == this) {
      return;
    } else {
      TMacroItem* const above = item->parent_;
      (above->left_ ? above->left_ : above->right_).reset();
      item = above;
    }
  }
}

void TMacroItem::Hang(std::unique_ptr<TMacroItem>& place, std::unique_ptr<TMacroItem> item) {
  place = std::move(item);
  if (place) place->parent_ = this;
}

const TMacroItem* TMacroItem::FirstLeaf() const {
  const TMacroItem* item = this;
  while (item->left_ || item->right_) item = (item->left_ ? item->left_ : item->right_).get();
  return item;
}

const TMacroItem* TMacroItem::Next() const {
  const bool wasLeft = parent_->left_.get() == this;
  return wasLeft && parent_->right_ ? parent_->right_->FirstLeaf() : parent_;
}

double TMacroItem::Evaluate() const {
  std::vector<double> values;
  Walk([&values](const TMacroItem& item) {
    switch (item.GetType()) {
      case miConstant:
        values.push_back(std::get<double>(item.data_));
        break;
      case miVariable:
        values.push_back((*std::get<const TReader*>(item.data_))());
        break;
      case miFunction1:
        values.back() = std::get<TFunction1>(item.data_)(values.back());
        break;
      case miFunction2: {
        const double right = values.back();
        values.pop_back();
        values.back() = std::get<TFunction2>(item.data_)(values.back(), right);
        break;
      }
    }
  });
  return values.back();
}
