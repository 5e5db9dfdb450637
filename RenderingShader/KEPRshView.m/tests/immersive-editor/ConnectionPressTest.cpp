// A press of a row's connection button in the immersive editor: disconnecting, and each branch of
// connecting (a node of the edited tree shared, a node made new and held by the tree's root, the
// dialog when there is a choice), with the row showing the result, the render lock held over each
// change, a dialog left open by an earlier press given up, and the references the editor takes
// given back.
#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "EditorTestSupport.h"
#include "KEPBaseUnknown_WR.h"
#include "KEPConnectionFixture.h"
#include "KEPDlgLineList.h"
#include "KEPHostShaderDocument.h"
#include "KEPHostShaderManager.h"
#include "KEPMsgCatalog.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshConnectionDialog.h"
#include "KEPRshModelEvents.h"
#include "KEPRshParameterServices.h"
#include "KEPRshQuickReuse.h"
#include "KEPVidCtlButton.h"
#include "KEPVidCtlExpander.h"

namespace keptest {
namespace {

/// True when another thread cannot take the render lock now: this thread holds it.
bool RenderLockHeldHere() {
  bool taken = false;
  std::thread probe([&taken] {
    taken = KEPRdgRenderLock::Mutex().try_lock();
    if (taken) KEPRdgRenderLock::Mutex().unlock();
  });
  probe.join();
  return !taken;
}

class ConnectionPressTest : public EditorTest {
 protected:
  void SetUp() override {
    EditorTest::SetUp();
    d_ = BuildConnectionDocument(TheWorld());
    // Each material holds the nodes made for it; Noise, which both use, is Glass's.
    Hold(d_.glass, {d_.mixed, d_.noise, d_.lonely});
    Hold(d_.metal, {d_.tiles, d_.outer, d_.inner, d_.bumps});
    Config("mia_phen_material", {{"tint.ConnectableState", "Yes"},
                                 {"slot.ConnectableState", "yes"},
                                 {"amount.ConnectableState", "1"}});
    Open();
  }
  static void Hold(KEPHostShaderNode* holder, std::initializer_list<KEPHostShaderNode*> nodes) {
    for (KEPHostShaderNode* node : nodes) EXPECT_EQ(holder->AddSubShader(node), S_OK);
  }
  void Connect(KEPHostShaderNode* node, const std::string& parameter, KEPHostShaderNode* to) {
    ASSERT_EQ(TheWorld().Param(node, parameter)->SetConnectedShader(to), S_OK);
  }
  /// (Re)builds the editor of Glass, as it shows the document now.
  void Open() {
    if (editor_) {
      editor_->SetFather(nullptr);
      editor_->Release();
    }
    editor_ = Edit(d_.glass);
    grid_ = At(editor_, "ParameterNoGroupLayout");
    ASSERT_NE(grid_, nullptr);
  }
  /// The grid of the editor shown below row n, for the node connected there.
  KEPVidWidget* NestedGrid(int n) {
    const std::string row = "ParameterConnectedShader" + std::to_string(n);
    return At(grid_, row + "/" + row + "Layout/ConnectedShaderEditor/ParameterNoGroupLayout");
  }
  /// The button of row n (tint 0, slot 3, amount 4) of `grid`, Glass's by default.
  KEPVidCtlButton* Button(int n, KEPVidWidget* grid = nullptr) {
    return dynamic_cast<KEPVidCtlButton*>(
        Child(grid ? grid : grid_, "ParameterConnection" + std::to_string(n)));
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

  // Two types to make, and Noise, of Glass's tree, used by exactly one other parameter once
  // Metal lets go of it: Noise is shared at once.
  Connect(d_.metal, "other", nullptr);
  Button(0)->Press();
  EXPECT_EQ(ConnectedId("tint"), "Noise");
  ExpectRow(0, "Noise");
  EXPECT_EQ(Expander(0)->GetLabel().ToUTF8(), "Noise");
  EXPECT_EQ(Dialog(), nullptr);
}

// The rule itself: a parameter of no type cannot be made with the stand-alone host's parameters.
TEST(QuickReuseTypeFitsTest, ANodeFitsItsOwnTypeAnyTypelessParameterAndVectorParametersWhenVoid) {
  struct Case {
    const char* parameterType;
    const char* nodeType;
    bool fits;
  };
  const Case cases[] = {
      {"KEPRmaColor", "KEPRmaColor", true},
      {"KEPRmaColor", "KEPRmaVector", false},
      {"KEPRmaColor", "", false},
      {"", "KEPRmaColor", true},
      {"", "", true},
      {"KEPRmaVector", "KEPRmaVoid", true},
      {"KEPRmaVector", "KEPRmaVector", true},
      // The mirror image is no rule of the press (the dialog's own rule has it).
      {"KEPRmaVoid", "KEPRmaVector", false},
      {"KEPRmaVoid", "KEPRmaVoid", true},
  };
  for (const Case& c : cases)
    EXPECT_EQ(KEPRshQuickReuse::TypeFits(c.parameterType, c.nodeType), c.fits)
        << "parameter '" << c.parameterType << "', node '" << c.nodeType << "'";
}

/// A node "Probe" of Glass's tree that yields `output`, used by Metal.extra only, and a press on a
/// row of Glass with two types to make: shared at once when the types fit, else the dialog.
struct TypeCase {
  const char* what;
  int row;  ///< tint (colour) 0, slot (void) 3, dir (vector) 5
  const char* output;
  bool shared;
};

void PrintTo(const TypeCase& tested, std::ostream* out) {
  *out << tested.what;
}

class QuickReuseTypeTest : public ConnectionPressTest,
                           public ::testing::WithParamInterface<TypeCase> {};

TEST_P(QuickReuseTypeTest, ThePressSharesANodeWhoseOutputFitsTheParameter) {
  auto* dir = KEPHostParameter::Create(d_.glass, "dir", Vector({0, 0, 1}));
  d_.glass->AddParameter(dir);
  dir->Release();
  Config("mia_phen_material", {{"dir.ConnectableState", "yes"}});
  TheWorld().Add(Type("probe").Output(GetParam().output).Param("gain", Scalar(1)));
  KEPHostShaderNode* probe = TheWorld().Node("probe", "Probe");
  Hold(d_.glass, {probe});
  Connect(d_.metal, "extra", probe);
  for (const char* type : {"KEPRmaColor", "KEPRmaVoid", "KEPRmaVector"})
    TheWorld().Connectable(type, {{"colour_map", "Colour map"}, {"bump_map", "Bump"}});
  Open();

  const int row = GetParam().row;
  if (row == 0) Button(0)->Press();  // Mixed off
  Button(row)->Press();
  const std::string parameter = row == 0 ? "tint" : row == 3 ? "slot" : "dir";
  EXPECT_EQ(ConnectedId(parameter), GetParam().shared ? "Probe" : "");
  EXPECT_EQ(Dialog() != nullptr, !GetParam().shared);
}

INSTANTIATE_TEST_SUITE_P(Cases, QuickReuseTypeTest,
                         ::testing::Values(TypeCase{"ColourTakesColour", 0, "KEPRmaColor", true},
                                           TypeCase{"ColourRefusesVector", 0, "KEPRmaVector",
                                                    false},
                                           // The dialog offers a node whose output fits any slot;
                                           // the press does not share it.
                                           TypeCase{"ColourRefusesAnOutputOfNoType", 0, "", false},
                                           TypeCase{"VectorTakesVoid", 5, "KEPRmaVoid", true},
                                           TypeCase{"VectorTakesVector", 5, "KEPRmaVector", true},
                                           TypeCase{"VoidRefusesVector", 3, "KEPRmaVector", false},
                                           TypeCase{"VoidTakesVoid", 3, "KEPRmaVoid", true}),
                         [](const ::testing::TestParamInfo<TypeCase>& tested) {
                           return std::string(tested.param.what);
                         });

TEST_F(ConnectionPressTest, TheEditedNodeIsNeverSharedWithItsOwnParameter) {
  // Coat, material-like and yielding a colour, is Glass's and used by Glass.tint only: it fits
  // its own tint by type and by users, and only the document's exclusion keeps it out.
  Type coatType("coat", "mia_phen_material");
  coatType.Output("KEPRmaColor").Param("tint", Color(1, 1, 1)).Param("slot", Void());
  TheWorld().Add(coatType);
  KEPHostShaderNode* coat = TheWorld().Node("coat", "Coat");
  Hold(d_.glass, {coat});
  Connect(d_.glass, "tint", coat);
  Open();
  KEPVidWidget* coatGrid = NestedGrid(0);
  ASSERT_NE(coatGrid, nullptr);
  Button(0, coatGrid)->Press();
  KEP_var<KEPIRshShader> connected;
  EXPECT_TRUE(FAILED(TheWorld().Param(coat, "tint")->GetConnectedShader(*connected.Out())) ||
              !connected);
  // Two types and nothing to share: the dialog, under Coat's own editor.
  bool dialogOpened = false;
  KEPVidWidget* coatEditor = coatGrid->GetFather();
  for (std::size_t i = 0; i < coatEditor->GetChildCount(); ++i)
    dialogOpened = dialogOpened || dynamic_cast<KEPRshConnectionDialog*>(coatEditor->GetChild(i));
  EXPECT_TRUE(dialogOpened);
}

/// A press on Glass.tint, two types to make, after `arrange`: the node shared at once, or none
/// when the dialog opens.
struct ReuseCase {
  const char* what;
  void (*arrange)(ConnectionDocument&);
  const char* shared;
};

void PrintTo(const ReuseCase& tested, std::ostream* out) {
  *out << tested.what;
}

class QuickReuseTest : public ConnectionPressTest,
                       public ::testing::WithParamInterface<ReuseCase> {};

TEST_P(QuickReuseTest, OnlyANodeOfTheEditedTreeThatExactlyOneOtherParameterUsesIsShared) {
  GetParam().arrange(d_);
  Button(0)->Press();  // Mixed off
  Button(0)->Press();
  const std::string shared = GetParam().shared;
  EXPECT_EQ(ConnectedId("tint"), shared);
  ExpectRow(0, shared);
  KEPRshConnectionDialog* dialog = Dialog();
  ASSERT_EQ(dialog != nullptr, shared.empty());
  if (!dialog) return;
  // The dialog offers what the whole document may share: Tiles of Metal among it.
  std::vector<std::string> lines;
  for (int line = 0; line < dialog->GetChooser()->GetLineCount(); ++line)
    lines.push_back(dialog->GetChooser()->GetLine(line).ToUTF8());
  EXPECT_NE(std::find(lines.begin(), lines.end(), "Tiles (Metal:tint)"), lines.end());
}

void Unplug(KEPHostShaderNode* node, const char* parameter) {
  KEP_var<KEPIRshParameter> held;
  ASSERT_EQ(node->GetParameter(parameter, *held.Out()), S_OK);
  ASSERT_EQ(held->SetConnectedShader(nullptr), S_OK);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, QuickReuseTest,
    ::testing::Values(
        // Tiles (Metal's, used by Metal.tint only) would fit; of Glass's tree Noise is used by two
        // other parameters, Mixed and Lonely by none.
        ReuseCase{"NothingOfGlassTree", [](ConnectionDocument&) {}, ""},
        ReuseCase{"NoiseOnceMetalLetsGo", [](ConnectionDocument& d) { Unplug(d.metal, "other"); },
                  "Noise"},
        ReuseCase{"NoiseHeldThroughMixed",
                  [](ConnectionDocument& d) {
                    EXPECT_EQ(d.mixed->AddSubShader(d.noise), S_OK);
                    Unplug(d.metal, "other");
                  },
                  "Noise"},
        ReuseCase{"TilesOnceGlassHoldsIt",
                  [](ConnectionDocument& d) { EXPECT_EQ(d.glass->AddSubShader(d.tiles), S_OK); },
                  "Tiles"},
        // Outer, used by Metal.extra only, reaches Glass through Inner.
        ReuseCase{"OuterReachesGlass",
                  [](ConnectionDocument& d) { EXPECT_EQ(d.glass->AddSubShader(d.outer), S_OK); },
                  ""}),
    [](const ::testing::TestParamInfo<ReuseCase>& tested) {
      return std::string(tested.param.what);
    });

TEST_F(ConnectionPressTest, OneTypeAndNothingToReuseMakesANodeHeldByTheMaterial) {
  const std::size_t before = TheWorld().Document()->Nodes().size();
  Button(3)->Press();
  ASSERT_EQ(TheWorld().Document()->Nodes().size(), before + 1);
  KEPHostShaderNode* made = TheWorld().Document()->Nodes().back().Get();
  EXPECT_EQ(made->TypeName(), "bump_map");
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
         w.Connectable("KEPRmaColor", {{"colour_map", "Colour map"}});
         Unplug(w.Document()->FindNode("Metal"), "other");  // Noise: one other user
       },
       KEPVidAction::Ok, "colour_map.1"},
      {"two types and nothing to reuse", 4,
       [](World& w) {
         w.Connectable("KEPRmaScalar", {{"colour_map", "A"}, {"bump_map", "B"}});
       },
       KEPVidAction::Cancel, ""},
      {"the dialog closed by its box", 4,
       [](World& w) {
         w.Connectable("KEPRmaScalar", {{"colour_map", "A"}, {"bump_map", "B"}});
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
  Connect(d_.metal, "other", nullptr);
  const ULONG noise = count(d_.noise);
  const ULONG mixed = count(d_.mixed);
  const ULONG glass = count(d_.glass);
  for (int cycle = 0; cycle < 5; ++cycle) {
    Button(0)->Press();  // on: Noise
    ASSERT_EQ(ConnectedId("tint"), "Noise");
    Button(0)->Press();  // off
  }
  // Nothing connected: the row's editor of Noise is gone and holds nothing.
  EXPECT_EQ(count(d_.noise), noise);
  EXPECT_EQ(count(d_.mixed), mixed);
  EXPECT_EQ(count(d_.glass), glass);
}

TEST_F(ConnectionPressTest, ANodeMadeBelowAnotherNodesRowIsHeldByTheRootOfTheEditedTree) {
  // Coat, a material-like node, is connected to Glass.tint and edited below that row; its slot
  // has one type to make and nothing of the tree to share.
  struct Case {
    const char* what;
    KEPHostShaderNode* coatHolder;  ///< null: the document itself holds Coat
    KEPHostShaderNode* expectedHolder;
  };
  KEPHostShaderNode* coat = TheWorld().Node("mia_phen_material", "Coat");
  const Case cases[] = {
      {"Coat held by nothing: the outermost editor's node", nullptr, d_.glass},
      {"Coat held by Glass", d_.glass, d_.glass},
      {"Coat held by Metal, though shown under Glass", d_.metal, d_.metal},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    if (c.coatHolder) Hold(c.coatHolder, {coat});
    Connect(coat, "slot", nullptr);
    Connect(d_.glass, "tint", coat);
    Open();
    KEPVidWidget* coatGrid = NestedGrid(0);
    ASSERT_NE(coatGrid, nullptr);
    const std::size_t before = TheWorld().Document()->Nodes().size();
    Button(3, coatGrid)->Press();
    ASSERT_EQ(TheWorld().Document()->Nodes().size(), before + 1);
    KEPHostShaderNode* made = TheWorld().Document()->Nodes().back().Get();
    EXPECT_EQ(made->Father(), static_cast<KEPBaseUnknown*>(c.expectedHolder));
    KEP_var<KEPIRshShader> connected;
    ASSERT_EQ(TheWorld().Param(coat, "slot")->GetConnectedShader(*connected.Out()), S_OK);
    EXPECT_EQ(connected.Get(), static_cast<KEPIRshShader*>(made));
  }
}

TEST_F(ConnectionPressTest, TheRenderLockIsHeldFromTheWriteUntilTheRowShowsIt) {
  // Probes on this thread's behalf run on another: in the model's observer (the write) and in the
  // handler of the row's expander, which the refresh collapses.
  std::vector<std::string> probes;
  auto probe = [&probes](const std::string& where) {
    probes.push_back(where + (RenderLockHeldHere() ? "" : " unlocked"));
  };
  const int observer = KEPRshModelEvents::AddParameterObserver(
      [&probe](KEPIRshParameter*, KEPRshParameterChangeKind) { probe("write"); });
  for (const int n : {0, 3})
    Expander(n)->AddHandler(KEPVidEvent::Collapsed,
                            [&probe](KEPVidWidget*, KEPVidEvent) { probe("refresh"); });
  Connect(d_.metal, "other", nullptr);  // Noise: shared by the next press on tint
  struct Case {
    const char* what;
    int row;
    std::string connected;
  };
  const Case cases[] = {
      {"disconnecting Mixed", 0, ""},
      {"sharing Noise", 0, "Noise"},
      {"making a Bump", 3, "bump_map.1"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    probes.clear();
    Expander(c.row)->SetExpanded(true);  // as the user left it: the refresh collapses it
    Button(c.row)->Press();
    ExpectRow(c.row, c.connected);
    EXPECT_EQ(probes, (std::vector<std::string>{"write", "refresh"}));
  }
  KEPRshModelEvents::RemoveObserver(observer);
}

/// A press on Glass.tint that opens the dialog (one type, Noise to share), line 0 chosen; then
/// `meanwhile`, and a second press on the row.
struct SecondPressCase {
  const char* what;
  void (*meanwhile)(World&, ConnectionDocument&);
  const char* connected;  ///< by the second press
};

void PrintTo(const SecondPressCase& tested, std::ostream* out) {
  *out << tested.what;
}

class SecondPressTest : public ConnectionPressTest,
                        public ::testing::WithParamInterface<SecondPressCase> {};

TEST_P(SecondPressTest, GivesUpTheDialogTheFirstPressOpened) {
  Button(0)->Press();  // Mixed off
  TheWorld().Connectable("KEPRmaColor", {{"colour_map", "Colour map"}});
  Connect(d_.metal, "other", nullptr);
  Button(0)->Press();
  KEPRshConnectionDialog* opened = Dialog();
  ASSERT_NE(opened, nullptr);
  ASSERT_EQ(Inject(opened->GetChooser(), KEPVidAction::Select, "0"), S_OK);
  const KEPBaseUnknown_WR first(opened);

  GetParam().meanwhile(TheWorld(), d_);
  Button(0)->Press();
  const std::string connected = GetParam().connected;
  EXPECT_EQ(ConnectedId("tint"), connected);
  // Had the first dialog stayed, its OK would now connect a new colour map over the press.
  if (auto* stale = dynamic_cast<KEPRshConnectionDialog*>(first.Get())) {
    EXPECT_EQ(Inject(stale, KEPVidAction::Ok), S_OK);
  }
  EXPECT_EQ(ConnectedId("tint"), connected);
  ExpectRow(0, connected);
  EXPECT_FALSE(first.IsAlive());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SecondPressTest,
    ::testing::Values(SecondPressCase{"SharesNoise",
                                      [](World& w, ConnectionDocument&) {
                                        w.Connectable("KEPRmaColor",
                                                      {{"colour_map", "Colour map"},
                                                       {"kep_phen_texture", "Texture"}});
                                      },
                                      "Noise"},
                      SecondPressCase{
                          "DisconnectsWhatWasConnectedMeanwhile",
                          [](World& w, ConnectionDocument& d) {
                            EXPECT_EQ(w.Param(d.glass, "tint")->SetConnectedShader(d.tiles), S_OK);
                          },
                          ""}),
    [](const ::testing::TestParamInfo<SecondPressCase>& tested) {
      return std::string(tested.param.what);
    });

using ConnectionPressDeathTest = ConnectionPressTest;

TEST_F(ConnectionPressDeathTest, ConnectingNeedsAManagerAndAConnectableType) {
  // Amount is connectable by configuration, but no shader type connects to a scalar.
  EXPECT_DEATH(Button(4)->Press(),
               Fatal("( types.Size( ) > 0 ) && \"Nothing is connectable to this parameter, "
                     "connection callback should not have been accesssible in the first "
                     "place\""));
  Button(0)->Press();  // Mixed off
  KEPHostShaderManager::Install(nullptr);
  EXPECT_DEATH(Button(0)->Press(),
               Fatal("( shader_manager ) && \"No shader manager available but we are editing a "
                     "shader....\""));
}

}  // namespace
}  // namespace keptest
