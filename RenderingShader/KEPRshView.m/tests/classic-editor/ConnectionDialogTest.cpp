// The connection dialog: its lines (new types first, then the nodes other parameters use), what
// it never offers, OK sensitivity, the title, what OK, Cancel and the close box do, and the
// classic frame that opens it from a row's button or menu item.
#include <functional>
#include <random>

#include "ClassicTestSupport.h"
#include "KEPConnectionFixture.h"
#include "KEPDlgCombo.h"
#include "KEPDlgLineList.h"
#include "KEPDlgPushButton.h"
#include "KEPDlgSelectorList.h"
#include "KEPHostShaderDocument.h"
#include "KEPIRshSubShaders.h"
#include "KEPMsgCatalog.h"
#include "KEPRshConnectionDialog.h"
#include "KEPRshConnectionDoneNotification.h"
#include "KEPRshModelEvents.h"
#include "KEPRshShaderTree.h"

namespace keptest {
namespace {

std::vector<std::string> Lines(const KEPDlgLineList* list) {
  std::vector<std::string> lines;
  for (int i = 0; i < list->GetLineCount(); ++i) lines.push_back(list->GetLine(i).ToUTF8());
  return lines;
}

class ConnectionDialogTest : public ClassicTest {
 protected:
  void SetUp() override {
    ClassicTest::SetUp();
    d_ = BuildConnectionDocument(TheWorld());
  }
  /// A dialog for `parameter` of `node` under the parent frame (which owns it).
  KEPRshConnectionDialog* Open(
      KEPHostShaderNode* node, const std::string& parameter,
      KEPRshConnectionDialog::Chooser chooser = KEPRshConnectionDialog::Chooser::Selector) {
    return new KEPRshConnectionDialog(Parent(), "connectionDialog", 0, TheWorld().Document(),
                                      TheWorld().Param(node, parameter), chooser);
  }
  /// Counts the done notifications that reach the parent frame, and whether they said OK.
  void Listen(KEPRshConnectionDialog* dialog) {
    Parent()->AddCallback(dialog, dialog->GetDoneNotification(),
                          [this](KEPDialog*, KEPNotification* n, KEPDlgClientData) {
                            const auto* done = dynamic_cast<KEPRshConnectionDoneNotification*>(n);
                            done_.push_back(done && done->IsConfirmed());
                          });
  }
  KEP_var<KEPIRshShader> ConnectedTo(KEPHostShaderNode* node, const std::string& parameter) {
    KEP_var<KEPIRshShader> connected;
    TheWorld().Param(node, parameter)->GetConnectedShader(*connected.Out());
    return connected;
  }
  static HRESULT Inject(KEPVidWidget* widget, KEPVidAction action, std::string_view argument = {}) {
    std::string error;
    return widget->InjectUserEvent(action, argument, error);
  }
  ConnectionDocument d_;
  std::vector<bool> done_;
};

TEST_F(ConnectionDialogTest, LinesAreNewTypesThenNodesOthersUseNeverOnesThatCloseACycle) {
  struct Case {
    KEPHostShaderNode* ConnectionDocument::*node;
    const char* parameter;
    std::vector<std::string> lines;
    std::function<void(World&, ConnectionDocument&)> arrange = nullptr;
  };
  const Case cases[] = {
      // Mixed only serves the edited parameter; Inner and Outer reach it; Lonely serves nothing.
      {&ConnectionDocument::glass,
       "tint",
       {"Colour map (new)", "Texture (new)", "Tiles (Metal:tint)",
        "Noise (Glass:other, Metal:other)"}},
      // Seen from Metal, Tiles serves only the edited parameter; the chain from Outer does not
      // reach back to Metal, so its nodes may be shared.
      {&ConnectionDocument::metal,
       "tint",
       {"Colour map (new)", "Texture (new)", "Outer (Metal:extra)", "Inner (Outer:input)",
        "Mixed (Glass:tint)", "Noise (Glass:other, Metal:other)"}},
      // The edited parameter is left out of the users of a node it also uses.
      {&ConnectionDocument::glass,
       "other",
       {"Colour map (new)", "Texture (new)", "Mixed (Glass:tint)", "Tiles (Metal:tint)",
        "Noise (Metal:other)"}},
      // A slot takes nodes answering vectors.
      {&ConnectionDocument::glass, "slot", {"Bump (new)", "Bumps (Metal:slot)"}},
      // Inner's input: Glass reaches it through nothing, but Outer does (it is connected to Inner).
      {&ConnectionDocument::inner,
       "input",
       {"Colour map (new)", "Texture (new)", "Mixed (Glass:tint)", "Tiles (Metal:tint)",
        "Noise (Glass:other, Metal:other)"}},
      // A node whose output is empty fits any parameter, a slot as well as a colour (last: it
      // adds a node to the document).
      {&ConnectionDocument::glass,
       "slot",
       {"Bump (new)", "Bumps (Metal:slot)", "Wild (Metal:amount)"},
       [](World& w, ConnectionDocument& d) {
         w.Add(Type("any_map").Output("").Param("gain", Scalar(1)));
         KEPHostShaderNode* wild = w.Node("any_map", "Wild");
         wild->SetAlias(KEPUnicodeString::FromUTF8("Wild"));
         EXPECT_EQ(w.Param(d.metal, "amount")->SetConnectedShader(wild), S_OK);
       }},
  };
  for (const Case& c : cases) {
    if (c.arrange) c.arrange(TheWorld(), d_);
    KEPRshConnectionDialog* dialog = Open(d_.*c.node, c.parameter);
    ASSERT_NE(dialog->GetChooser(), nullptr);
    EXPECT_EQ(dialog->GetChooser()->GetName(), "shaderSelector");
    EXPECT_EQ(dialog->GetChooser()->GetVisibleTextWidth(), 20);
    EXPECT_EQ(dialog->GetChooser()->GetGridAttachment() & KEPDlgGridAll, KEPDlgGridAll);
    EXPECT_EQ(Lines(dialog->GetChooser()), c.lines) << c.parameter;
    EXPECT_EQ(dialog->GetChooser()->GetSelect(), 0);
    EXPECT_EQ(dialog->GetOKSensitivity(), KEPDlgEnable);
    EXPECT_EQ(dialog->GetStyle() & KEPRshConnectionDialog::kStyleBits,
              KEPRshConnectionDialog::kStyleBits);
    EXPECT_FALSE(dialog->IsVisible());
  }
}

TEST_F(ConnectionDialogTest, TitleNamesTheParameterAndTheComboShowsTheSameLines) {
  TheWorld().Param(d_.glass, "tint")->SetAlias(KEPUnicodeString::FromUTF8("Tint colour"));
  KEPRshConnectionDialog* selector = Open(d_.glass, "tint");
  KEPRshConnectionDialog* combo = Open(d_.glass, "tint", KEPRshConnectionDialog::Chooser::Combo);
  EXPECT_EQ(Title(selector),
            KEPMsgCatalog::BuildMessage("KEPRshConnectionDialog", "ConnectLabel").ToUTF8() +
                "Tint colour");
  ASSERT_NE(dynamic_cast<KEPDlgCombo*>(combo->GetChooser()), nullptr);
  EXPECT_EQ(combo->GetChooser()->GetName(), "shaderCombo");
  EXPECT_EQ(Lines(combo->GetChooser()), Lines(selector->GetChooser()));
}

TEST_F(ConnectionDialogTest, NothingToOfferLeavesOKInsensitiveAndAMissingReferenceAnEmptyDialog) {
  TheWorld().Add(Type("mia_phen_diffuse").Param("level", Integer(1)));
  KEPHostShaderNode* diffuse = TheWorld().Node("mia_phen_diffuse", "Diffuse");
  KEPRshConnectionDialog* dialog = Open(diffuse, "level");
  EXPECT_EQ(Lines(dialog->GetChooser()), std::vector<std::string>{});
  EXPECT_EQ(dialog->GetOKSensitivity(), KEPDlgDisable);

  auto* empty = new KEPRshConnectionDialog(Parent(), "connectionDialog", 0, nullptr,
                                           TheWorld().Param(d_.glass, "tint"));
  EXPECT_EQ(empty->GetChooser(), nullptr);
  Listen(empty);
  empty->SetVisibility(KEPDlgShow);
  ASSERT_EQ(Inject(empty, KEPVidAction::Ok), S_OK);
  EXPECT_EQ(done_, std::vector<bool>{false});
}

// OK is sensitive exactly while one line is selected, in both kinds of chooser; with nothing to
// make new, no line starts selected even when there are nodes to reuse.
TEST_F(ConnectionDialogTest, OKFollowsTheSelectionInBothChoosers) {
  struct Case {
    KEPRshConnectionDialog::Chooser chooser;
    bool typesToMake;
  };
  const Case cases[] = {{KEPRshConnectionDialog::Chooser::Selector, true},
                        {KEPRshConnectionDialog::Chooser::Combo, true},
                        {KEPRshConnectionDialog::Chooser::Selector, false},
                        {KEPRshConnectionDialog::Chooser::Combo, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(
        std::string(c.chooser == KEPRshConnectionDialog::Chooser::Combo ? "combo" : "selector") +
        (c.typesToMake ? ", types to make" : ", reuse only"));
    if (!c.typesToMake) TheWorld().Connectable("KEPRmaColor", {});
    KEPRshConnectionDialog* dialog = Open(d_.glass, "tint", c.chooser);
    KEPDlgLineList* chooser = dialog->GetChooser();
    ASSERT_NE(chooser, nullptr);
    const int reuseLine = c.typesToMake ? 2 : 0;
    EXPECT_EQ(chooser->GetLine(reuseLine).ToUTF8(), "Tiles (Metal:tint)");
    EXPECT_EQ(chooser->GetSelect(), c.typesToMake ? 0 : -1);
    EXPECT_EQ(dialog->GetOKSensitivity(), c.typesToMake ? KEPDlgEnable : KEPDlgDisable);
    dialog->SetVisibility(KEPDlgShow);
    ASSERT_EQ(Inject(chooser, KEPVidAction::Select, std::to_string(reuseLine)), S_OK);
    EXPECT_EQ(dialog->GetOKSensitivity(), KEPDlgEnable);
    chooser->SetSelect(-1, 1);  // the user clears the selection
    EXPECT_EQ(dialog->GetOKSensitivity(), KEPDlgDisable);
    ASSERT_EQ(Inject(chooser, KEPVidAction::Select, std::to_string(reuseLine)), S_OK);
    ASSERT_EQ(Inject(dialog, KEPVidAction::Ok), S_OK);
    KEPString id;
    ConnectedTo(d_.glass, "tint")->GetId(id);
    EXPECT_EQ(id, "Tiles");
    ASSERT_EQ(TheWorld().Param(d_.glass, "tint")->SetConnectedShader(d_.mixed), S_OK);
  }
}

TEST_F(ConnectionDialogTest, OKConnectsTheChosenLineBetweenABeginAndAnEnd) {
  std::vector<std::string> heard;
  const int token = KEPRshModelEvents::AddShaderModifyObserver(
      [&](const KEPRbaShaderModifyNotification& n, bool begin) {
        heard.push_back(std::string(begin ? "begin " : "end ") + n.changeClass + " " +
                        std::to_string(n.attributeKind) + " " + std::to_string(n.flag) +
                        (n.shader == static_cast<KEPIRshShader*>(d_.glass) ? " Glass" : " other"));
      });
  struct Case {
    int line;
    const char* expectedType;  ///< type of the node connected afterwards
    const char* reusedId;      ///< the node reused, or "" for a new one
    KEPRshConnectionDialog::Chooser chooser = KEPRshConnectionDialog::Chooser::Selector;
    KEPHostShaderNode* holder = nullptr;  ///< the opener's holder of a new node, if it names one
  };
  const Case cases[] = {{0, "colour_map", ""},
                        {0, "colour_map", "", KEPRshConnectionDialog::Chooser::Selector, d_.metal},
                        {1, "kep_phen_texture", ""},
                        {2, "colour_map", "Tiles"},
                        {3, "colour_map", "Noise"},
                        {1, "kep_phen_texture", "", KEPRshConnectionDialog::Chooser::Combo},
                        {3, "colour_map", "Noise", KEPRshConnectionDialog::Chooser::Combo}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    heard.clear();
    done_.clear();
    const std::size_t nodesBefore = TheWorld().Document()->Nodes().size();
    KEPRshConnectionDialog* dialog = Open(d_.glass, "tint", c.chooser);
    if (c.holder) dialog->SetHolder(c.holder);
    Listen(dialog);
    dialog->SetVisibility(KEPDlgShow);
    ASSERT_EQ(Inject(dialog->GetChooser(), KEPVidAction::Select, std::to_string(c.line)), S_OK);
    EXPECT_EQ(dialog->GetOKSensitivity(), KEPDlgEnable);
    ASSERT_EQ(Inject(dialog, KEPVidAction::Ok), S_OK);
    EXPECT_FALSE(dialog->IsVisible());
    EXPECT_EQ(done_, std::vector<bool>{true}) << c.line;
    EXPECT_EQ(heard, (std::vector<std::string>{"begin KEPIGraphicMaterial 2 0 Glass",
                                               "end KEPIRshParameter 2 1 Glass"}))
        << c.line;
    const KEP_var<KEPIRshShader> connected = ConnectedTo(d_.glass, "tint");
    ASSERT_TRUE(connected) << c.line;
    KEPString type, id;
    connected->GetTypeName(type);
    connected->GetId(id);
    EXPECT_EQ(type, c.expectedType);
    if (*c.reusedId) {
      EXPECT_EQ(id, c.reusedId);
      EXPECT_EQ(TheWorld().Document()->Nodes().size(), nodesBefore);
    } else {
      // A new node joins the document, held by the material's root or the opener's holder.
      EXPECT_EQ(TheWorld().Document()->Nodes().size(), nodesBefore + 1);
      EXPECT_EQ(TheWorld().Document()->FindNode(id)->Father(),
                static_cast<KEPBaseUnknown*>(c.holder ? c.holder : d_.glass));
    }
  }
  KEPRshModelEvents::RemoveObserver(token);
}

TEST_F(ConnectionDialogTest, CancelAndCloseConnectNothingAndStillTellTheOpener) {
  for (const KEPVidAction action : {KEPVidAction::Cancel, KEPVidAction::Close}) {
    done_.clear();
    int announcements = 0;
    const int token = KEPRshModelEvents::AddShaderModifyObserver(
        [&](const KEPRbaShaderModifyNotification&, bool) { ++announcements; });
    KEPRshConnectionDialog* dialog = Open(d_.glass, "tint");
    Listen(dialog);
    dialog->SetVisibility(KEPDlgShow);
    ASSERT_EQ(Inject(dialog->GetChooser(), KEPVidAction::Select, "2"), S_OK);
    ASSERT_EQ(Inject(dialog, action), S_OK);
    KEPRshModelEvents::RemoveObserver(token);
    EXPECT_FALSE(dialog->IsVisible());
    EXPECT_EQ(done_, std::vector<bool>{false});
    EXPECT_EQ(announcements, 0);
    KEPString id;
    ConnectedTo(d_.glass, "tint")->GetId(id);
    EXPECT_EQ(id, "Mixed");
  }
}

TEST_F(ConnectionDialogTest, TheFrameOpensTheDialogFromButtonAndMenuAndRefreshesTheRowAfter) {
  // Glass.tint is parameter 1, slot parameter 4.
  KEPRshShaderRootFrame* root = Root(d_.glass);
  KEPRshShaderFrame* frame = root->GetShaderFrame();
  auto* button = dynamic_cast<KEPDlgPushButton*>(frame->FindNamedChild("parameterButton4"));
  auto* disconnect = dynamic_cast<KEPDlgPushButton*>(frame->FindNamedChild("disconnectButton4"));
  ASSERT_TRUE(button && disconnect);
  EXPECT_EQ(button->GetIconName(), "I_RmaNewChild");

  TraceCapture trace(5);
  ASSERT_EQ(Inject(button, KEPVidAction::Press), S_OK);
  KEPRshConnectionDialog* dialog = frame->GetConnectionDialog();
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(dialog->GetName(), "connectionDialog");
  EXPECT_TRUE(dialog->IsVisible());
  EXPECT_EQ(Lines(dialog->GetChooser()),
            (std::vector<std::string>{"Bump (new)", "Bumps (Metal:slot)"}));
  ASSERT_EQ(Inject(dialog->GetChooser(), KEPVidAction::Select, "1"), S_OK);
  ASSERT_EQ(Inject(dialog, KEPVidAction::Ok), S_OK);
  EXPECT_TRUE(trace.Contains("(KEPRshShaderFrame::ConnectionDoneCB)\n"));
  EXPECT_EQ(button->GetIconName(), "I_RmaChild");
  EXPECT_EQ(disconnect->GetVisibility(), KEPDlgShow);
  EXPECT_TRUE(disconnect->IsSensitive());

  // Disconnecting puts the row back; a second press through the menu replaces the first dialog.
  ASSERT_EQ(Inject(disconnect, KEPVidAction::Press), S_OK);
  EXPECT_EQ(button->GetIconName(), "I_RmaNewChild");
  EXPECT_EQ(disconnect->GetVisibility(), KEPDlgHide);
  EXPECT_EQ(button->GetHelp(), KEPMsgCatalog::BuildMessage("KEPRshShaderFrame", "connect.Help"));
  auto* item = dynamic_cast<KEPDialog*>(
      frame->FindNamedChild("connectionMenu4")->FindNamedChild("connectItem"));
  ASSERT_NE(item, nullptr);
  KEP_var<KEPRshConnectionDialog> first(dialog);
  frame->ConnectCB(item, nullptr, 4);  // as the menu item calls it
  ASSERT_NE(frame->GetConnectionDialog(), nullptr);
  EXPECT_NE(frame->GetConnectionDialog(), dialog);
  EXPECT_EQ(static_cast<KEPVidWidget*>(dialog)->GetFather(), nullptr);
  ASSERT_EQ(Inject(frame->GetConnectionDialog(), KEPVidAction::Cancel), S_OK);
  EXPECT_EQ(button->GetIconName(), "I_RmaNewChild");
  EXPECT_FALSE(ConnectedTo(d_.glass, "slot"));
  // The frame let go of the first dialog when the second came.
  EXPECT_FALSE(trace.Contains("(KEPRshConnectionDialog::~KEPRshConnectionDialog) Destructor\n"));
  first.Reset();
  // Destruction is traced at level 2, the callbacks at level 5.
  auto level = [&](const std::string& text) {
    for (const KEPTraceEntry& entry : trace.Entries())
      if (entry.text == text) return entry.moduleLevel;
    return -1;
  };
  EXPECT_EQ(level("(KEPRshConnectionDialog::~KEPRshConnectionDialog) Destructor\n"), 2);
  EXPECT_EQ(level("(KEPRshConnectionDialog::~KEPRshConnectionDialog) Done\n"), 2);
  EXPECT_EQ(level("(KEPRshConnectionDialog::OkCB)\n"), 5);
  EXPECT_EQ(level("(KEPRshShaderFrame::ConnectionDoneCB)\n"), 5);
}

TEST_F(ConnectionDialogTest, NoSequenceOfConnectionsThroughTheDialogMakesACycle) {
  std::vector<KEPHostParameter*> parameters;
  for (const auto& node : TheWorld().Document()->Nodes())
    for (const auto& parameter : node->Parameters()) parameters.push_back(parameter.Get());
  std::mt19937 random(7);
  for (int step = 0; step < 300; ++step) {
    KEPHostParameter* parameter = parameters[random() % parameters.size()];
    auto* dialog = new KEPRshConnectionDialog(nullptr, "connectionDialog", 0, TheWorld().Document(),
                                              parameter);
    const auto hold = KEP_var<KEPRshConnectionDialog>::Adopt(dialog);
    if (dialog->GetChooser() && dialog->GetChooser()->GetLineCount() > 0) {
      const int line =
          static_cast<int>(random() % static_cast<unsigned>(dialog->GetChooser()->GetLineCount()));
      dialog->SetVisibility(KEPDlgShow);
      ASSERT_EQ(Inject(dialog->GetChooser(), KEPVidAction::Select, std::to_string(line)), S_OK);
      ASSERT_EQ(Inject(dialog, KEPVidAction::Ok), S_OK);
    }
    std::vector<std::string> cycle;
    ASSERT_FALSE(HasConnectionCycle(*TheWorld().Document(), &cycle))
        << "step " << step << ": " << ::testing::PrintToString(cycle);
  }
}

// A node is matched by what it yields when its type declares it ("" too: it fits anything), and
// by its type name otherwise, so that a host whose nodes answer no output keeps working.
TEST_F(ConnectionDialogTest, ANodesConnectionTypeIsItsOutputOrElseItsTypeName) {
  TheWorld().Add(Type("wild_map").Output("").Param("gain", Scalar(1)));
  TheWorld().Add(Type("plain_map").Param("gain", Scalar(1)));
  TheWorld().Add(Type("KEPRmaVector").Param("gain", Scalar(1)));
  const struct {
    const char* type;
    const char* expected;
  } cases[] = {{"colour_map", "KEPRmaColor"},
               {"bump_map", "KEPRmaVector"},
               {"wild_map", ""},
               {"plain_map", "plain_map"},
               {"KEPRmaVector", "KEPRmaVector"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.type);
    KEPHostShaderNode* node = TheWorld().Node(c.type, std::string("A ") + c.type);
    EXPECT_EQ(KEPRshShaderTree::ConnectionType(node), c.expected);
  }
  EXPECT_EQ(KEPRshShaderTree::ConnectionType(nullptr), "");
}

}  // namespace
}  // namespace keptest
