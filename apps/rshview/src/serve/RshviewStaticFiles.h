// The front-end's files, served from its built folder only: a request path never reaches a file
// outside it (no "..", no absolute path, no symbolic link that leads out).
#pragma once

#include <string>

#include "RshviewReply.h"

class RshviewStaticFiles {
 public:
  /// Serves the files under `root` (which may not exist: the front-end is not built).
  explicit RshviewStaticFiles(std::string root);

  /// The front-end is built: its folder holds index.html.
  bool Built() const;
  const std::string& Root() const { return root_; }

  /// The answer to GET `path` (the decoded request path, starting with '/'): "/" is index.html;
  /// 404 for a file that is missing or outside the folder. Before the front-end is built, "/"
  /// answers a page that says how to build it.
  RshviewReply Get(const std::string& path) const;

  /// The content type of a file name by its extension (application/octet-stream when unknown).
  static std::string ContentType(const std::string& name);

 private:
  std::string root_;
};

/// Where the front-end's built folder is looked for: $RSHVIEW_WEB when set, else
/// share/KEPRshView/web beside the program's directory (the build links it to
/// apps/rshview/web/dist).
std::string RshviewWebDirectory();
