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
  const int count = controls_.Count();
  auto* last = count == 0 ? nullptr : controls_.Get<TDataControl>(count - 1);
  if (last == last_) return;
  last_ = last;
  // A link leaves its control when it goes, even a control in its destruction.
  link_.reset();
  if (!last) return;
  link_ = std::make_unique<TValueLink>([this](double) { Sample(); });
  last->AddLink(link_.get(), false);
}

void TRowSampler::Sample() {
  for (std::size_t i = 0; i < row_.size(); ++i) {
    const auto* control = static_cast<const TDataControl*>(controls_.Get(static_cast<int>(i)));
    if (control) row_[i] = control->GetValue();
  }
  const auto* last = static_cast<const TDataControl*>(controls_.Get(controls_.Count() - 1));
  const TDateTime time(last->GetTime());
  const bool hasTime = time.Days() != 0.0 && time.Clock().date.isValid();
  if (OnRow) OnRow(hasTime ? time.Days() : TDateTime::Now().Days(), row_);
}
