// A pixel image drawn with its lower-left corner at a position, with four switches: flipped
// horizontally, flipped vertically, smoothed when scaled, repeated to fill the view.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEP2DRep.h"

class KEPPixelImage;

class KEP2DImagePixelRep : public KEP2DRep {
  KEP_DECLARE_CLASS
 public:
  /// Holds a reference to `image` (which may be null) for its life.
  KEP2DImagePixelRep(KEPPixelImage* image, double x, double y, int flipX = 0, int flipY = 0,
                     int smooth = 0, int repeat = 0);

  KEPPixelImage* GetImage() const { return image_; }
  double GetX() const { return x_; }
  double GetY() const { return y_; }
  /// Switch `index` (0 to 3), 0 outside.
  int GetOption(int index) const;

  void DescribeState(KEPVidStateWriter& writer) const override;

 protected:
  ~KEP2DImagePixelRep() override;

 private:
  KEPPixelImage* image_;
  double x_;
  double y_;
  int options_[4];
};

#pragma GCC visibility pop
