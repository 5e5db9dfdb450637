// The preview frame: its viewer, its size, and who owns the picture it shows.
#include "KEP2DImagePixelRep.h"
#include "KEP2DViewer.h"
#include "KEPDlgFrame.h"
#include "KEPPixelImage.h"
#include "KEPRshPreviewFrame.h"
#include "KEPTestSupport.h"
#include "KEP_var.h"

namespace keptest {
namespace {

/// A representation that tells when it dies.
class ProbeRep : public KEP2DRep {
 public:
  explicit ProbeRep(bool& dead) : dead_(dead) { dead_ = false; }

 protected:
  ~ProbeRep() override { dead_ = true; }

 private:
  bool& dead_;
};

class PreviewFrameTest : public Fixture {
 protected:
  void SetUp() override {
    Fixture::SetUp();
    parent_ = KEP_var<KEPDlgFrame>::Adopt(new KEPDlgFrame(nullptr, "parent"));
    frame_ = new KEPRshPreviewFrame(parent_.Get(), "preview", 64, 32, 0x1234);
  }
  void TearDown() override {
    parent_.Reset();
    Fixture::TearDown();
  }
  /// Destroys the frame (with its parent).
  void CloseFrame() { parent_.Reset(); }

  KEP_var<KEPDlgFrame> parent_;
  KEPRshPreviewFrame* frame_ = nullptr;
};

TEST_F(PreviewFrameTest, ViewerIsSetUpAsAFixedBlackPicture) {
  KEP2DViewer* viewer = frame_->GetViewer();
  ASSERT_NE(viewer, nullptr);
  EXPECT_EQ(viewer->GetName(), "previewFrameViewer");
  EXPECT_EQ(viewer->GetFather(), frame_);
  EXPECT_EQ(frame_->GetStyle(), 0xC0000);  // the caller's style is not used
  EXPECT_EQ(viewer->GetStyle(), 0xC0000);
  EXPECT_FALSE(viewer->GetManipulation());
  EXPECT_EQ(viewer->GetGridAttachment(), KEPDlgGridAll);
  const KEPVidColor black = viewer->GetBackgroundColor();
  EXPECT_EQ((std::vector<int>{black.red, black.green, black.blue}), (std::vector<int>{0, 0, 0}));
  double box[4] = {};
  viewer->GetVisibleBox(box[0], box[1], box[2], box[3]);
  EXPECT_EQ((std::vector<double>(box, box + 4)), (std::vector<double>{0, 0, 63, 31}));
  EXPECT_FALSE(frame_->IsBackgroundColorSet());
  EXPECT_EQ(frame_->GetBackgroundRep(), nullptr);
}

TEST_F(PreviewFrameTest, SizeIsTheConstructionSizeAfterAResize) {
  frame_->GetViewer()->SetGraphicSize(300, 200);
  int width = 0, height = 0;
  frame_->GetSize(width, height);
  EXPECT_EQ(width, 64);
  EXPECT_EQ(height, 32);
}

TEST_F(PreviewFrameTest, BackgroundColourIsPassedOnAndRedrawn) {
  const int draws = frame_->GetViewer()->GetDrawCount();
  frame_->SetBackgroundColor(1.0f, 0.5f, 0.0f);
  EXPECT_TRUE(frame_->IsBackgroundColorSet());
  const KEPVidColor colour = frame_->GetViewer()->GetBackgroundColor();
  EXPECT_EQ(colour.red, 255);
  EXPECT_EQ(colour.blue, 0);
  EXPECT_GT(frame_->GetViewer()->GetDrawCount(), draws);
}

TEST_F(PreviewFrameTest, OwnedPictureDiesWhenReplacedOrWithTheFrame) {
  bool firstDead = false, secondDead = false;
  auto* first = new ProbeRep(firstDead);
  frame_->SetBackgroundRep(first, 1);  // the caller's reference goes to the frame
  EXPECT_EQ(first->GetControllerId(), 0);
  EXPECT_EQ(frame_->GetViewer()->GetRepCount(), 1u);
  EXPECT_TRUE(frame_->OwnsBackgroundRep());

  auto* second = new ProbeRep(secondDead);
  frame_->SetBackgroundRep(second, 1);
  EXPECT_TRUE(firstDead);
  ASSERT_EQ(frame_->GetViewer()->GetRepCount(), 1u);
  EXPECT_EQ(frame_->GetViewer()->GetRep(0), second);

  frame_->Update();
  EXPECT_FALSE(secondDead);
  CloseFrame();
  EXPECT_TRUE(secondDead);
}

TEST_F(PreviewFrameTest, NullRemovesThePictureAndRedraws) {
  bool dead = false;
  frame_->SetBackgroundRep(new ProbeRep(dead), 1);
  const int draws = frame_->GetViewer()->GetDrawCount();
  frame_->SetBackgroundRep(nullptr, 0);
  EXPECT_TRUE(dead);
  EXPECT_EQ(frame_->GetViewer()->GetRepCount(), 0u);
  EXPECT_EQ(frame_->GetBackgroundRep(), nullptr);
  EXPECT_EQ(frame_->GetViewer()->GetDrawCount(), draws + 1);
  frame_->Update();  // nothing to show again
  EXPECT_EQ(frame_->GetViewer()->GetRepCount(), 0u);
}

TEST_F(PreviewFrameTest, PictureNotOwnedStaysTheCallers) {
  bool dead = false;
  auto picture = KEP_var<KEP2DRep>::Adopt(new ProbeRep(dead));
  frame_->SetBackgroundRep(picture.Get(), 0);
  frame_->SetBackgroundRep(nullptr, 0);
  EXPECT_FALSE(dead);
  EXPECT_EQ(picture->GetRefCount(), 1u);

  // Given up by the caller while shown: the viewer keeps it alive, through an update too.
  frame_->SetBackgroundRep(picture.Get(), 0);
  picture.Reset();
  EXPECT_FALSE(dead);
  frame_->Update();
  EXPECT_FALSE(dead);
  EXPECT_EQ(frame_->GetViewer()->GetRepCount(), 1u);
  CloseFrame();
  EXPECT_TRUE(dead);
}

TEST_F(PreviewFrameTest, ShowsAPixelImage) {
  const std::uint8_t pixels[4] = {255, 0, 0, 255};
  auto image =
      KEP_var<KEPPixelImage>::Adopt(KEPPixelImage::Create(1, 1, KEPPixelFormat_RGBA, pixels, 0));
  ASSERT_TRUE(image);
  frame_->SetBackgroundRep(new KEP2DImagePixelRep(image.Get(), 0.0, 0.0), 1);
  auto* shown = dynamic_cast<KEP2DImagePixelRep*>(frame_->GetBackgroundRep());
  ASSERT_NE(shown, nullptr);
  EXPECT_EQ(shown->GetImage(), image.Get());
}

TEST_F(PreviewFrameTest, DestructionIsTraced) {
  TraceCapture trace(2);
  CloseFrame();
  EXPECT_EQ(trace.Texts("module"),
            (std::vector<std::string>{
                "(KEPRshPreviewFrame::~KEPRshPreviewFrame) Destructor of 'preview'\n",
                "(KEPRshPreviewFrame::~KEPRshPreviewFrame) Done\n"}));
}

}  // namespace
}  // namespace keptest
