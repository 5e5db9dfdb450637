// The texture widget: the undefined image, an image shown with its groups and resolution, a
// choice written back as a new document (relative paths resolved against the material
// document's directory), refused images writing nothing, the render lock, following the model
// and outliving the parameter.
#include <filesystem>
#include <fstream>

#include "ImmWidgetTestSupport.h"
#include "KEPIPLMDmtDocument.h"
#include "KEPRbaImageDocImmSelector.h"
#include "KEPRshParameterTextureImmWidget.h"
#include "KEPTextureDocument.h"

namespace keptest {
namespace {

namespace fs = std::filesystem;

class TextureWidgetTest : public ImmWidgetTest {
 protected:
  void SetUp() override {
    ImmWidgetTest::SetUp();
    dir_ = fs::path(::testing::TempDir()) / ("texture-widget-" + std::to_string(::getpid()));
    fs::create_directories(dir_ / "images");
    fs::copy_file(Checker(), dir_ / "images" / "second.png", fs::copy_options::overwrite_existing);
    std::ofstream(dir_ / "images" / "notes.png") << "not an image";
  }
  void TearDown() override {
    ImmWidgetTest::TearDown();
    fs::remove_all(dir_);
  }
  static std::string Checker() {
    return fs::path(SourcePath("samples/startup/textures/checker.png")).lexically_normal().string();
  }
  /// Texture "t" alone in a node of its own, holding `document` (null: no image).
  KEPHostParameter* Tex(KEPTextureDocument* document) {
    const auto held = KEP_var<KEPTextureDocument>::Adopt(document);
    return ParamOf(Node({{"t", KEPHostValue::Texture(held.Get())}}), "t");
  }
  static KEPRbaImageDocImmSelector* Selector(const KEPVidWidget* w) {
    return dynamic_cast<KEPRbaImageDocImmSelector*>(w->FindNamedChild("textureEditor"));
  }
  struct Held {
    std::string path;
    std::vector<KEPString> groups;
    double dpi = 0.0;
    bool operator==(const Held&) const = default;
  };
  static Held Stored(KEPIRshParameter* p) {
    KEP_var<KEPIPLMDmtDocument> document;
    Held held;
    if (FAILED(p->GetTextureValue(*document.Out())) || !document) return held;
    KEPUnicodeString path;
    document->GetImagePath(path);
    held.path = path.ToUTF8();
    document->GetGroups(held.groups);
    if (FAILED(document->GetDpi(held.dpi))) held.dpi = -1.0;
    return held;
  }
  fs::path dir_;
};

TEST_F(TextureWidgetTest, ShowsTheImageGroupsAndResolutionOrTheUndefinedImage) {
  const auto* none = Make<KEPRshParameterTextureImmWidget>(Tex(nullptr));
  ASSERT_NE(Selector(none), nullptr);
  EXPECT_FALSE(Selector(none)->HasImage());
  EXPECT_EQ(Selector(none)->GetOptions(), 0);
  EXPECT_EQ(Selector(none)->GetFlags(), 4);

  const auto* shown = Make<KEPRshParameterTextureImmWidget>(Tex(KEPTextureDocument::Create(
      KEPUnicodeString::FromUTF8(Checker()), 150.0, {"Background", "Stripes"})));
  EXPECT_EQ(Selector(shown)->GetImage(), Checker());
  EXPECT_EQ(Selector(shown)->GetLayerGroups(), std::vector<KEPString>({"Background", "Stripes"}));
  EXPECT_EQ(Selector(shown)->GetResolution(), 150.0);
  // No stored resolution reads 72.
  const auto* plain = Make<KEPRshParameterTextureImmWidget>(
      Tex(KEPTextureDocument::Create(KEPUnicodeString::FromUTF8(Checker()))));
  EXPECT_EQ(Selector(plain)->GetResolution(), 72.0);
}

TEST_F(TextureWidgetTest, ChoiceWritesANewDocumentResolvedLikeTheMaterialDocument) {
  KEPHostParameter* p = Tex(KEPTextureDocument::Create(KEPUnicodeString::FromUTF8(Checker())));
  TheWorld().Document()->path = (dir_ / "room.rshdoc.json").string();
  const auto* w = Make<KEPRshParameterTextureImmWidget>(p);
  const auto* other = Make<KEPRshParameterTextureImmWidget>(p);
  std::vector<bool> lockedOut;
  const int token =
      KEPRshModelEvents::AddParameterObserver([&](KEPIRshParameter*, KEPRshParameterChangeKind) {
        lockedOut.push_back(!RenderThreadCanLock());
      });
  Act(Selector(w), KEPVidAction::Choose, "image=images/second.png groups=Base,Top dpi=300");
  KEPRshModelEvents::RemoveObserver(token);
  const std::string second = (dir_ / "images" / "second.png").lexically_normal().string();
  EXPECT_EQ(Stored(p), (Held{second, {"Base", "Top"}, 300.0}));
  EXPECT_EQ(lockedOut, std::vector<bool>({true}));
  // Both selectors show the parameter's image as it is held.
  EXPECT_EQ(Selector(w)->GetImage(), second);
  EXPECT_EQ(Selector(other)->GetImage(), second);
  EXPECT_EQ(Selector(other)->GetResolution(), 300.0);

  // Groups alone: the same image, a new document.
  Act(Selector(other), KEPVidAction::Choose, "groups=Top");
  EXPECT_EQ(Stored(p), (Held{second, {"Top"}, 300.0}));
  // The undefined image: no image any more.
  Act(Selector(w), KEPVidAction::Choose, "image=\"\"");
  EXPECT_EQ(Stored(p), Held{});
  EXPECT_FALSE(Selector(other)->HasImage());
}

TEST_F(TextureWidgetTest, ImagesTheHostCannotReadAreRefusedAndNothingIsWritten) {
  KEPHostParameter* p =
      Tex(KEPTextureDocument::Create(KEPUnicodeString::FromUTF8(Checker()), 96.0, {"Stripes"}));
  TheWorld().Document()->path = (dir_ / "room.rshdoc.json").string();
  const auto* w = Make<KEPRshParameterTextureImmWidget>(p);
  for (const char* choice :
       {"image=images/missing.png", "image=images/notes.png dpi=300", "image=images"}) {
    SCOPED_TRACE(choice);
    const unsigned long long writes = p->WriteCount();
    TraceCapture capture;
    Act(Selector(w), KEPVidAction::Choose, choice);
    EXPECT_EQ(p->WriteCount(), writes);
    EXPECT_EQ(Stored(p), (Held{Checker(), {"Stripes"}, 96.0}));
    EXPECT_EQ(Selector(w)->GetImage(), Checker());
    EXPECT_EQ(Selector(w)->GetResolution(), 96.0);
    ASSERT_EQ(capture.Entries().size(), 1u);
    EXPECT_EQ(capture.Entries()[0].level, KEPTraceLevel::Error);
    EXPECT_TRUE(capture.Contains(dir_.string())) << capture.Entries()[0].text;
  }
}

TEST_F(TextureWidgetTest, OutlivingTheParameterDoesNothing) {
  const auto* w = Make<KEPRshParameterTextureImmWidget>(
      Tex(KEPTextureDocument::Create(KEPUnicodeString::FromUTF8(Checker()))));
  DropModel();
  EXPECT_FALSE(w->GetParameter());
  Act(Selector(w), KEPVidAction::Choose, "dpi=200");
  EXPECT_EQ(Make<KEPRshParameterTextureImmWidget>(nullptr)->GetChildCount(), 0u);
}

}  // namespace
}  // namespace keptest
