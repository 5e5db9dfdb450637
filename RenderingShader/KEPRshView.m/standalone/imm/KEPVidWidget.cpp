#include "KEPVidWidget.h"

#include <algorithm>

#include "KEPTrace.h"
#include "KEPVidUserEvent.h"

KEP_IMPLEMENT_CLASS(KEPVidWidget, KEPBaseUnknown, "System")

namespace {
// The first widget named `name` exactly `depth` levels below `widget`; `reached` is set when any
// widget lies that deep, so that the search knows when the tree is exhausted.
KEPVidWidget* FindAtDepth(const KEPVidWidget* widget, std::string_view name, int depth,
                          bool& reached) {
  const std::size_t count = widget->GetChildCount();
  for (std::size_t i = 0; i < count; ++i) {
    KEPVidWidget* child = widget->GetChild(i);
    if (depth == 1) {
      reached = true;
      if (child->GetName() == name) return child;
    } else if (KEPVidWidget* found = FindAtDepth(child, name, depth - 1, reached)) {
      return found;
    }
  }
  return nullptr;
}

// Releases the father's references of `children`, newest first; a child that someone else still
// holds survives, detached.
void ReleaseChildren(std::vector<KEPVidWidget*>& children) {
  while (!children.empty()) {
    KEPVidWidget* child = children.back();
    children.pop_back();
    child->Release();
  }
}
}  // namespace

KEPVidWidget::KEPVidWidget(KEPVidWidget* father, const KEPString& name) : name_(name) {
  if (father) father->Adopt(this);
}

KEPVidWidget::~KEPVidWidget() {
  // A father holds a reference, so a widget that dies still attached was released once too
  // often; leave the father's list valid all the same.
  if (father_) father_->Forget(this);
  DeleteChildren();
}

void KEPVidWidget::Adopt(KEPVidWidget* child) {
  children_.push_back(child);
  child->father_ = this;
}

void KEPVidWidget::Forget(KEPVidWidget* child) {
  const auto it = std::find(children_.begin(), children_.end(), child);
  if (it != children_.end()) children_.erase(it);
  child->father_ = nullptr;
}

void KEPVidWidget::SetFather(KEPVidWidget* father) {
  if (father == father_) return;
  for (const KEPVidWidget* w = father; w; w = w->father_) {
    if (w == this) {
      // A widget under itself would keep its own subtree alive forever.
      KEPTrace("KEPVidWidget")
          .Warning("{ widget = %s, refused = a father inside its own subtree }", name_.c_str());
      return;
    }
  }
  // The owner reference moves with the widget: from the old father (or the creator) to the new
  // father (or, when detached, to the caller).
  if (father_) father_->Forget(this);
  if (father) father->Adopt(this);
}

KEPVidWidget* KEPVidWidget::FindNamedChild(std::string_view name) const {
  // Breadth first without a queue: one depth-limited walk per level, so nothing is allocated.
  for (int depth = 1;; ++depth) {
    bool reached = false;
    if (KEPVidWidget* found = FindAtDepth(this, name, depth, reached)) return found;
    if (!reached) return nullptr;
  }
}

void KEPVidWidget::DeleteChildren() {
  std::vector<KEPVidWidget*> children;
  children.swap(children_);
  for (KEPVidWidget* child : children) child->father_ = nullptr;
  ReleaseChildren(children);
}

int KEPVidWidget::AddHandler(KEPVidEvent event, KEPVidHandler handler) {
  if (!handler) return 0;
  const int token = nextToken_++;
  handlers_.push_back({token, event, std::move(handler)});
  return token;
}

void KEPVidWidget::RemoveHandler(int token) {
  // Tokens grow with each handler added, so the list stays sorted by token.
  const auto it = std::lower_bound(handlers_.begin(), handlers_.end(), token,
                                   [](const Handler& h, int t) { return h.token < t; });
  if (it != handlers_.end() && it->token == token) handlers_.erase(it);
}

void KEPVidWidget::Raise(KEPVidEvent event) {
  if (handlers_.empty()) return;
  // Handlers may remove handlers or add new ones while this runs: the walk goes by token, calls
  // only handlers that existed when it began and are still there, and calls a copy so that a
  // handler that removes itself is not destroyed while it runs. The widget holds itself alive
  // in case a handler releases the last reference of its owner (not while it is being
  // destroyed: a destructor that raises must not bring the count back to life).
  const bool hold = GetRefCount() > 0;
  if (hold) AddRef();
  const int last = nextToken_ - 1;
  int done = 0;
  for (;;) {
    auto it = std::upper_bound(handlers_.begin(), handlers_.end(), done,
                               [](int t, const Handler& h) { return t < h.token; });
    while (it != handlers_.end() && it->token <= last && it->event != event) ++it;
    if (it == handlers_.end() || it->token > last) break;
    done = it->token;
    const KEPVidHandler call = it->function;
    call(this, event);
  }
  if (hold) Release();
}

void KEPVidWidget::DescribeState(KEPVidStateWriter& /*writer*/) const {
  // The common state (name, look, cell, tooltip) is written by the serialiser.
}

HRESULT KEPVidWidget::InjectUserEvent(KEPVidAction action, std::string_view /*argument*/,
                                      std::string& error) {
  return KEPVidRefuseAction(this, action, error);
}
