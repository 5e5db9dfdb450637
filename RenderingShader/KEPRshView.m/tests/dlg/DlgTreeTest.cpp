// A classic tree seen from outside: its JSON and text, injection by path with its refusals, and
// who owns the representations that sliders and 2D viewers draw.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "DlgTestSupport.h"
#include "KEP2DImagePixelRep.h"
#include "KEP2DViewer.h"
#include "KEPDlgCheckButton.h"
#include "KEPDlgContainer.h"
#include "KEPDlgLabel.h"
#include "KEPDlgSpinner.h"
#include "KEPPixelImage.h"
#include "KEPRbaSlider.h"
#include "KEPTestSupport.h"
#include "KEPVidTree.h"

using dlgtest::Count;
using dlgtest::MakeRoot;
using dlgtest::Root;

namespace {

class DlgTree : public keptest::Fixture {};

// A representation that counts its destructions.
class CountedRep : public KEP2DRep {
 public:
  explicit CountedRep(int* destroyed) : destroyed_(destroyed) {}

 protected:
  ~CountedRep() override { ++*destroyed_; }

 private:
  int* destroyed_;
};

// A parameter row as the classic editor builds it: label, hidden separator, spinner.
Root MakeRow() {
  Root root = MakeRoot("shaderFrame");
  auto* row = new KEPDlgFrame(root.Get(), "parameterDialog1", 0xc0000);
  auto* label = new KEPDlgLabel(row, "parameterLabel1");
  label->SetTitle(KEPUnicodeString(u"Roughness"));
  label->SetGridConstraints(0, 0, 1, 1, KEPDlgGridAll);
  auto* blank = new KEPDlgLabel(row, "blankLabel1");
  blank->SetTitle(KEPUnicodeString(u"-"));
  blank->SetVisibility(KEPDlgHide);
  blank->SetGridConstraints(0, 1, 1, 1, KEPDlgGridLeft);
  auto* spinner = new KEPDlgSpinner(row, "scalarSpinner", 0x60000);
  spinner->SetMinMaxStep(0.0, 1.0, 0.01);
  spinner->SetFormat("%.2f");
  spinner->SetValue(0.25);
  spinner->SetShortHelp(KEPUnicodeString(u"How rough"));
  spinner->SetGridConstraints(0, 2, 1, 2, 90);
  auto* check = new KEPDlgCheckButton(row, "booleanCheck");
  check->SetGridConstraints(1, 0, 1, 1, 0);
  row->SetGridColumnResizable(2);
  row->SetHorizontalAttachment(1, KEPDlgTabAcross, {label, spinner});
  return root;
}

TEST_F(DlgTree, TheJsonOfASmallClassicTree) {
  Root root = MakeRow();
  const nlohmann::json tree = nlohmann::json::parse(KEPVidToJsonText(root.Get()));
  EXPECT_EQ(tree, KEPVidToJson(root.Get())) << "both writers give one document";
  EXPECT_EQ(tree["class"], "KEPDlgFrame");
  const nlohmann::json& row = tree["children"][0];
  EXPECT_EQ(row["state"]["style"], 0xc0000);
  EXPECT_EQ(row["state"]["resizableColumns"], nlohmann::json::array({2}));
  EXPECT_EQ(row["state"]["tabulations"],
            nlohmann::json::array({"h1 kind=5: parameterLabel1, scalarSpinner"}));
  const nlohmann::json& label = row["children"][0];
  EXPECT_EQ(label["state"]["title"], "Roughness");
  EXPECT_EQ(label["cell"]["attach"], nlohmann::json::array({"left", "right", "top", "bottom"}));
  const nlohmann::json& blank = row["children"][1];
  EXPECT_EQ(blank["visible"], false);
  EXPECT_EQ(blank["cell"]["attach"], nlohmann::json::array({"left"}));
  const nlohmann::json& spinner = row["children"][2];
  EXPECT_EQ(spinner["path"], "parameterDialog1/scalarSpinner");
  EXPECT_EQ(spinner["tooltip"], "How rough");
  EXPECT_EQ(spinner["cell"]["columnSpan"], 2);
  EXPECT_EQ(spinner["state"]["doubleMode"], true);
  EXPECT_EQ(spinner["state"]["value"], 0.25);
  EXPECT_EQ(spinner["state"]["text"], "0.25");
  EXPECT_EQ(row["children"][3]["state"]["checked"], false);

  const std::string text = KEPVidToText(root.Get());
  EXPECT_NE(text.find("KEPDlgLabel blankLabel1 [0,1] (hidden)"), std::string::npos) << text;
  EXPECT_NE(text.find("KEPDlgSpinner scalarSpinner"), std::string::npos) << text;
}

TEST_F(DlgTree, InjectionByPathAndItsRefusals) {
  Root root = MakeRow();
  KEPDialog* row = dynamic_cast<KEPDialog*>(root->FindNamedChild("parameterDialog1"));
  ASSERT_NE(row, nullptr);
  auto* spinner = dynamic_cast<KEPDlgSpinner*>(row->FindNamedChild("scalarSpinner"));
  int modifies = 0;
  Count(root.Get(), spinner, "KEPDlgSpinnerModifyNotification", &modifies);
  std::string error;
  ASSERT_EQ(
      KEPVidInject(root.Get(), "parameterDialog1/scalarSpinner", KEPVidAction::Set, "0.5", error),
      S_OK)
      << error;
  EXPECT_EQ(spinner->GetValue(), 0.5);
  EXPECT_EQ(modifies, 1);

  struct Case {
    const char* what;
    std::function<void()> arrange;
    const char* path;
    KEPVidAction action;
    const char* argument;
    const char* message;
  };
  const Case cases[] = {
      {"an insensitive ancestor", [&] { row->SetSensitivity(KEPDlgDisable); }, "scalarSpinner",
       KEPVidAction::Set, "0.1", "its ancestor KEPDlgFrame \"parameterDialog1\" is insensitive"},
      {"a hidden widget", [&] { spinner->SetVisibility(KEPDlgHide); }, "scalarSpinner",
       KEPVidAction::Set, "0.1", "it is invisible"},
      {"an action the class does not take", [] {}, "booleanCheck", KEPVidAction::Select, "0",
       "does not take the action 'select'"},
      {"a label takes nothing", [] {}, "parameterLabel1", KEPVidAction::Press, "",
       "KEPDlgLabel \"parameterLabel1\": does not take the action 'press'"},
      {"an unreadable number", [] {}, "scalarSpinner", KEPVidAction::Set, "half",
       "\"half\" is not a number"},
      {"a path that resolves to nothing", [] {}, "parameterDialog1/nothing", KEPVidAction::Set, "0",
       "segment 2 \"nothing\" names no widget"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    c.arrange();
    EXPECT_EQ(KEPVidInject(root.Get(), c.path, c.action, c.argument, error), E_INVALIDARG);
    EXPECT_NE(error.find(c.message), std::string::npos) << error;
    row->SetSensitivity(KEPDlgEnable);
    spinner->SetVisibility(KEPDlgShow);
  }
  EXPECT_EQ(spinner->GetValue(), 0.5);
  EXPECT_EQ(modifies, 1) << "a refused action notifies nothing";
}

TEST_F(DlgTree, TheClassicActionWordsAreRead) {
  KEPVidAction action = KEPVidAction::Set;
  ASSERT_TRUE(KEPVidParseAction("Drag", action));
  EXPECT_EQ(action, KEPVidAction::Drag);
  ASSERT_TRUE(KEPVidParseAction(" ok ", action));
  EXPECT_EQ(action, KEPVidAction::Ok);
  ASSERT_TRUE(KEPVidParseAction("CANCEL", action));
  EXPECT_EQ(action, KEPVidAction::Cancel);
  EXPECT_FALSE(KEPVidParseAction("okay", action));
}

// An owned representation dies when replaced; an unowned one stays its caller's. The viewer
// keeps what it shows alive while it shows it.
TEST_F(DlgTree, RepresentationOwnership) {
  Root root = MakeRoot();
  auto* slider = new KEPRbaSlider(root.Get(), "slider", 110, 16, 0xc0000);
  int destroyed = 0;
  slider->SetBackgroundRep(new CountedRep(&destroyed), 1);
  slider->SetBackgroundRep(new CountedRep(&destroyed), 1);
  EXPECT_EQ(destroyed, 1) << "the owned representation was destroyed when replaced";

  KEP_var<KEP2DRep> mine = KEP_var<KEP2DRep>::Adopt(new CountedRep(&destroyed));
  slider->SetBackgroundRep(mine.Get(), 0);
  EXPECT_EQ(destroyed, 2);
  EXPECT_FALSE(slider->OwnsBackgroundRep());
  slider->SetBackgroundRep(mine.Get(), 0);  // the same one again stays alive
  slider->SetBackgroundRep(nullptr, 0);
  EXPECT_EQ(destroyed, 2) << "an unowned representation is not destroyed";
  EXPECT_EQ(mine->GetRefCount(), 1u);

  auto* viewer = new KEP2DViewer(root.Get(), "previewFrameViewer", 0xc0000, 64, 48, 0);
  auto* shown = new CountedRep(&destroyed);
  viewer->AddRep(shown);
  viewer->AddRep(shown);
  EXPECT_EQ(viewer->GetRepCount(), 1u);
  shown->Release();  // the owner lets go: the viewer still draws it
  EXPECT_EQ(destroyed, 2);
  viewer->RemoveRep(shown);
  EXPECT_EQ(destroyed, 3);
  viewer->AddRep(mine.Get());
  slider->SetBackgroundRep(new CountedRep(&destroyed), 1);
  root = NULL_var;
  EXPECT_EQ(destroyed, 4) << "the slider released its owned representation when it died";
  EXPECT_EQ(mine->GetRefCount(), 1u) << "and the viewer its reference";
}

TEST_F(DlgTree, AnImageRepresentationOfPixelsMadeInMemory) {
  const std::uint8_t rgb[] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 10, 20, 30};
  KEP_var<KEPPixelImage> image =
      KEP_var<KEPPixelImage>::Adopt(KEPPixelImage::Create(2, 2, KEPPixelFormat_RGB, rgb, 2));
  ASSERT_TRUE(image);
  const std::vector<std::uint8_t> rgba = {255, 0, 0,   255, 0,  255, 0,  255,
                                          0,   0, 255, 255, 10, 20,  30, 255};
  EXPECT_EQ(image->GetPixels(), rgba);
  EXPECT_EQ(image->GetDeallocationMode(), 2);
  EXPECT_EQ(KEPPixelImage::Create(0, 2, KEPPixelFormat_RGB, rgb, 2), nullptr);
  EXPECT_EQ(KEPPixelImage::Create(2, 2, 7, rgb, 2), nullptr);
  EXPECT_EQ(KEPPixelImage::Create(2, 2, KEPPixelFormat_RGB, nullptr, 2), nullptr);

  auto* rep = new KEP2DImagePixelRep(image.Get(), 2.0, 2.0, 0, 0, 0, 0);
  EXPECT_EQ(image->GetRefCount(), 2u) << "the representation holds the image";
  EXPECT_EQ(rep->GetControllerId(), 1);
  rep->ClearControllerId();
  Root root = MakeRoot();
  auto* slider = new KEPRbaSlider(root.Get(), "slider", 110, 16, 0xc0000);
  int width = 0, height = 0;
  slider->GetBackgroundAreaSize(width, height);
  EXPECT_EQ(width, 106);
  EXPECT_EQ(height, 12);
  slider->SetBackgroundRep(rep, 1);
  const nlohmann::json state = KEPVidToJson(slider)["state"];
  EXPECT_EQ(state["backgroundRep"], "KEP2DImagePixelRep");
  EXPECT_EQ(state["controllerId"], 0);
  EXPECT_EQ(state["imageSize"], nlohmann::json::array({2, 2}));
  root = NULL_var;
  EXPECT_EQ(image->GetRefCount(), 1u);
}

TEST_F(DlgTree, ContainerAndViewerGeometry) {
  Root root = MakeRoot();
  auto* container = new KEPDlgContainer(root.Get(), "container");
  container->SetRectDimensions(1, 1, 290, 360);
  int x = 0, y = 0, w = 0, h = 0;
  container->GetRectDimensions(x, y, w, h);
  EXPECT_EQ(w, 290);
  EXPECT_EQ(h, 360);
  auto* viewer = new KEP2DViewer(container, "viewer", 0xc0000, 64, 48);
  viewer->SetManipulation(0);
  viewer->SetBackgroundColor(0.0f, 0.0f, 0.0f, 1);
  EXPECT_EQ(viewer->GetDrawCount(), 1);
  viewer->SetBackgroundColor(2.0f, -1.0f, 0.5f, 0);
  EXPECT_EQ(viewer->GetDrawCount(), 1);
  EXPECT_EQ(viewer->GetBackgroundColor(), (KEPVidColor{255, 0, 128, 255}));
  viewer->SetGraphicSize(100, 10);
  viewer->GetGraphicSize(w, h);
  EXPECT_EQ(w, 100);
  const nlohmann::json state = KEPVidToJson(viewer)["state"];
  EXPECT_EQ(state["manipulation"], false);
  EXPECT_EQ(state["graphicSize"], nlohmann::json::array({100, 10}));
}

}  // namespace
