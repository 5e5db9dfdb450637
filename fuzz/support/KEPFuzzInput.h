// The input of a fuzz target that reads several files: a main text, then files each introduced by
// a line "%% NAME". Names keep only letters, digits, '_' and '-' (at most 32 of them; "fileN" when
// none is left); after 16 files the rest of the input stays in the last one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct KEPFuzzFile {
  std::string name;
  std::string text;
};

struct KEPFuzzInput {
  static constexpr std::size_t kMaxFiles = 16;
  static constexpr std::size_t kMaxNameLength = 32;

  std::string main;
  std::vector<KEPFuzzFile> files;

  static KEPFuzzInput Split(const std::uint8_t* data, std::size_t size);
};
