#pragma once

#include <optional>

#include "KEPBaseUnknown.h"
#include "KEPIPLMDmtDocument.h"

/// An image document held by a texture parameter.
class KEPTextureDocument : public KEPBaseUnknown, public KEPIPLMDmtDocument {
  KEP_DECLARE_CLASS
 public:
  /// A new document with one reference for the caller.
  static KEPTextureDocument* Create(const KEPUnicodeString& path, std::optional<double> dpi = {},
                                    std::vector<KEPString> groups = {});
  HRESULT GetImagePath(KEPUnicodeString& path) override;
  HRESULT GetDpi(double& dpi) override;
  HRESULT GetGroups(std::vector<KEPString>& groups) override;

 private:
  KEPTextureDocument() = default;
  KEPUnicodeString path_;
  std::optional<double> dpi_;
  std::vector<KEPString> groups_;
};
