#include "KEPDialog.h"

#include <algorithm>
#include <atomic>

#include "KEPNotification.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPDialog, KEPVidWidget, "System")

namespace {
std::uint64_t NextSerial() {
  static std::atomic<std::uint64_t> next{1};
  return next++;
}

// Holds a reference for the length of a dispatch, unless the object is being destroyed (a
// destructor that notifies must not bring the count back to life).
class Hold {
 public:
  explicit Hold(KEPBaseUnknown* object)
      : object_(object && object->GetRefCount() > 0 ? object : nullptr) {
    if (object_) object_->AddRef();
  }
  ~Hold() {
    if (object_) object_->Release();
  }
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;

 private:
  KEPBaseUnknown* object_;
};
}  // namespace

KEPDialog::KEPDialog(KEPDialog* father, const KEPString& name, int style)
    : KEPVidWidget(father, name), serial_(NextSerial()), style_(style) {}

KEPDialog::~KEPDialog() = default;

KEPDialog* KEPDialog::GetFather() const {
  return dynamic_cast<KEPDialog*>(KEPVidWidget::GetFather());
}

void KEPDialog::SetVisibility(int visibility) {
  if (visibility != KEPDlgShow && visibility != KEPDlgHide) {
    KEPTrace("KEPDialog")
        .Warning("{ widget = %s, refused visibility = %d }", GetName().c_str(), visibility);
    return;
  }
  KEPVidWidget::SetVisibility(visibility == KEPDlgShow);
}

void KEPDialog::SetSensitivity(int sensitivity) {
  if (sensitivity != KEPDlgEnable && sensitivity != KEPDlgDisable) {
    KEPTrace("KEPDialog")
        .Warning("{ widget = %s, refused sensitivity = %d }", GetName().c_str(), sensitivity);
    return;
  }
  KEPVidWidget::SetSensitivity(sensitivity == KEPDlgEnable);
}

void KEPDialog::SetGridConstraints(int row, int column, int rowSpan, int columnSpan,
                                   int attachment) {
  attachment_ = attachment;
  KEPVidGridCell cell;
  cell.row = row;
  cell.column = column;
  cell.rowSpan = std::max(rowSpan, 1);
  cell.columnSpan = std::max(columnSpan, 1);
  cell.attach = ((attachment & KEPDlgGridLeft) ? KEPVidAttach_Left : 0) |
                ((attachment & KEPDlgGridRight) ? KEPVidAttach_Right : 0) |
                ((attachment & KEPDlgGridTop) ? KEPVidAttach_Top : 0) |
                ((attachment & KEPDlgGridBottom) ? KEPVidAttach_Bottom : 0);
  SetGridCell(cell);
}

void KEPDialog::Attach4Sides(KEPDialog* child) {
  if (!child) return;
  const KEPVidGridCell& cell = child->GetGridCell();
  child->SetGridConstraints(cell.row, cell.column, cell.rowSpan, cell.columnSpan,
                            child->GetGridAttachment() | KEPDlgGridAll);
}

int KEPDialog::AddCallback(KEPDialog* sender, std::string_view kind, KEPDlgCallback callback,
                           KEPDlgClientData data) {
  if (!sender || kind.empty() || !callback) return 0;
  const int token = nextToken_++;
  callbacks_.push_back({token, sender->serial_, std::string(kind), std::move(callback), data});
  return token;
}

int KEPDialog::AddCallback(KEPDialog* sender, const KEPNotification* kind, KEPDlgCallback callback,
                           KEPDlgClientData data) {
  if (!kind) return 0;
  return AddCallback(sender, std::string_view(kind->GetNotificationName()), std::move(callback),
                     data);
}

void KEPDialog::RemoveCallback(int token) {
  // Tokens grow with each callback added, so the table stays sorted by token.
  const auto it = std::lower_bound(callbacks_.begin(), callbacks_.end(), token,
                                   [](const Callback& c, int t) { return c.token < t; });
  if (it != callbacks_.end() && it->token == token) callbacks_.erase(it);
}

void KEPDialog::RemoveCallbacksOf(const KEPDialog* sender) {
  if (!sender) return;
  std::erase_if(callbacks_, [sender](const Callback& c) { return c.sender == sender->serial_; });
}

void KEPDialog::Notify(KEPNotification* notification) {
  SendNotification(this, notification);
}

void KEPDialog::SendNotification(KEPDialog* to, KEPNotification* notification) {
  if (!to || !notification) return;
  // The notification belongs to its sender, which a callback may destroy: keep both alive.
  const Hold holdNotification(notification);
  const Hold holdSender(this);
  const std::uint64_t sender = serial_;
  for (KEPDialog* widget = to; widget; widget = widget->GetFather()) {
    if (widget->Dispatch(sender, this, notification)) return;
  }
}

bool KEPDialog::Dispatch(std::uint64_t sender, KEPDialog* senderWidget,
                         KEPNotification* notification) {
  std::vector<int> tokens;
  for (const Callback& c : callbacks_)
    if (c.sender == sender && notification->IsAKindOf(c.kind.c_str())) tokens.push_back(c.token);
  if (tokens.empty()) return false;
  // Callbacks may remove callbacks, add new ones (not called this time) or destroy widgets: each
  // one is looked up again before it runs, and a copy runs so that it may remove itself.
  const Hold holdThis(this);
  for (const int token : tokens) {
    const auto it = std::lower_bound(callbacks_.begin(), callbacks_.end(), token,
                                     [](const Callback& c, int t) { return c.token < t; });
    if (it == callbacks_.end() || it->token != token) continue;
    const KEPDlgCallback call = it->function;
    const KEPDlgClientData data = it->data;
    call(senderWidget, notification, data);
  }
  return true;
}

void KEPDialog::DescribeState(KEPVidStateWriter& writer) const {
  KEPVidWidget::DescribeState(writer);
  writer.Int("style", style_);
  writer.Text("title", title_.ToUTF8());
  if (!help_.IsEmpty()) writer.Text("help", help_.ToUTF8());
  if (!longHelp_.IsEmpty()) writer.Text("longHelp", longHelp_.ToUTF8());
  if (attachment_ != 0) writer.Int("attachment", attachment_);
}
