#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPIUnknown.h"
#include "KEPString.h"

/// An image document used as a texture parameter value: the image file, its resolution and the
/// layer groups it offers. A document does not change: a parameter given another image is given
/// another document, so clients may keep what they derived from a document they hold.
class KEPIPLMDmtDocument : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIPLMDmtDocument)
  /// Full path of the image file.
  virtual HRESULT GetImagePath(KEPUnicodeString& path) = 0;
  /// Stored resolution in dots per inch; E_FAIL when none is stored.
  virtual HRESULT GetDpi(double& dpi) = 0;
  virtual HRESULT GetGroups(std::vector<KEPString>& groups) = 0;
};

#pragma GCC visibility pop
