// The widget tree: who owns a widget, when it dies, and how notifications reach handlers.
#include <gtest/gtest.h>

#include <vector>

#include "KEPRbaImageDocImmSelector.h"
#include "KEPTestSupport.h"
#include "KEPVidCtlButton.h"
#include "KEPVidCtlCheckBox.h"
#include "KEPVidCtlColorCompositePicker.h"
#include "KEPVidCtlDoubleSpinBox.h"
#include "KEPVidCtlEditor.h"
#include "KEPVidCtlExpander.h"
#include "KEPVidCtlImageCombo.h"
#include "KEPVidCtlPopup.h"
#include "KEPVidCtlSlider.h"
#include "KEPVidCtlSpinBox.h"
#include "KEPVidLayGrid.h"
#include "KEP_var.h"

namespace {

int gAlive = 0;

// A widget that counts the living ones of its kind.
class Probe : public KEPVidWidget {
 public:
  explicit Probe(KEPVidWidget* father = nullptr, const KEPString& name = KEPString())
      : KEPVidWidget(father, name) {
    ++gAlive;
  }

 protected:
  ~Probe() override { --gAlive; }
};

using Root = KEP_var<KEPVidWidget>;
Root MakeRoot(const char* name = "root") {
  return Root::Adopt(new KEPVidLayGrid(nullptr, name));
}

class ImmTree : public keptest::Fixture {
 protected:
  void SetUp() override {
    keptest::Fixture::SetUp();
    gAlive = 0;
  }
  void TearDown() override {
    EXPECT_EQ(gAlive, 0) << "a widget outlived its owners";
    keptest::Fixture::TearDown();
  }
};

// --- Ownership and lifetime

TEST_F(ImmTree, ChildrenDieWithTheirFatherUnlessHeldElsewhere) {
  Root root = MakeRoot();
  auto* a = new Probe(root.Get(), "a");
  new Probe(a, "a1");
  auto* held = new Probe(a, "held");
  new Probe(root.Get(), "b");
  EXPECT_EQ(gAlive, 4);
  EXPECT_EQ(a->GetRefCount(), 1u) << "the father holds the creation reference";
  held->AddRef();

  root = NULL_var;
  EXPECT_EQ(gAlive, 1) << "only the child that someone still holds survives";
  EXPECT_EQ(held->GetFather(), nullptr) << "the survivor is detached";
  EXPECT_EQ(held->GetRefCount(), 1u);
  held->Release();
}

TEST_F(ImmTree, SetFatherHandsTheOwnerReferenceOver) {
  Root first = MakeRoot("first");
  Root second = MakeRoot("second");

  // A free widget belongs to its creator until a father takes it.
  auto* free = new Probe(nullptr, "free");
  free->SetFather(first.Get());
  EXPECT_EQ(free->GetRefCount(), 1u);
  ASSERT_EQ(first->GetChildCount(), 1u);

  // Moving it keeps its one reference; the old father forgets it.
  free->SetFather(second.Get());
  EXPECT_EQ(free->GetRefCount(), 1u);
  EXPECT_EQ(first->GetChildCount(), 0u);
  EXPECT_EQ(second->GetChild(0), free);
  EXPECT_EQ(free->GetFather(), second.Get());
  first = NULL_var;
  EXPECT_EQ(gAlive, 1);

  // Detaching gives the reference to the caller.
  free->SetFather(nullptr);
  EXPECT_EQ(second->GetChildCount(), 0u);
  second = NULL_var;
  EXPECT_EQ(gAlive, 1);
  free->Release();
  EXPECT_EQ(gAlive, 0);
}

TEST_F(ImmTree, AWidgetCannotMoveIntoItsOwnSubtree) {
  Root root = MakeRoot();
  auto* a = new Probe(root.Get(), "a");
  auto* b = new Probe(a, "b");
  a->SetFather(b);
  EXPECT_EQ(a->GetFather(), root.Get());
  a->SetFather(a);
  EXPECT_EQ(a->GetFather(), root.Get());
  EXPECT_EQ(b->GetFather(), a);
}

TEST_F(ImmTree, DeleteChildrenReleasesEveryChildAndDetachesSurvivors) {
  Root root = MakeRoot();
  new Probe(root.Get(), "a");
  auto* held = new Probe(root.Get(), "held");
  new Probe(held, "grandchild");
  held->AddRef();
  root->DeleteChildren();
  EXPECT_EQ(root->GetChildCount(), 0u);
  EXPECT_EQ(gAlive, 2) << "the held child and its own child live on";
  EXPECT_EQ(held->GetFather(), nullptr);
  held->Release();
  EXPECT_EQ(gAlive, 0);
}

TEST_F(ImmTree, FindNamedChildIsBreadthFirst) {
  Root root = MakeRoot();
  auto* deep = new Probe(root.Get(), "first");
  auto* deeper = new Probe(deep, "inner");
  new Probe(deeper, "target");  // depth 3
  auto* second = new Probe(root.Get(), "second");
  auto* shallow = new Probe(second, "target");  // depth 2: found first
  EXPECT_EQ(root->FindNamedChild("target"), shallow);
  EXPECT_EQ(root->FindNamedChild("inner"), deeper);
  EXPECT_EQ(root->FindNamedChild("missing"), nullptr);
  EXPECT_EQ(root->FindNamedChild("root"), nullptr) << "the widget itself is not its descendant";
}

// --- Notifications

TEST_F(ImmTree, HandlersRunInOrderForTheirEventOnly) {
  Root root = MakeRoot();
  auto* slider = new KEPVidCtlSlider(root.Get(), "s");
  std::vector<int> calls;
  slider->AddHandler(KEPVidEvent::ValueChanged, [&](KEPVidWidget* sender, KEPVidEvent event) {
    EXPECT_EQ(sender, slider);
    EXPECT_EQ(event, KEPVidEvent::ValueChanged);
    calls.push_back(1);
  });
  slider->AddHandler(KEPVidEvent::Pressed, [&](KEPVidWidget*, KEPVidEvent) { calls.push_back(9); });
  slider->AddHandler(KEPVidEvent::ValueChanged,
                     [&](KEPVidWidget*, KEPVidEvent) { calls.push_back(2); });
  EXPECT_EQ(slider->AddHandler(KEPVidEvent::ValueChanged, KEPVidHandler()), 0);
  slider->SetValue(5);
  EXPECT_EQ(calls, (std::vector<int>{1, 2}));
}

TEST_F(ImmTree, HandlersMayRemoveAndAddHandlersWhileRaised) {
  Root root = MakeRoot();
  auto* button = new KEPVidCtlButton(root.Get(), "b");
  std::vector<int> calls;
  int second = 0;
  int self = 0;
  self = button->AddHandler(KEPVidEvent::Pressed, [&](KEPVidWidget* w, KEPVidEvent) {
    calls.push_back(1);
    w->RemoveHandler(self);    // itself, while it runs
    w->RemoveHandler(second);  // a later one: not called any more
    w->AddHandler(KEPVidEvent::Pressed, [&](KEPVidWidget*, KEPVidEvent) { calls.push_back(4); });
  });
  second = button->AddHandler(KEPVidEvent::Pressed,
                              [&](KEPVidWidget*, KEPVidEvent) { calls.push_back(2); });
  button->AddHandler(KEPVidEvent::Pressed, [&](KEPVidWidget*, KEPVidEvent) { calls.push_back(3); });
  button->Press();
  EXPECT_EQ(calls, (std::vector<int>{1, 3})) << "added during the raise: from the next one on";
  calls.clear();
  button->Press();
  EXPECT_EQ(calls, (std::vector<int>{3, 4}));
  button->RemoveHandler(12345);  // unknown tokens are ignored
}

TEST_F(ImmTree, AHandlerMayDestroyOtherWidgetsAndEvenItsOwnOwner) {
  Root root = MakeRoot();
  auto* row = new Probe(root.Get(), "row");
  auto* check = new KEPVidCtlCheckBox(row, "check");
  new Probe(row, "sibling");
  int after = 0;
  check->AddHandler(KEPVidEvent::Toggled, [&](KEPVidWidget*, KEPVidEvent) {
    root->DeleteChildren();  // the row, the sibling and the sender's owner go
    EXPECT_EQ(gAlive, 0);
  });
  check->AddHandler(KEPVidEvent::Toggled, [&](KEPVidWidget* sender, KEPVidEvent) {
    ++after;  // the sender stays valid until the raise ends
    EXPECT_EQ(sender->GetFather(), nullptr);
  });
  check->SetChecked(true);
  EXPECT_EQ(after, 1);
  EXPECT_EQ(root->GetChildCount(), 0u);
}

// Every control: a change raises its event once, by code; setting the same state raises nothing.
struct ChangeCase {
  const char* name;
  KEPVidEvent event;
  KEPVidWidget* (*make)(KEPVidWidget* father);
  void (*change)(KEPVidWidget* widget);
};

template <class T>
T* As(KEPVidWidget* w) {
  return static_cast<T*>(w);
}

const ChangeCase kChanges[] = {
    {"slider", KEPVidEvent::ValueChanged,
     [](KEPVidWidget* f) -> KEPVidWidget* { return new KEPVidCtlSlider(f, "w"); },
     [](KEPVidWidget* w) { As<KEPVidCtlSlider>(w)->SetValue(7); }},
    {"slider range", KEPVidEvent::ValueChanged,
     [](KEPVidWidget* f) -> KEPVidWidget* {
       auto* s = new KEPVidCtlSlider(f, "w");
       s->SetValue(50);
       return s;
     },
     [](KEPVidWidget* w) { As<KEPVidCtlSlider>(w)->SetRange(0, 10); }},
    {"spin box", KEPVidEvent::ValueChanged,
     [](KEPVidWidget* f) -> KEPVidWidget* { return new KEPVidCtlSpinBox(f, "w"); },
     [](KEPVidWidget* w) { As<KEPVidCtlSpinBox>(w)->SetValue(3); }},
    {"double spin box", KEPVidEvent::ValueChanged,
     [](KEPVidWidget* f) -> KEPVidWidget* { return new KEPVidCtlDoubleSpinBox(f, "w"); },
     [](KEPVidWidget* w) { As<KEPVidCtlDoubleSpinBox>(w)->SetValue(0.25); }},
    {"editor value", KEPVidEvent::EditModify,
     [](KEPVidWidget* f) -> KEPVidWidget* { return new KEPVidCtlEditor(f, "w"); },
     [](KEPVidWidget* w) { As<KEPVidCtlEditor>(w)->SetValue(2.5); }},
    {"editor text", KEPVidEvent::EditModify,
     [](KEPVidWidget* f) -> KEPVidWidget* { return new KEPVidCtlEditor(f, "w"); },
     [](KEPVidWidget* w) { As<KEPVidCtlEditor>(w)->SetText(u"hello"); }},
    {"check box", KEPVidEvent::Toggled,
     [](KEPVidWidget* f) -> KEPVidWidget* { return new KEPVidCtlCheckBox(f, "w"); },
     [](KEPVidWidget* w) { As<KEPVidCtlCheckBox>(w)->SetChecked(true); }},
    {"combo", KEPVidEvent::Selected,
     [](KEPVidWidget* f) -> KEPVidWidget* {
       auto* c = new KEPVidCtlImageCombo(f, "w");
       c->AddItem(u"a");
       c->AddItem(u"b");
       return c;
     },
     [](KEPVidWidget* w) { As<KEPVidCtlImageCombo>(w)->SetSelect(1); }},
    {"combo cleared", KEPVidEvent::Selected,
     [](KEPVidWidget* f) -> KEPVidWidget* {
       auto* c = new KEPVidCtlImageCombo(f, "w");
       c->AddItem(u"a");
       c->SetSelect(0);
       return c;
     },
     [](KEPVidWidget* w) { As<KEPVidCtlImageCombo>(w)->ClearItems(); }},
    {"colour picker", KEPVidEvent::ColorChanged,
     [](KEPVidWidget* f) -> KEPVidWidget* { return new KEPVidCtlColorCompositePicker(f, "w"); },
     [](KEPVidWidget* w) {
       As<KEPVidCtlColorCompositePicker>(w)->SetColor({1, 2, 3, 255});
     }},
    {"expander open", KEPVidEvent::Expanded,
     [](KEPVidWidget* f) -> KEPVidWidget* { return new KEPVidCtlExpander(f, "w"); },
     [](KEPVidWidget* w) { As<KEPVidCtlExpander>(w)->SetExpanded(true); }},
    {"expander close", KEPVidEvent::Collapsed,
     [](KEPVidWidget* f) -> KEPVidWidget* {
       auto* e = new KEPVidCtlExpander(f, "w");
       e->SetExpanded(true);
       return e;
     },
     [](KEPVidWidget* w) { As<KEPVidCtlExpander>(w)->SetExpanded(false); }},
    {"popup open", KEPVidEvent::PopupOpened,
     [](KEPVidWidget* f) -> KEPVidWidget* { return new KEPVidCtlPopup(f, "w"); },
     [](KEPVidWidget* w) { As<KEPVidCtlPopup>(w)->Open(); }},
    {"popup close", KEPVidEvent::PopupClosed,
     [](KEPVidWidget* f) -> KEPVidWidget* {
       auto* p = new KEPVidCtlPopup(f, "w");
       p->Open();
       return p;
     },
     [](KEPVidWidget* w) { As<KEPVidCtlPopup>(w)->Close(); }},
    {"selector image", KEPVidEvent::EditModify,
     [](KEPVidWidget* f) -> KEPVidWidget* { return new KEPRbaImageDocImmSelector(f, "w", 0, 4); },
     [](KEPVidWidget* w) { As<KEPRbaImageDocImmSelector>(w)->SetImage("wood.png"); }},
    {"selector groups", KEPVidEvent::EditModify,
     [](KEPVidWidget* f) -> KEPVidWidget* { return new KEPRbaImageDocImmSelector(f, "w"); },
     [](KEPVidWidget* w) {
       As<KEPRbaImageDocImmSelector>(w)->SetLayerGroups({"a", "b"});
     }},
    {"selector dpi", KEPVidEvent::EditModify,
     [](KEPVidWidget* f) -> KEPVidWidget* { return new KEPRbaImageDocImmSelector(f, "w"); },
     [](KEPVidWidget* w) { As<KEPRbaImageDocImmSelector>(w)->SetResolution(300.0); }},
};

TEST_F(ImmTree, EveryChangeByCodeRaisesOnceAndTheSameStateRaisesNothing) {
  for (const ChangeCase& c : kChanges) {
    SCOPED_TRACE(c.name);
    Root root = MakeRoot();
    KEPVidWidget* widget = c.make(root.Get());
    int raised = 0;
    int others = 0;
    widget->AddHandler(c.event, [&](KEPVidWidget*, KEPVidEvent) { ++raised; });
    for (int e = 0; e <= static_cast<int>(KEPVidEvent::PopupClosed); ++e) {
      if (static_cast<KEPVidEvent>(e) != c.event)
        widget->AddHandler(static_cast<KEPVidEvent>(e),
                           [&](KEPVidWidget*, KEPVidEvent) { ++others; });
    }
    c.change(widget);
    EXPECT_EQ(raised, 1);
    c.change(widget);
    EXPECT_EQ(raised, 1) << "the state it already has";
    EXPECT_EQ(others, 0);
  }
}

}  // namespace
