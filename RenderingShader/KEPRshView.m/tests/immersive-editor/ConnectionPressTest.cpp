// A press of a row's connection button in the immersive editor: disconnecting, and each branch of
// connecting (a node reused, a node made new in the material, the dialog when there is a choice),
// with the row showing the result and the references the editor takes given back.
#include <gtest/gtest.h>

#include <functional>

#include "EditorTestSupport.h"
#include "KEPConnectionFixture.h"
#include "KEPDlgLineList.h"
#include "KEPHostShaderDocument.h"
#include "KEPMsgCatalog.h"
#include "KEPRshConnectionDialog.h"
#include "KEPRshParameterServices.h"
#include "KEPVidCtlButton.h"
#include "KEPVidCtlExpander.h"

namespace keptest {
namespace {

class ConnectionPressTest : public EditorTest {
 protected:
  void SetUp() override {
    EditorTest::SetUp();
    d_ = BuildConnectionDocument(TheWorld());
    Config("mia_phen_material", {{"tint.ConnectableState", "Yes"},
                                 {"slot.ConnectableState", "yes"},
                                 {"amount.ConnectableState", "1"}});
    editor_ = Edit(d_.glass);
    grid_ = At(editor_, "ParameterNoGroupLayout");
    ASSERT_NE(grid_, nullptr);
  }
  /// The button of row n (tint 0, slot 3, amount 4).
  KEPVidCtlButton* Button(int n) {
    return dynamic_cast<KEPVidCtlButton*>(Child(grid_, "ParameterConnection" + std::to_string(n)));
  }
  KEPVidCtlExpander* Expander(int n) {
    return dynamic_cast<KEPVidCtlExpander*>(
        Child(grid_, "ParameterConnectedShader" + std::to_string(n)));
  }
  KEPVidWidget* ValueWidget(int n) { return Child(grid_, "ParameterWidget" + std::to_string(n)); }
  std::string ConnectedId(const std::string& parameter) {
    KEP_var<KEPIRshShader> connected;
    if (FAILED(TheWorld().Param(d_.glass, parameter)->GetConnectedShader(*connected.Out())))
      return "";
    KEPString id;
    connected->GetId(id);
    return id;
  }
  /// The row shows `id` connected, or nothing when `id` is empty.
  void ExpectRow(int n, const std::string& id) {
    KEPVidCtlButton* button = Button(n);
    KEPVidCtlExpander* expander = Expander(n);
    ASSERT_TRUE(button && expander);
    const bool connected = !id.empty();
    EXPECT_EQ(button->GetIcon(), connected ? "I_RmaDisconnect.png" : "I_RmaConnect.png");
    EXPECT_EQ(button->GetHelpText(),
              KEPMsgCatalog::BuildMessage("KEPRshShaderFrame",
                                          connected ? "disconnect.Help" : "connect.Help"));
    EXPECT_EQ(expander->IsVisible(), connected);
    EXPECT_FALSE(expander->IsExpanded());
    KEPVidWidget* layout = expander->GetChild(0);
    EXPECT_EQ(layout->GetChildCount(), connected ? 1u : 0u);
    if (!connected) {
      EXPECT_EQ(expander->GetLabel().ToUTF8(), "No Shader Connected");
    }
    if (KEPVidWidget* widget = ValueWidget(n)) {
      EXPECT_EQ(widget->IsSensitive(), !connected);
    }
  }
  /// The dialog opened last (each row keeps its own).
  KEPRshConnectionDialog* Dialog() {
    for (std::size_t i = editor_->GetChildCount(); i-- > 0;)
      if (auto* dialog = dynamic_cast<KEPRshConnectionDialog*>(editor_->GetChild(i))) return dialog;
    return nullptr;
  }
  static HRESULT Inject(KEPVidWidget* widget, KEPVidAction action, std::string_view argument = {}) {
    std::string error;
    return widget->InjectUserEvent(action, argument, error);
  }

