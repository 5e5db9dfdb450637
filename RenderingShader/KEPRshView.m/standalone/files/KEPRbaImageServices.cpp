#include "KEPRbaImageServices.h"

#include "KEPIPLMDmtDocument.h"

HRESULT KEPRbaImageServices::GetProjectionPath(KEPIPLMDmtDocument* document,
                                               KEPUnicodeString& path) {
  if (!document) return E_FAIL;
  KEPUnicodeString found;
  if (FAILED(document->GetImagePath(found)) || found.IsEmpty()) return E_FAIL;
  path = std::move(found);
  return S_OK;
}

void KEPRbaImageServices::SplitPath(const KEPUnicodeString& path, KEPUnicodeString& base,
                                    KEPUnicodeString& extension) {
  const std::u16string& text = path.Str();
  const std::size_t slash = text.find_last_of(u"/\\");
  const std::size_t nameStart = slash == std::u16string::npos ? 0 : slash + 1;
  const std::size_t dot = text.find_last_of(u'.');
  if (dot == std::u16string::npos || dot < nameStart) {
    base = path;
    extension = KEPUnicodeString();
    return;
  }
  base = KEPUnicodeString(text.substr(0, dot));
  extension = KEPUnicodeString(text.substr(dot + 1));
}
