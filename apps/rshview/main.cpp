#include <iostream>

#include "RshviewCommand.h"

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  return RshviewMain(args, std::cout, std::cerr);
}
