// An image-document selector: shows an image file (or the undefined image when it has none),
// the image's layer groups to draw and its resolution, and lets a person choose another image,
// other groups or another resolution. Every change raises EditModify.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPVidCtl.h"

class KEPRbaImageDocImmSelector : public KEPVidCtl {
  KEP_DECLARE_CLASS
 public:
  /// `options` and `flags` are the selector's creation options (the texture widget passes 0, 4).
  KEPRbaImageDocImmSelector(KEPVidWidget* father, const KEPString& name, int options = 0,
                            int flags = 0);

  int GetOptions() const { return options_; }
  int GetFlags() const { return flags_; }
  /// The image file (UTF-8 path); empty shows the undefined image.
  void SetImage(const KEPString& path);
  const KEPString& GetImage() const { return image_; }
  bool HasImage() const { return !image_.empty(); }
  void SetLayerGroups(const std::vector<KEPString>& groups);
  const std::vector<KEPString>& GetLayerGroups() const { return groups_; }
  /// Dots per inch; values that are not positive numbers are ignored.
  void SetResolution(double dpi);
  double GetResolution() const { return dpi_; }

  void DescribeState(KEPVidStateWriter& writer) const override;
  /// Choose: "image=PATH", "groups=a,b", "dpi=N", separated by blanks, any subset; one
  /// EditModify for the whole choice.
  HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                          std::string& error) override;

 protected:
  ~KEPRbaImageDocImmSelector() override;

 private:
  KEPString image_;
  std::vector<KEPString> groups_;
  double dpi_ = 72.0;
  int options_ = 0;
  int flags_ = 0;
};

#pragma GCC visibility pop
