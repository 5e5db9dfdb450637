// Message catalogues: the user-visible texts of a component, by catalogue name and message key,
// read from "<resources>/msg/<catalogue>.msg". The resources directory is $KEPRSH_RESOURCES when
// set, else the directory the host was built with.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <string>
#include <vector>

#include "KEPString.h"
#include "KEPTypes.h"

class KEPMsgCatalog {
 public:
  /// The text of `key` in `catalog` with "/p1", "/p2", ... replaced by the parameters in order
  /// (a placeholder without a parameter stays as written). A missing catalogue or key answers the
  /// key itself, so a person still sees something, and traces a warning once per key.
  static KEPUnicodeString BuildMessage(const KEPString& catalog, const KEPString& key,
                                       const std::vector<KEPUnicodeString>& parameters = {});
  /// The raw text of `key` in `catalog`; E_FAIL with `text` untouched when either is missing.
  /// Traces nothing: for callers that have a fallback of their own.
  static HRESULT GetMessageText(const KEPString& catalog, const KEPString& key,
                                KEPUnicodeString& text);

  /// The directory holding "msg/", the style sheet and the icons: $KEPRSH_RESOURCES when set,
  /// else share/KEPRshView/resources beside the host library's directory.
  static std::string ResourcesDirectory();
};

#pragma GCC visibility pop
