#include "RshviewReadFile.h"

#include <fstream>
#include <iterator>

bool RshviewReadFile(const std::string& path, std::string& content) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  content.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return !in.bad();
}
