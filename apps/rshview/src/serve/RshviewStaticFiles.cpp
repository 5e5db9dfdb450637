#include "RshviewStaticFiles.h"

#include <cstdlib>
#include <filesystem>
#include <utility>

#include "RshviewReadFile.h"

namespace {
namespace fs = std::filesystem;

const char* const kNotBuiltPage =
    "<!doctype html>\n<html><head><meta charset=\"utf-8\"><title>rshview</title></head>\n"
    "<body><h1>rshview</h1>\n"
    "<p>The server runs, but the browser front-end is not built. Build it with</p>\n"
    "<pre>npm --prefix apps/rshview/web ci &amp;&amp; npm --prefix apps/rshview/web run build"
    "</pre>\n<p>and reload this page (or start rshview serve with <code>--web DIR</code>). The "
    "JSON API answers under <a href=\"/api/document\">/api</a>.</p>\n</body></html>\n";

RshviewReply NotFound(const std::string& path) {
  return RshviewReply::Error(404, "not found", "no file " + path);
}

/// True when `path` lies inside `root` (both canonical), component by component.
bool Inside(const fs::path& root, const fs::path& path) {
  auto r = root.begin();
  auto p = path.begin();
  for (; r != root.end(); ++r, ++p)
    if (p == path.end() || *p != *r) return false;
  return p != path.end();
}
}  // namespace

RshviewStaticFiles::RshviewStaticFiles(std::string root) : root_(std::move(root)) {}

bool RshviewStaticFiles::Built() const {
  std::error_code ec;
  return !root_.empty() && fs::is_regular_file(fs::path(root_) / "index.html", ec);
}

RshviewReply RshviewStaticFiles::Get(const std::string& path) const {
  if (path == "/" && !Built()) return RshviewReply{200, kNotBuiltPage, "text/html; charset=utf-8"};
  if (path.empty() || path.front() != '/' || path.find('\0') != std::string::npos ||
      path.find('\\') != std::string::npos || root_.empty())
    return NotFound(path);
  // Every segment a plain name: no "..", ".", or empty segment (an absolute path inside).
  std::string relative = path == "/" ? "index.html" : path.substr(1);
  std::size_t start = 0;
  while (start <= relative.size()) {
    const std::size_t slash = std::min(relative.find('/', start), relative.size());
    const std::string segment = relative.substr(start, slash - start);
    if (segment.empty() || segment == "." || segment == "..") return NotFound(path);
    start = slash + 1;
  }
  // Symbolic links are followed, then the file must still lie inside the folder.
  std::error_code ec;
  const fs::path root = fs::canonical(root_, ec);
  if (ec) return NotFound(path);
  const fs::path file = fs::canonical(root / relative, ec);
  if (ec || !Inside(root, file) || !fs::is_regular_file(file, ec)) return NotFound(path);
  std::string content;
  if (!RshviewReadFile(file.string(), content)) return NotFound(path);
  return RshviewReply{200, std::move(content), ContentType(file.filename().string())};
}

std::string RshviewStaticFiles::ContentType(const std::string& name) {
  static const std::pair<const char*, const char*> kTypes[] = {
      {".html", "text/html; charset=utf-8"},
      // Not text/javascript, which the HTTP library would compress (see kRshviewJsonType).
      {".js", "application/javascript; charset=utf-8"},
      {".mjs", "application/javascript; charset=utf-8"},
      {".css", "text/css; charset=utf-8"},
      {".json", kRshviewJsonType},
      {".map", kRshviewJsonType},
      {".svg", "image/svg+xml"},
      {".png", "image/png"},
      {".jpg", "image/jpeg"},
      {".jpeg", "image/jpeg"},
      {".ico", "image/x-icon"},
      {".webp", "image/webp"},
      {".woff", "font/woff"},
      {".woff2", "font/woff2"},
      {".wasm", "application/wasm"},
      {".txt", "text/plain; charset=utf-8"},
  };
  for (const auto& [extension, type] : kTypes)
    if (name.ends_with(extension)) return type;
  return "application/octet-stream";
}

std::string RshviewWebDirectory() {
  if (const char* env = std::getenv("RSHVIEW_WEB"); env && *env) return env;
  std::error_code ec;
  const fs::path self = fs::read_symlink("/proc/self/exe", ec);
  if (ec) return "web";
  return (self.parent_path() / ".." / "share" / "KEPRshView" / "web").lexically_normal().string();
}
