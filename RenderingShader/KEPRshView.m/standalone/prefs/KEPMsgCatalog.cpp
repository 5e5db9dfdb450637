// Message catalogue files ("<resources>/msg/<catalogue>.msg") are UTF-8 text, one entry a line:
//
//   # a comment (a line whose first non-blank character is '#'); blank lines are ignored
//   connect.Help = "Connect a shader to this parameter"
//   ConnectLabel = "Connect to "
//   Greeting     = "Hello /p1, you have /p2 messages"
//
// The key is the text before the first '=', trimmed, and has no blanks. The text is enclosed in
// double quotes, so leading and trailing blanks inside it are kept; within it \" is a quote, \\ a
// backslash, \n a line break and \t a tab. Only blanks may follow the closing quote.
// "/p1" ... "/p9" (and beyond, "/p10") mark where BuildMessage puts its parameters.
//
// A line that breaks these rules is skipped with a warning naming the file, the line and the key;
// a repeated key keeps its first text.
#include "KEPMsgCatalog.h"
#include "KEPFileServices.h"
#include "KEPHostCatalogs.h"

#include "KEPHostContext.h"

#include <dlfcn.h>
#include <cctype>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "KEPTrace.h"

namespace {
const KEPTrace& Trace() {
  static const KEPTrace trace("KEPMsgCatalog");
  return trace;
}

using Catalog = std::map<std::string, KEPUnicodeString>;

struct Catalogs {
  std::map<std::string, Catalog> loaded;
  std::set<std::pair<std::string, std::string>> warned;
};

Catalogs& TheCatalogs() {
  return KEPHostContext::State<Catalogs>();
}

/// Parses the quoted text that starts `rest`; an explanation of the fault on failure.
std::optional<std::string> ParseQuoted(std::string_view rest, std::string& text) {
  if (rest.empty() || rest.front() != '"') return "the text does not start with a double quote";
  std::size_t i = 1;
  for (; i < rest.size() && rest[i] != '"'; ++i) {
    if (rest[i] != '\\') {
      text += rest[i];
      continue;
    }
    if (++i == rest.size()) break;
    switch (rest[i]) {
      case 'n':
        text += '\n';
        break;
      case 't':
        text += '\t';
        break;
      case '"':
        text += '"';
        break;
      case '\\':
        text += '\\';
        break;
      default:
        return std::string("unknown escape \\") + rest[i];
    }
  }
  if (i >= rest.size()) return "the text has no closing double quote";
  if (!KEPTrimBlanks(rest.substr(i + 1)).empty())
    return "unexpected characters after the closing quote";
  return std::nullopt;
}

Catalog Load(const std::string& name) {
  Catalog catalog;
  const std::string path = KEPHostCatalogs::CatalogPath(name);
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    Trace().Warning("%s: cannot open the message catalogue \"%s\"", path.c_str(), name.c_str());
    return catalog;
  }
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    if (number == 1 && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
    const std::string_view trimmed = KEPTrimBlanks(line);
    if (trimmed.empty() || trimmed.front() == '#') continue;
    const auto equal = trimmed.find('=');
    if (equal == std::string_view::npos) {
      Trace().Warning("%s:%d: no '=' in the line; skipped", path.c_str(), number);
      continue;
    }
    const std::string key(KEPTrimBlanks(trimmed.substr(0, equal)));
    if (key.empty() || key.find_first_of(" \t") != std::string::npos) {
      Trace().Warning("%s:%d: key \"%s\": a key is one word; skipped", path.c_str(), number,
                      key.c_str());
      continue;
    }
    std::string text;
    if (auto fault = ParseQuoted(KEPTrimBlanks(trimmed.substr(equal + 1)), text)) {
      Trace().Warning("%s:%d: key \"%s\": %s; skipped", path.c_str(), number, key.c_str(),
                      fault->c_str());
      continue;
    }
    if (!catalog.emplace(key, KEPUnicodeString::FromUTF8(text)).second)
      Trace().Warning("%s:%d: key \"%s\" repeated; the first text stays", path.c_str(), number,
                      key.c_str());
  }
  return catalog;
}

const Catalog& Find(const std::string& name) {
  auto& loaded = TheCatalogs().loaded;
  auto it = loaded.find(name);
  if (it == loaded.end()) it = loaded.emplace(name, Load(name)).first;
  return it->second;
}

/// Replaces "/p<n>" by parameter n (counted from 1) where one was given.
KEPUnicodeString Substitute(const std::u16string& text,
                            const std::vector<KEPUnicodeString>& parameters) {
  std::u16string out;
  for (std::size_t i = 0; i < text.size();) {
    std::size_t digits = i + 2;
    while (digits < text.size() && text[digits] >= u'0' && text[digits] <= u'9') ++digits;
    if (text[i] != u'/' || i + 1 >= text.size() || text[i + 1] != u'p' || digits == i + 2) {
      out += text[i++];
      continue;
    }
    std::size_t index = 0;
    for (std::size_t d = i + 2; d < digits && index <= parameters.size(); ++d)
      index = index * 10 + static_cast<std::size_t>(text[d] - u'0');
    if (index >= 1 && index <= parameters.size())
      out += parameters[index - 1].Str();
    else
      out.append(text, i, digits - i);
    i = digits;
  }
  return KEPUnicodeString(std::move(out));
}
}  // namespace

std::string KEPMsgCatalog::ResourcesDirectory() {
  KEPString overridden;
  if (SUCCEEDED(KEPGetEnv("KEPRSH_RESOURCES", overridden)) && !overridden.empty())
    return overridden;
  // Beside the host library: LIB/../share/KEPRshView/resources, in the installed tree as in the
  // build tree (where the build links it to the sources).
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&KEPMsgCatalog::ResourcesDirectory), &info) &&
      info.dli_fname)
    return (std::filesystem::path(info.dli_fname).parent_path() / ".." / "share" / "KEPRshView" /
            "resources")
        .lexically_normal()
        .string();
  return "resources";
}

std::string KEPHostCatalogs::CatalogPath(const KEPString& catalog) {
  return KEPMsgCatalog::ResourcesDirectory() + "/msg/" + catalog + ".msg";
}

HRESULT KEPMsgCatalog::GetMessageText(const KEPString& catalog, const KEPString& key,
                                      KEPUnicodeString& text) {
  const Catalog& messages = Find(catalog);
  const auto it = messages.find(key);
  if (it == messages.end()) return E_FAIL;
  text = it->second;
  return S_OK;
}

KEPUnicodeString KEPMsgCatalog::BuildMessage(const KEPString& catalog, const KEPString& key,
                                             const std::vector<KEPUnicodeString>& parameters) {
  KEPUnicodeString text;
  if (FAILED(GetMessageText(catalog, key, text))) {
    if (TheCatalogs().warned.emplace(catalog, key).second)
      Trace().Warning("Message \"%s\" missing from the catalogue \"%s\" (%s)", key.c_str(),
                      catalog.c_str(), KEPHostCatalogs::CatalogPath(catalog).c_str());
    return KEPUnicodeString::FromUTF8(key);
  }
  return Substitute(text.Str(), parameters);
}

void KEPHostCatalogs::Unload() {
  TheCatalogs().loaded.clear();
  TheCatalogs().warned.clear();
}
