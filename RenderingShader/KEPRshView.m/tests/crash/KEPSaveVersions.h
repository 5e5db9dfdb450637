// The known versions of a document and of the preferences that the kill test's writer saves in
// turn, and that the test accepts as whole files. Shared by the writer and the test, so that both
// produce them with the same code.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "KEPHostShaderDocument.h"
#include "KEPTestSupport.h"

namespace keptest {

class SaveVersions {
 public:
  /// The versions differ in size, from a few hundred bytes to tens of kilobytes, so that a file
  /// cut short or mixed from two versions equals none of them.
  static constexpr int kCount = 3;

  /// Builds the documents (a library and a shader manager are installed meanwhile).
  SaveVersions();
  SaveVersions(const SaveVersions&) = delete;
  SaveVersions& operator=(const SaveVersions&) = delete;

  /// Saves document version `version` to `path`; false with `error` when it cannot.
  bool SaveDocument(int version, const std::string& path, std::string& error);
  /// Commits preference version `version` of the repository "KillTest" (into the file that
  /// KEPRSH_PREFERENCES names); false with `error` when it cannot.
  static bool CommitPreferences(int version, std::string& error);
  /// The library the documents use.
  const std::shared_ptr<KEPHostShaderLibrary>& Library() const { return world_.library; }

 private:
  World world_;
  std::vector<KEP_var<KEPHostShaderDocument>> documents_;
};

}  // namespace keptest
