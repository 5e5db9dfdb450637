#include "KEP2DImagePixelRep.h"

#include "KEPPixelImage.h"

KEP_IMPLEMENT_CLASS(KEP2DImagePixelRep, KEP2DRep, "System")

KEP2DImagePixelRep::KEP2DImagePixelRep(KEPPixelImage* image, double x, double y, int flipX,
                                       int flipY, int smooth, int repeat)
    : image_(image), x_(x), y_(y), options_{flipX, flipY, smooth, repeat} {
  if (image_) image_->AddRef();
}

KEP2DImagePixelRep::~KEP2DImagePixelRep() {
  if (image_) image_->Release();
}

int KEP2DImagePixelRep::GetOption(int index) const {
  return index >= 0 && index < 4 ? options_[index] : 0;
}

void KEP2DImagePixelRep::DescribeState(KEPVidStateWriter& writer) const {
  KEP2DRep::DescribeState(writer);
  const int size[] = {image_ ? image_->GetWidth() : 0, image_ ? image_->GetHeight() : 0};
  writer.IntList("imageSize", size);
  writer.DoubleList("position", {x_, y_});
  writer.IntList("options", options_);
}
