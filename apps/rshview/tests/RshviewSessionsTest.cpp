// Many runs in one process (as the tests and the server do): each run is a session of its own.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "RshviewRun.h"

namespace {
namespace fs = std::filesystem;
using Json = nlohmann::json;

/// A copy of the bundled samples in a temporary folder, removed when done.
class SampleCopy {
 public:
  SampleCopy() {
    std::string pattern = (fs::temp_directory_path() / "rshview-copyXXXXXX").string();
    root_ = mkdtemp(pattern.data());
    fs::copy(RSHVIEW_TEST_SAMPLES, root_, fs::copy_options::recursive);
  }
  ~SampleCopy() {
    std::error_code ignored;
    fs::remove_all(root_, ignored);
  }
  std::string Path(const std::string& relative) const { return (root_ / relative).string(); }

 private:
  fs::path root_;
};

std::string ProgramUsed(const std::vector<std::string>& extra) {
  std::vector<std::string> args = {"material", "--format", "json", "--node", "red_paint"};
  args.insert(args.end(), extra.begin(), extra.end());
  const Outcome run = Rshview(args);
  EXPECT_EQ(run.code, 0) << run.err;
  if (run.code != 0) return {};
  return Json::parse(run.out)["program"]["used"].get<std::string>();
}

TEST(RshviewSessions, ASecondRunSeesItsOwnLibraryAndNothingOfTheFirst) {
  ASSERT_EQ(std::getenv("KEPStartupPath"), nullptr) << "the test needs the variable unset";
  SampleCopy copy;
  // The copy's configuration differs from the bundled one in one tooltip.
  const std::string config = copy.Path("library/config/MPM_car_paint.cfg");
  std::string text;
  {
    std::ifstream in(config);
    text.assign(std::istreambuf_iterator<char>(in), {});
  }
  const std::string bundled = "Connect a decal texture";
  ASSERT_NE(text.find(bundled), std::string::npos);
  text.replace(text.find(bundled), bundled.size(), "Tooltip of the copy");
  std::ofstream(config, std::ios::trunc) << text;
  const std::vector<std::string> inCopy = {"--doc", copy.Path("documents/showroom.rshdoc.json"),
                                           "--library", copy.Path("library")};

  const std::string first = ProgramUsed({});
  const std::string second = ProgramUsed(inCopy);
  const std::string third = ProgramUsed({});
  const std::string copied = fs::weakly_canonical(copy.Path("startup")).string();
  EXPECT_TRUE(first.ends_with("/MPM_material.cgfx")) << first;
  EXPECT_EQ(first.find(copied), std::string::npos) << first;
  EXPECT_EQ(second, copied + "/materials/shaders/MPM_material.cgfx")
      << "the second run did not find its programs in its own startup directory";
  EXPECT_EQ(third, first) << "the third run kept something of the second";
  EXPECT_EQ(std::getenv("KEPStartupPath"), nullptr) << "a run changed the real environment";

  std::vector<std::string> params = {"params", "--node", "red_paint"};
  const Outcome copyParams = Rshview([&] {
    auto args = params;
    args.insert(args.end(), inCopy.begin(), inCopy.end());
    return args;
  }());
  const Outcome bundledParams = Rshview(params);
  EXPECT_NE(copyParams.out.find("Tooltip of the copy"), std::string::npos) << copyParams.out;
  EXPECT_EQ(bundledParams.out.find("Tooltip of the copy"), std::string::npos)
      << "the configuration of the copy outlived its run";
  EXPECT_NE(bundledParams.out.find(bundled), std::string::npos) << bundledParams.out;
}

}  // namespace
