// How notifications travel: code setters with and without notify, the father chain that a
// notification climbs to its first subscriber, compound widgets passing their own notification
// on, menu items and dialogs calling back with their data, and callbacks that change the tree.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "DlgTestSupport.h"
#include "KEPDlgCheckButton.h"
#include "KEPDlgCombo.h"
#include "KEPDlgContextualMenu.h"
#include "KEPDlgDialog.h"
#include "KEPDlgLabel.h"
#include "KEPDlgPushButton.h"
#include "KEPDlgPushItem.h"
#include "KEPDlgSelectorList.h"
#include "KEPDlgSpinner.h"
#include "KEPRbaScalarSlider.h"
#include "KEPTestSupport.h"
#include "KEPVidLayGrid.h"
#include "KEPVidTree.h"

using dlgtest::Count;
using dlgtest::Inject;
using dlgtest::MakeRoot;
using dlgtest::Root;

namespace {

class DlgNotifications : public keptest::Fixture {};

// A notification of the module's kind: its own name, otherwise the base's kinds.
class SetOKNotification : public KEPNotification {
 public:
  const char* GetNotificationName() const override { return "TestSetOKNotif"; }
  bool IsAKindOf(const char* name) const override {
    return std::string_view(name) == "TestSetOKNotif" || KEPNotification::IsAKindOf(name);
  }