  ConnectionDocument d_;
  KEPRshShaderImmLayout* editor_ = nullptr;
  KEPVidWidget* grid_ = nullptr;
};

TEST_F(ConnectionPressTest, PressDisconnectsThenConnectsAsTheDecisionSays) {
  ExpectRow(0, "Mixed");
  const unsigned long long generation = KEPRshParameterServices::GetConnectionGeneration();
  Button(0)->Press();
  EXPECT_EQ(ConnectedId("tint"), "");
  ExpectRow(0, "");
  EXPECT_NE(KEPRshParameterServices::GetConnectionGeneration(), generation);

  // Two types to make, and Tiles used by exactly one other parameter (Outer and Inner are too,
  // but they reach the parameter): Tiles is reused at once.
  Button(0)->Press();
  EXPECT_EQ(ConnectedId("tint"), "Tiles");
  ExpectRow(0, "Tiles");
  EXPECT_EQ(Expander(0)->GetLabel().ToUTF8(), "Tiles");
  EXPECT_EQ(Dialog(), nullptr);
}

TEST_F(ConnectionPressTest, OneTypeAndNothingToReuseMakesANodeHeldByTheMaterial) {
  const std::size_t before = TheWorld().Document()->Nodes().size();
  Button(3)->Press();
  ASSERT_EQ(TheWorld().Document()->Nodes().size(), before + 1);
  KEPHostShaderNode* made = TheWorld().Document()->Nodes().back().Get();
  EXPECT_EQ(made->TypeName(), "KEPRmaVector");
  EXPECT_EQ(made->Father(), static_cast<KEPBaseUnknown*>(d_.glass));
  EXPECT_EQ(ConnectedId("slot"), made->Id());
  ExpectRow(3, made->Id());
}

TEST_F(ConnectionPressTest, AFailedCreationLeavesTheParameterAndTheRowAsTheyWere) {
  TheWorld().Connectable("KEPRmaVoid", {{"NoSuchType", "Ghost"}});
  const std::size_t before = TheWorld().Document()->Nodes().size();
  Button(3)->Press();
  EXPECT_EQ(TheWorld().Document()->Nodes().size(), before);
  EXPECT_EQ(ConnectedId("slot"), "");
  ExpectRow(3, "");
}

TEST_F(ConnectionPressTest, AChoiceOpensTheDialogAndTheRowRefreshesWhenItIsDone) {
  struct Case {
    const char* what;
    int row;
    std::function<void(World&)> arrange;
    KEPVidAction finish;
    std::string expected;  ///< connected afterwards
  };
  const Case cases[] = {
      {"one type and a node to reuse", 0,
       [](World& w) {
         w.Connectable("KEPRmaColor", {{"KEPRmaColor", "Colour map"}});
       },
       KEPVidAction::Ok, "KEPRmaColor.1"},
      {"two types and nothing to reuse", 4,
       [](World& w) {
         w.Connectable("KEPRmaScalar", {{"KEPRmaColor", "A"}, {"KEPRmaVector", "B"}});
       },
       KEPVidAction::Cancel, ""},
      {"the dialog closed by its box", 4,
       [](World& w) {
         w.Connectable("KEPRmaScalar", {{"KEPRmaColor", "A"}, {"KEPRmaVector", "B"}});
       },
       KEPVidAction::Close, ""},
  };
  for (const Case& c : cases) {
    c.arrange(TheWorld());
    if (c.row == 0) Button(0)->Press();  // disconnects Mixed first
    Button(c.row)->Press();
    KEPRshConnectionDialog* dialog = Dialog();
    ASSERT_NE(dialog, nullptr) << c.what;
    EXPECT_TRUE(dialog->IsVisible()) << c.what;
    EXPECT_EQ(static_cast<KEPVidWidget*>(dialog)->GetFather(), editor_) << c.what;
    ASSERT_EQ(Inject(dialog->GetChooser(), KEPVidAction::Select, "0"), S_OK);
    ASSERT_EQ(Inject(dialog, c.finish), S_OK) << c.what;
    const std::string parameter = c.row == 0 ? "tint" : "amount";
    EXPECT_EQ(ConnectedId(parameter), c.expected) << c.what;
    ExpectRow(c.row, c.expected);
  }
}

TEST_F(ConnectionPressTest, ConnectDisconnectCyclesGiveBackEveryReference) {
  auto count = [](KEPHostShaderNode* node) {
    node->AddRef();
    return node->Release();
  };
  Button(0)->Press();  // Mixed off: its editor below the row goes
  const ULONG tiles = count(d_.tiles);
  const ULONG mixed = count(d_.mixed);
  const ULONG glass = count(d_.glass);
  for (int cycle = 0; cycle < 5; ++cycle) {
    Button(0)->Press();  // on: Tiles
    ASSERT_EQ(ConnectedId("tint"), "Tiles");
    Button(0)->Press();  // off
  }
  // Nothing connected: the row's editor of Tiles is gone and holds nothing.
  EXPECT_EQ(count(d_.tiles), tiles);
  EXPECT_EQ(count(d_.mixed), mixed);
  EXPECT_EQ(count(d_.glass), glass);
}

}  // namespace
}  // namespace keptest
