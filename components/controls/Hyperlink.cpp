#include "components/controls/Hyperlink.h"

#include <QDesktopServices>
#include <QDir>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QStyleOptionFocusRect>

#include "components/controls/Designmode.h"
#include "components/controls/Plaintip.h"
#include "components/controls/Textaccess.h"
#include "components/links/Outside.h"
#include "model/Message.h"
#include "model/Oneline.h"

namespace {

/// A link that is announced, and can be pressed.
class TLinkAccess : public TTextAccess {
 public:
  explicit TLinkAccess(THyperlink* link)
      : TTextAccess(link, QAccessible::Link, [link] { return link->Text(); }) {}

  QStringList actionNames() const override { return TTextAccess::actionNames() << pressAction(); }
  void doAction(const QString& name) override {
    if (name == pressAction() && widget()->isEnabled()) {
      static_cast<THyperlink*>(widget())->Click();
    } else {
      TTextAccess::doAction(name);
    }
  }
};

QAccessibleInterface* MakeAccess(const QString& className, QObject* object) {
  auto* link = qobject_cast<THyperlink*>(object);
  const bool mine = className == THyperlink::staticMetaObject.className();
  return mine && link ? new TLinkAccess(link) : nullptr;
}

}  // namespace

THyperlink::THyperlink(QWidget* parent) : TCustomTextControl(parent) {
  [[maybe_unused]] static const bool installed = (QAccessible::installFactory(MakeAccess), true);
  setCursor(Qt::PointingHandCursor);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
}

void THyperlink::SetURL(const QString& url) {
  if (url == url_) return;
  if (toolTip() == PlainTip(url_)) setToolTip(PlainTip(url));
  url_ = url;
  visited_ = false;
  TextChanged();
}

void THyperlink::SetUnderline(bool underline) {
  if (underline == underline_) return;
  underline_ = underline;
  update();
}

void THyperlink::SetHoverColor(TColor color) {
  if (color == hoverColor_) return;
  hoverColor_ = color;
  update();
}

void THyperlink::SetVisitedColor(TColor color) {
  if (color == visitedColor_) return;
  visitedColor_ = color;
  update();
}

QString THyperlink::Text() const { return GetCaption().isEmpty() ? url_ : GetCaption(); }

TColor THyperlink::TextColor() const {
  if (underMouse() && !hoverColor_.IsNone()) return hoverColor_;
  const auto orElse = [](TColor color, const QBrush& usual) {
    return color.IsNone() ? TColor::FromQColor(usual.color()) : color;
  };
  return visited_ ? orElse(visitedColor_, palette().linkVisited())
                  : orElse(GetFontColor(), palette().link());
}

QFont THyperlink::TextFont() const {
  QFont result = font();
  result.setUnderline(underline_ || underMouse());
  return result;
}

void THyperlink::Paint(QPainter& painter) {
  TCustomTextControl::Paint(painter);
  if (!hasFocus()) return;
  QStyleOptionFocusRect option;
  option.initFrom(this);
  style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

QUrl THyperlink::Target() const {
  return QUrl::fromUserInput(url_, QDir(FormPath(this, QStringLiteral("."))).absolutePath());
}

void THyperlink::AddWishes(TWishes& wishes) const {
  const QUrl target = url_.trimmed().isEmpty() ? QUrl() : Target();
  if (target.isLocalFile()) AddFollowWish(wishes, this, target.toLocalFile());
}

void THyperlink::Open() {
  const auto refuse = [this](const QString& why) {
    ShowMessage(QStringLiteral("Cannot open %1: %2").arg(ShownName(url_), why));
  };
  if (const QString why = RestRefusal(this); !why.isEmpty()) return refuse(why);
  const QUrl target = Target();
  if (url_.trimmed().isEmpty() || !target.isValid()) {
    return refuse(QStringLiteral("it is no address"));
  }
  static const QStringList schemes = {"http", "https", "mailto", "file"};
  if (!schemes.contains(target.scheme().toLower())) {
    return refuse(QStringLiteral("links to %1: are not followed").arg(target.scheme()));
  }
  if (const QString why = FollowRefusal(this, target.toLocalFile());
      target.isLocalFile() && !why.isEmpty()) {
    return refuse(why);
  }
  if (!QDesktopServices::openUrl(target)) {
    return refuse(QStringLiteral("the system has no program for it"));
  }
  visited_ = true;
  update();
}

void THyperlink::Click() {
  const QPointer<THyperlink> alive(this);
  emit OnClick(this);
  if (alive && !IsDesignMode(this)) Open();
}

bool THyperlink::event(QEvent* event) {
  const QEvent::Type type = event->type();
  if (type == QEvent::Enter || type == QEvent::Leave || type == QEvent::FocusIn ||
      type == QEvent::FocusOut) {
    update();
  }
  return TCustomTextControl::event(event);
}

/// Taken, so that the form below does not act on it.
void THyperlink::mousePressEvent(QMouseEvent* event) {
  event->setAccepted(event->button() == Qt::LeftButton);
}

void THyperlink::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) Click();
}

void THyperlink::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Select:
      if (!event->isAutoRepeat()) Click();
      return;
    default:
      TCustomTextControl::keyPressEvent(event);
  }
}
