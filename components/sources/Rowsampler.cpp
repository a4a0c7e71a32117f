#include "components/sources/Rowsampler.h"

#include "model/Datetime.h"

TRowSampler::TRowSampler(QObject* owner) : controls_(owner, &TDataControl::staticMetaObject) {
  controls_.OnBeforeChange = [this](QObject*, TListAction action, bool& allow) {
    allow = action != laAdded || controls_.Count() < kMaxControls;
  };
  connect(&controls_, &TPersistent::OnChange, this, &TRowSampler::FollowLast);
}

void TRowSampler::FollowLast() {
  row_.resize(static_cast<std::size_t>(controls_.Count()));
  auto* last = controls_.Empty() ? nullptr : controls_.Get<TDataControl>(controls_.Count() - 1);
  if (last == last_) return;
  if (last_) last_->DeleteLink(&link_);
  last_ = last;
  if (last) last->AddLink(&link_, false);
}

void TRowSampler::Sample() {
  for (std::size_t i = 0; i < row_.size(); ++i) {
    const auto* control = static_cast<const TDataControl*>(controls_.Get(static_cast<int>(i)));
    if (control) row_[i] = control->GetValue();
  }
  const double time = last_->GetTime() != 0.0 ? last_->GetTime() : TDateTime::Now().Days();
  if (OnRow) OnRow(time, row_);
}
