// The host's side of the message catalogues.
#pragma once

#include <string>

#include "KEPMsgCatalog.h"

class KEPHostCatalogs {
 public:
  /// The file a catalogue is read from.
  static std::string CatalogPath(const KEPString& catalog);
  /// Forgets every catalogue read so far and the warnings given; the next lookup reads again.
  static void Unload();
};
