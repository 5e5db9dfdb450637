// KEPRshPreviewFrame: a frame that shows one 2D picture (a shader's swatch or preview) in a
// fixed-size 2D viewer "previewFrameViewer", over a background colour.
//
// A representation given with `owned` not 0 belongs to the frame from then on: the frame releases
// it when it is replaced or the frame dies. One given with 0 stays the caller's; replacing it only
// takes it out of the viewer.
#pragma once

#include "KEPDlgFrame.h"
#include "KEPRshViewModule.h"

class KEP2DRep;
class KEP2DViewer;

class KEPRSHVIEW_API KEPRshPreviewFrame : public KEPDlgFrame {
  KEP_DECLARE_CLASS
 public:
  /// A frame under `parent` (which owns it) whose viewer is `width` × `height` pixels. The frame
  /// and the viewer always have the style 0xC0000; `style` is not used.
  KEPRshPreviewFrame(KEPDialog* parent, const KEPString& name, const int& width, const int& height,
                     int style = 0);

  /// The size given at construction, whatever the viewer's size is now.
  void GetSize(int& width, int& height) const;
  /// The viewer's background colour (channels 0..1); redraws.
  void SetBackgroundColor(float red, float green, float blue);
  /// Shows `rep` (null shows nothing) instead of the current picture, and redraws. Giving again
  /// the owned representation already shown releases it first: do not.
  void SetBackgroundRep(KEP2DRep* rep, int owned);
  /// Shows the stored representation again (after it changed) and redraws.
  void Update();

  KEP2DViewer* GetViewer() const { return viewer_; }
  KEP2DRep* GetBackgroundRep() const { return rep_; }
  bool IsBackgroundColorSet() const { return colorSet_ != 0; }
  bool OwnsBackgroundRep() const { return owned_ != 0; }

 protected:
  ~KEPRshPreviewFrame() override;

 private:
  KEP2DViewer* viewer_ = nullptr;  ///< borrowed: a child
  int width_;
  int height_;
  int colorSet_ = 0;
  KEP2DRep* rep_ = nullptr;  ///< with the caller's reference when owned_, else borrowed
  int owned_ = 0;
};
