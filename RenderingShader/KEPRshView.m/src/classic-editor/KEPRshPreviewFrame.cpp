#include "KEPRshPreviewFrame.h"

#include "KEP2DRep.h"
#include "KEP2DViewer.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshPreviewFrame, KEPDlgFrame, "RenderingShader")

namespace {
constexpr int kPreviewStyle = 0xC0000;
}  // namespace

KEPRshPreviewFrame::KEPRshPreviewFrame(KEPDialog* parent, const KEPString& name, const int& width,
                                       const int& height, int /*style*/)
    : KEPDlgFrame(parent, name, kPreviewStyle), width_(width), height_(height) {
  viewer_ = new KEP2DViewer(this, "previewFrameViewer", kPreviewStyle, width, height, 0);
  // A preview is a fixed picture: no panning or zooming.
  viewer_->SetManipulation(0);
  viewer_->SetBackgroundColor(0.0f, 0.0f, 0.0f, 1);
  int graphicWidth = 0;
  int graphicHeight = 0;
  viewer_->GetGraphicSize(graphicWidth, graphicHeight);
  viewer_->SetVisibleBox(0.0, 0.0, graphicWidth - 1.0, graphicHeight - 1.0);
  Attach4Sides(viewer_);
}

KEPRshPreviewFrame::~KEPRshPreviewFrame() {
  KEPModuleTrace::Trace(2, "(KEPRshPreviewFrame::~KEPRshPreviewFrame) Destructor of '%s'\n",
                        GetName().c_str());
  // An owned picture dies with the frame; the viewer (a child) lets go of its own reference.
  if (rep_ && owned_) rep_->Release();
  rep_ = nullptr;
  KEPModuleTrace::Trace(2, "(KEPRshPreviewFrame::~KEPRshPreviewFrame) Done\n");
}

void KEPRshPreviewFrame::GetSize(int& width, int& height) const {
  width = width_;
  height = height_;
}

void KEPRshPreviewFrame::SetBackgroundColor(float red, float green, float blue) {
  colorSet_ = 1;
  viewer_->SetBackgroundColor(red, green, blue, 1);
}

void KEPRshPreviewFrame::SetBackgroundRep(KEP2DRep* rep, int owned) {
  if (rep_) {
    viewer_->RemoveRep(rep_);
    if (owned_) rep_->Release();
    rep_ = nullptr;
  }
  rep_ = rep;
  // A preview's picture stays where it is drawn.
  if (rep_) rep_->ClearControllerId();
  owned_ = owned;
  if (rep_) viewer_->AddRep(rep_);
  viewer_->Draw();
}

void KEPRshPreviewFrame::Update() {
  if (!viewer_) return;
  if (rep_) {
    // The viewer's reference may be the only one left of a picture that is not ours.
    rep_->AddRef();
    viewer_->RemoveRep(rep_);
    viewer_->AddRep(rep_);
    rep_->Release();
  }
  viewer_->Draw();
}