 protected:
  ~SetOKNotification() override = default;
};

TEST_F(DlgNotifications, CodeSettersNotifyOnlyWhenAskedAndTheStateChanges) {
  Root root = MakeRoot();
  auto* spinner = new KEPDlgSpinner(root.Get(), "spinner", 0x60000);
  spinner->SetMinMaxStep(0.0, 10.0, 1.0);
  auto* slider = new KEPRbaScalarSlider(root.Get(), "slider", 110, 16, 0xa0000);
  slider->SetRange(0.0, 10.0, 1.0);
  auto* check = new KEPDlgCheckButton(root.Get(), "check");
  auto* combo = new KEPDlgCombo(root.Get(), "combo");
  auto* list = new KEPDlgSelectorList(root.Get(), "list");
  const KEPUnicodeString lines[] = {KEPUnicodeString(u"a"), KEPUnicodeString(u"b")};
  combo->SetLine(lines, 2);
  list->SetLine(lines, 2);

  struct Case {
    const char* what;
    KEPDialog* sender;
    const char* kind;
    std::function<void(int notify)> toNewState;  // each call moves to a state not held before
    std::function<void(int notify)> toSameState;
  };
  double next = 1.0;
  int state = KEPDlgCheck;
  int line = 0;
  const Case cases[] = {
      {"spinner", spinner, "KEPDlgSpinnerModifyNotification",
       [&](int n) { spinner->SetValue(next++, n); },
       [&](int n) { spinner->SetValue(spinner->GetValue(), n); }},
      {"slider", slider, "KEPDlgSliderModifyNotification",
       [&](int n) { slider->SetValue(next++, n); },
       [&](int n) { slider->SetValue(slider->GetValue(), n); }},
      {"check", check, "KEPDlgCheckButtonModifyNotification",
       [&](int n) {
         check->SetState(state, n);
         state = state == KEPDlgCheck ? KEPDlgUncheck : KEPDlgCheck;
       },
       [&](int n) { check->SetState(check->GetState(), n); }},
      {"combo", combo, "KEPDlgComboSelectNotification",
       [&](int n) { combo->SetSelect(line++ % 2, n); },
       [&](int n) { combo->SetSelect(combo->GetSelect(), n); }},
      {"list", list, "KEPDlgListSelectNotification", [&](int n) { list->SetSelect(line++ % 2, n); },
       [&](int n) { list->SetSelect(list->GetSelect(), n); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    int count = 0;
    Count(root.Get(), c.sender, c.kind, &count);
    c.toNewState(0);
    EXPECT_EQ(count, 0) << "notify 0 is silent";
    c.toNewState(1);
    EXPECT_EQ(count, 1);
    c.toSameState(1);
    EXPECT_EQ(count, 1) << "a state set to what it holds notifies nothing";
  }
}

TEST_F(DlgNotifications, ANotificationStopsAtTheFirstAncestorThatSubscribed) {
  Root root = MakeRoot();
  auto* row = new KEPDlgFrame(root.Get(), "row");
  auto* spinner = new KEPDlgSpinner(row, "spinner");
  int atRoot = 0;
  int atRow = 0;
  KEPDlgClientData seen = 0;
  Count(root.Get(), spinner, "KEPDlgSpinnerModifyNotification", &atRoot, 7, &seen);
  spinner->SetValue(0.5, 1);
  EXPECT_EQ(atRoot, 1) << "a frame without callbacks lets it pass";
  EXPECT_EQ(seen, 7);

  Count(row, spinner, "KEPDlgSpinnerModifyNotification", &atRow);
  spinner->SetValue(0.25, 1);
  EXPECT_EQ(atRow, 1);
  EXPECT_EQ(atRoot, 1) << "the row handled it";

  // A subscription names its sender: another spinner's notification reaches neither.
  auto* other = new KEPDlgSpinner(row, "other");
  other->SetValue(0.5, 1);
  EXPECT_EQ(atRow + atRoot, 2);
}

TEST_F(DlgNotifications, KindsMatchByClassAndBaseAndAModuleKindCanBeSentToTheFather) {
  Root root = MakeRoot();
  auto* frame = new KEPDlgFrame(root.Get(), "parameterFrame");
  auto* spinner = new KEPDlgSpinner(frame, "spinner");
  int any = 0;
  int setOK = 0;
  int slider = 0;
  Count(frame, spinner, "KEPNotification", &any);
  Count(root.Get(), frame, "TestSetOKNotif", &setOK);
  Count(root.Get(), frame, "KEPDlgSliderModifyNotification", &slider);

  spinner->SetValue(1.0, 1);
  EXPECT_EQ(any, 1) << "every notification is a KEPNotification";

  KEP_var<KEPNotification> notification = KEP_var<KEPNotification>::Adopt(new SetOKNotification());
  EXPECT_TRUE(notification->IsAKindOf("KEPNotification"));
  EXPECT_FALSE(notification->IsAKindOf("KEPDlgSliderModifyNotification"));
  frame->SendNotificationToFather(notification.Get());
  EXPECT_EQ(setOK, 1);
  EXPECT_EQ(slider, 0);
  frame->SendNotification(nullptr, notification.Get());
  EXPECT_EQ(setOK, 1) << "nowhere to send";
}

// A compound widget hears its part and passes its own notification on, as a coupled slider and
// spinner do: the outer frame hears the compound, never the part.
TEST_F(DlgNotifications, ACompoundPassesItsOwnNotificationToItsFather) {
  Root root = MakeRoot();
  auto* compound = new KEPDlgFrame(root.Get(), "compound");
  auto* slider = new KEPRbaSlider(compound, "slider", 110, 16);
  KEP_var<KEPNotification> own =
      KEP_var<KEPNotification>::Adopt(new KEPDlgSliderDragNotification());
  compound->AddCallback(slider, slider->GetSliderDragNotification(),
                        [&](KEPDialog*, KEPNotification*, KEPDlgClientData) {
                          compound->SendNotificationToFather(own.Get());
                        });
  int fromCompound = 0;
  int fromPart = 0;
  std::vector<KEPDialog*> senders;
  root->AddCallback(compound, "KEPDlgSliderDragNotification",
                    [&](KEPDialog* sender, KEPNotification*, KEPDlgClientData) {
                      ++fromCompound;
                      senders.push_back(sender);
                    });
  Count(root.Get(), slider, "KEPDlgSliderDragNotification", &fromPart);
  ASSERT_EQ(Inject(slider, KEPVidAction::Drag, "0.5"), S_OK);
  EXPECT_EQ(fromCompound, 1);
  EXPECT_EQ(fromPart, 0) << "the compound handled its part's notification";
  ASSERT_EQ(senders.size(), 1u);
  EXPECT_EQ(senders[0], compound);
}

TEST_F(DlgNotifications, MenuItemsAndButtonsCallBackWithTheirRow) {
  Root root = MakeRoot();
  auto* frame = new KEPDlgFrame(root.Get(), "shaderFrame");
  std::vector<std::pair<std::string, KEPDlgClientData>> calls;
  KEPDialog* climbedTo = nullptr;
  auto connect = [&](KEPDialog* sender, KEPNotification*, KEPDlgClientData i) {
    calls.emplace_back("connect", i);
    // From a menu item the frame is found by climbing: item, menu, button, frame.
    for (KEPDialog* d = sender; d; d = d->GetFather())
      if (d->GetName() == "shaderFrame") climbedTo = d;
  };
  auto disconnect = [&](KEPDialog*, KEPNotification*, KEPDlgClientData i) {
    calls.emplace_back("disconnect", i);
  };
  for (int i = 1; i <= 3; ++i) {
    const std::string n = std::to_string(i);
    auto* button = new KEPDlgPushButton(frame, "parameterButton" + n, 0x80000);
    auto* menu = new KEPDlgContextualMenu(button, "connectionMenu" + n);
    auto* connectItem = new KEPDlgPushItem(menu, "connectItem");
    auto* disconnectItem = new KEPDlgPushItem(menu, "disconnectItem");
    frame->AddCallback(button, button->GetActivateNotification(), connect, i);
    frame->AddCallback(connectItem, connectItem->GetActivateNotification(), connect, i);
    frame->AddCallback(disconnectItem, "KEPDlgActivateNotification", disconnect, i);
  }
  std::string error;
  ASSERT_EQ(KEPVidInject(root.Get(), "connectionMenu2/connectItem", KEPVidAction::Press, "", error),
            S_OK)
      << error;
  ASSERT_EQ(
      KEPVidInject(root.Get(), "connectionMenu3/disconnectItem", KEPVidAction::Press, "", error),
      S_OK);
  ASSERT_EQ(KEPVidInject(root.Get(), "parameterButton1", KEPVidAction::Press, "", error), S_OK);
  const std::vector<std::pair<std::string, KEPDlgClientData>> expected = {
      {"connect", 2}, {"disconnect", 3}, {"connect", 1}};
  EXPECT_EQ(calls, expected);
  EXPECT_EQ(climbedTo, frame);
  EXPECT_EQ(KEPVidInject(root.Get(), "parameterButton1", KEPVidAction::Press, "twice", error),
            E_INVALIDARG)
      << "a press takes no argument";
}

TEST_F(DlgNotifications, ADialogsOkCancelAndCloseReachItsSubscribers) {
  Root root = MakeRoot();
  auto* dialog = new KEPDlgDialog(root.Get(), "connectionDialog", 0x2240200);
  EXPECT_EQ(dialog->GetVisibility(), KEPDlgHide) << "a dialog is made hidden";
  std::vector<std::string> heard;
  auto hear = [&heard](const char* what) {
    return [&heard, what](KEPDialog*, KEPNotification*, KEPDlgClientData) {
      heard.emplace_back(what);
    };
  };
  root->AddCallback(dialog, dialog->GetOKNotification(), hear("ok"));
  root->AddCallback(dialog, dialog->GetCancelNotification(), hear("cancel"));
  root->AddCallback(dialog, dialog->GetWindowCloseNotification(), hear("close"));

  std::string error;
  EXPECT_EQ(Inject(dialog, KEPVidAction::Ok, "", &error), E_INVALIDARG);
  EXPECT_NE(error.find("invisible"), std::string::npos) << error;
  dialog->SetVisibility(KEPDlgShow);
  EXPECT_EQ(Inject(dialog, KEPVidAction::Ok, ""), S_OK);
  dialog->SetOKSensitivity(KEPDlgDisable);
  EXPECT_EQ(Inject(dialog, KEPVidAction::Ok, "", &error), E_INVALIDARG);
  EXPECT_NE(error.find("OK button is insensitive"), std::string::npos) << error;
  EXPECT_EQ(Inject(dialog, KEPVidAction::Cancel, ""), S_OK) << "Cancel stays possible";
  EXPECT_EQ(Inject(dialog, KEPVidAction::Close, ""), S_OK);
  EXPECT_EQ(Inject(dialog, KEPVidAction::Press, ""), E_INVALIDARG);
  EXPECT_EQ(heard, (std::vector<std::string>{"ok", "cancel", "close"}));
  EXPECT_EQ(dialog->GetVisibility(), KEPDlgShow) << "the subscribers hide it, not the toolkit";
}

// A dialog that subscribes to its own OK and releases itself there (as a chooser that closes
// on OK): the notification and the sender stay alive until the dispatch ends.
TEST_F(DlgNotifications, ACallbackMayDestroyTheSenderAndRemoveCallbacks) {
  auto* dialog = new KEPDlgDialog(nullptr, "dialog");
  dialog->SetVisibility(KEPDlgShow);
  int later = 0;
  int second = 0;
  dialog->AddCallback(dialog, "KEPDlgDialogOKNotification",
                      [&](KEPDialog* sender, KEPNotification* n, KEPDlgClientData) {
                        sender->RemoveCallback(second);
                        sender->Release();
                        EXPECT_TRUE(n->IsAKindOf("KEPDlgDialogOKNotification"));
                      });
  second = Count(dialog, dialog, "KEPDlgDialogOKNotification", &later);
  EXPECT_EQ(Inject(dialog, KEPVidAction::Ok, ""), S_OK);
  EXPECT_EQ(later, 0) << "a callback removed during the dispatch is not called";
}

TEST_F(DlgNotifications, ASubscriptionToADeadWidgetNeverFiresForANewOne) {
  Root root = MakeRoot();
  int count = 0;
  for (int round = 0; round < 4; ++round) {
    auto* spinner = new KEPDlgSpinner(root.Get(), "spinner");
    if (round == 0) Count(root.Get(), spinner, "KEPDlgSpinnerModifyNotification", &count);
    spinner->SetValue(round * 0.25, 1);
    root->DeleteChildren();  // the next spinner may take the same address
  }
  EXPECT_EQ(count, 0) << "round 0 set the value it held; later spinners are other senders";
  EXPECT_EQ(root->GetCallbackCount(), 1u);
}

TEST_F(DlgNotifications, FatherChainVisibilityAndSensitivityUseTheToolkitsValues) {
  KEP_var<KEPVidWidget> grid = KEP_var<KEPVidWidget>::Adopt(new KEPVidLayGrid(nullptr, "grid"));
  auto* frame = new KEPDlgFrame(nullptr, "frame");
  frame->SetFather(grid.Get());
  auto* label = new KEPDlgLabel(frame, "sepLabel");
  EXPECT_EQ(label->GetFather(), frame);
  EXPECT_EQ(frame->GetFather(), nullptr) << "an immersive father is not a dialog";
  EXPECT_EQ(frame->KEPVidWidget::GetFather(), grid.Get());

  keptest::TraceCapture traces;
  label->SetVisibility(KEPDlgHide);
  EXPECT_FALSE(label->IsVisible());
  label->SetVisibility(3);
  EXPECT_EQ(label->GetVisibility(), KEPDlgHide) << "3 is not a visibility value";
  EXPECT_TRUE(traces.Contains("refused visibility = 3"));
  label->SetVisibility(KEPDlgShow);
  EXPECT_TRUE(label->IsVisible());

  label->SetSensitivity(KEPDlgDisable);
  EXPECT_EQ(label->IsSetSensitivity(), KEPDlgDisable);
  EXPECT_FALSE(label->IsSensitive());
  label->SetSensitivity(2);
  EXPECT_EQ(label->IsSetSensitivity(), KEPDlgDisable);
  label->SetSensitivity(KEPDlgEnable);
  EXPECT_TRUE(label->IsSensitive());
}

}  // namespace
