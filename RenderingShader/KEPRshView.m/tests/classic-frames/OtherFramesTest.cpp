// The classic colour, texture and light-profile frames: what they show of the parameter and what
// a person's choice writes back (or, refused by the host, leaves as it was).
#include "FramesTestSupport.h"
#include "KEPDlgPushButton.h"
#include "KEPDlgSelectorList.h"
#include "KEPDlgSpinner.h"
#include "KEPIPLMDmtDocument.h"
#include "KEPIRshLightProfileParameter.h"
#include "KEPRbaImageDocImmSelector.h"
#include "KEPRshParameterColorFrame.h"
#include "KEPRshParameterLightProfileFrame.h"
#include "KEPRshParameterTextureFrame.h"
#include "KEPTextureDocument.h"
#include "KEPVidCtlEditor.h"

namespace keptest {
namespace {

using OtherFramesTest = FrameTest;

struct TextureValue {
  std::string image;
  std::vector<KEPString> groups;
  double dpi = 0.0;
};

TextureValue Texture(KEPIRshParameter* p) {
  TextureValue value;
  KEPIPLMDmtDocument* document = nullptr;
  if (FAILED(p->GetTextureValue(document)) || !document) return value;
  KEPUnicodeString path;
  document->GetImagePath(path);
  value.image = path.ToUTF8();
  document->GetGroups(value.groups);
  document->GetDpi(value.dpi);
  document->Release();
  return value;
}

KEPHostValue TextureOf(const std::string& path, std::vector<KEPString> groups = {}) {
  const auto document = KEP_var<KEPTextureDocument>::Adopt(
      KEPTextureDocument::Create(KEPUnicodeString::FromUTF8(path), 96.0, std::move(groups)));
  return KEPHostValue::Texture(document.Get());
}

TEST_F(OtherFramesTest, ColourSpinnersShowAndWriteTheChannelsKeepingAlpha) {
  KEPHostParameter* p = Param(KEPHostValue::Color(0.2f, 0.4f, 0.6f, 0.5f));
  auto* frame = Build<KEPRshParameterColorFrame>(p);
  for (int i = 0; i < 3; ++i)
    EXPECT_FLOAT_EQ(static_cast<float>(frame->GetSpinner(i)->GetValue()),
                    0.2f * static_cast<float>(i + 1));
  EXPECT_EQ(frame->FindNamedChild("greenSpinner"), frame->GetSpinner(1));
  Act(frame->GetSpinner(1), KEPVidAction::Set, "0.9");
  float r = 0, g = 0, b = 0, a = 0;
  p->GetColorValue(r, g, b, &a);
  EXPECT_EQ(std::vector<float>({r, g, b, a}), std::vector<float>({0.2f, 0.9f, 0.6f, 0.5f}));
  Act(frame->GetSpinner(0), KEPVidAction::Set, "7");  // kept inside the range 0..1
  p->GetColorValue(r, g, b, &a);
  EXPECT_EQ(r, 1.0f);
}

TEST_F(OtherFramesTest, TextureSelectorWritesANewDocumentOrKeepsTheOldOneWhenRefused) {
  const std::string checker = SourcePath("samples/startup/textures/checker.png");
  KEPHostParameter* p = Param(KEPHostValue::Texture(nullptr));
  auto* frame = Build<KEPRshParameterTextureFrame>(p);
  KEPRbaImageDocImmSelector* selector = frame->GetSelector();
  EXPECT_FALSE(selector->HasImage());
  EXPECT_EQ(frame->GetLayerSelector()->GetVisibility(), KEPDlgHide);  // nothing to choose

  Act(selector, KEPVidAction::Choose, "image=" + checker + " groups=roof dpi=150");
  TextureValue stored = Texture(p);
  EXPECT_EQ(stored.image, checker);
  EXPECT_EQ(stored.groups, std::vector<KEPString>({"roof"}));
  EXPECT_EQ(stored.dpi, 150.0);
  // The group the image uses is offered by the chooser.
  EXPECT_EQ(frame->GetLayerSelector()->GetLineCount(), 1);
  EXPECT_EQ(frame->GetLayerSelector()->GetSelect(), 0);

  TraceCapture capture;
  Act(selector, KEPVidAction::Choose, "image=" + checker + ".missing");
  EXPECT_EQ(Texture(p).image, checker);
  EXPECT_EQ(selector->GetImage(), checker);  // shows the stored value again

  Act(selector, KEPVidAction::Choose, "image=");
  EXPECT_TRUE(Texture(p).image.empty());
}

TEST_F(OtherFramesTest, LayerChooserOffersConfiguredGroupsAndWritesTheOneSelected) {
  const std::string checker = SourcePath("samples/startup/textures/checker.png");
  KEPHostParameter* p =
      Param(TextureOf(checker, {"Walls"}), {{".LayerGroupName", " Roof ;Walls, Windows,"}});
  auto* frame = Build<KEPRshParameterTextureFrame>(p);
  KEPDlgSelectorList* chooser = frame->GetLayerSelector();
  EXPECT_EQ(chooser->GetTitle().ToUTF8(), "SVG Layers Selector");
  EXPECT_EQ(chooser->GetVisibility(), KEPDlgShow);
  ASSERT_EQ(chooser->GetLineCount(), 3);
  EXPECT_EQ(chooser->GetLine(0).ToUTF8(), "Roof");
  EXPECT_EQ(chooser->GetLine(2).ToUTF8(), "Windows");
  EXPECT_EQ(chooser->GetSelect(), 1);
  EXPECT_EQ(frame->GetSelector()->GetResolution(), 96.0);

  Act(chooser, KEPVidAction::Select, "Windows");
  const TextureValue stored = Texture(p);
  EXPECT_EQ(stored.image, checker);
  EXPECT_EQ(stored.groups, std::vector<KEPString>({"Windows"}));
  EXPECT_EQ(stored.dpi, 96.0);
  EXPECT_EQ(frame->GetSelector()->GetLayerGroups(), std::vector<KEPString>({"Windows"}));
}

TEST_F(OtherFramesTest, LightProfileEditorSetsAndTheButtonClearsTheProfile) {
  KEPHostValue value;
  value.type = KEPRmaType::LightProfile;
  value.lightProfile = "/profiles/spot.ies";
  KEPHostParameter* p = Param(value);
  auto* frame = Build<KEPRshParameterLightProfileFrame>(p);
  EXPECT_EQ(frame->GetEditor()->GetText().ToUTF8(), "/profiles/spot.ies");
  const auto profile = KEPQueryVar<KEPIRshLightProfileParameter>(p);
  KEPString stored;

  Act(frame->GetEditor(), KEPVidAction::Type, "  /profiles/wide.ies ");
  profile->GetLightProfile(stored);
  EXPECT_EQ(stored, "/profiles/wide.ies");
  EXPECT_EQ(frame->GetEditor()->GetText().ToUTF8(), "/profiles/wide.ies");

  Act(frame->GetClearButton(), KEPVidAction::Press);
  profile->GetLightProfile(stored);
  EXPECT_EQ(stored, "");
  EXPECT_TRUE(frame->GetEditor()->GetText().IsEmpty());
  // Other types do not hold a profile.
  EXPECT_EQ(KEPQueryVar<KEPIRshLightProfileParameter>(Param(KEPHostValue::Scalar(1.0f)))
                ->SetLightProfile("x.ies"),
            E_FAIL);
}

}  // namespace
}  // namespace keptest
