#include "KEPTextureDocument.h"

KEP_IMPLEMENT_CLASS(KEPTextureDocument, KEPBaseUnknown, "System")

KEPTextureDocument* KEPTextureDocument::Create(const KEPUnicodeString& path,
                                               std::optional<double> dpi,
                                               std::vector<KEPString> groups) {
  auto* document = new KEPTextureDocument();
  document->path_ = path;
  document->dpi_ = dpi;
  document->groups_ = std::move(groups);
  return document;
}

HRESULT KEPTextureDocument::GetImagePath(KEPUnicodeString& path) {
  path = path_;
  return S_OK;
}

HRESULT KEPTextureDocument::GetDpi(double& dpi) {
  if (!dpi_) return E_FAIL;
  dpi = *dpi_;
  return S_OK;
}

HRESULT KEPTextureDocument::GetGroups(std::vector<KEPString>& groups) {
  groups = groups_;
  return S_OK;
}
