#include "KEP2DViewer.h"

#include <algorithm>
#include <cmath>

#include "KEP2DRep.h"

KEP_IMPLEMENT_CLASS(KEP2DViewer, KEPDialog, "System")

namespace {
int Channel(float value) {
  if (!(value > 0.0f)) return 0;  // NaN counts as 0
  if (value >= 1.0f) return 255;
  return static_cast<int>(std::lround(value * 255.0f));
}
}  // namespace

KEP2DViewer::KEP2DViewer(KEPDialog* father, const KEPString& name, int style, int width, int height,
                         int manipulation)
    : KEPDialog(father, name, style),
      width_(width),
      height_(height),
      manipulation_(manipulation != 0) {
  SetMinimumSize(width, height);
  box_[2] = width;
  box_[3] = height;
}

KEP2DViewer::~KEP2DViewer() {
  while (!reps_.empty()) {
    KEP2DRep* rep = reps_.back();
    reps_.pop_back();
    rep->Release();
  }
}

void KEP2DViewer::SetBackgroundColor(float red, float green, float blue, int redraw) {
  KEPDialog::SetBackgroundColor(KEPVidColor{Channel(red), Channel(green), Channel(blue), 255});
  if (redraw) Draw();
}

void KEP2DViewer::GetGraphicSize(int& width, int& height) const {
  width = width_;
  height = height_;
}

void KEP2DViewer::SetGraphicSize(int width, int height) {
  width_ = width;
  height_ = height;
}

void KEP2DViewer::SetVisibleBox(double xMin, double yMin, double xMax, double yMax) {
  box_[0] = xMin;
  box_[1] = yMin;
  box_[2] = xMax;
  box_[3] = yMax;
}

void KEP2DViewer::GetVisibleBox(double& xMin, double& yMin, double& xMax, double& yMax) const {
  xMin = box_[0];
  yMin = box_[1];
  xMax = box_[2];
  yMax = box_[3];
}

void KEP2DViewer::AddRep(KEP2DRep* rep) {
  if (!rep || std::find(reps_.begin(), reps_.end(), rep) != reps_.end()) return;
  rep->AddRef();
  reps_.push_back(rep);
}

void KEP2DViewer::RemoveRep(KEP2DRep* rep) {
  const auto it = std::find(reps_.begin(), reps_.end(), rep);
  if (it == reps_.end()) return;
  reps_.erase(it);
  rep->Release();
}

void KEP2DViewer::DescribeState(KEPVidStateWriter& writer) const {
  KEPDialog::DescribeState(writer);
  const int size[] = {width_, height_};
  writer.IntList("graphicSize", size);
  writer.DoubleList("visibleBox", {box_[0], box_[1], box_[2], box_[3]});
  writer.Bool("manipulation", manipulation_);
  std::vector<std::string> reps;
  for (const KEP2DRep* rep : reps_) reps.emplace_back(rep->GetMetaObject()->Name());
  writer.TextList("reps", reps);
  writer.Int("draws", draws_);
}
