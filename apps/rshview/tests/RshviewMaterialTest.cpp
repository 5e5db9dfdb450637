// `rshview material` on the bundled sample: what a viewer would be told for each kind of node.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "RshviewRun.h"

namespace {
using Json = nlohmann::json;

Json Material(std::vector<std::string> extra) {
  std::vector<std::string> args = {"material", "--format", "json"};
  args.insert(args.end(), extra.begin(), extra.end());
  const Outcome run = Rshview(args);
  EXPECT_EQ(run.code, 0) << run.err;
  return Json::parse(run.out);
}

TEST(RshviewMaterial, PhysicalPaintDrawsWithTheCommonProgramAndItsTexture) {
  const Json paint = Material({"--node", "red_paint"});
  EXPECT_TRUE(paint["physical"].get<bool>());
  const std::string text = paint.dump();
  EXPECT_NE(text.find("MPM_material.cgfx"), std::string::npos) << text;
  EXPECT_NE(text.find("MPM_material_Stk.cgfx"), std::string::npos) << text;
  EXPECT_NE(text.find("checker.png"), std::string::npos) << "the connected decal's image";
  EXPECT_EQ(text.find("MPM_car_paint.cgfx"), std::string::npos)
      << "a physical type never uses its own program while the common one exists";
}

TEST(RshviewMaterial, ABumpConnectedBeforeTheTextureDoesNotHideIt) {
  // The wall's "bump" slot comes before "diffuse_texture": only the texture shader answers.
  const Json wall = Material({"--node", "plaster_wall"});
  ASSERT_TRUE(wall["texture"]["image"].is_object()) << wall.dump();
  EXPECT_TRUE(wall["texture"]["image"]["path"].get<std::string>().ends_with("/checker.png"));
}

TEST(RshviewMaterial, StickerModeSwitchesTheProgramUsed) {
  const Outcome plain = Rshview({"material", "--node", "red_paint"});
  const Outcome sticker = Rshview({"material", "--node", "red_paint", "--sticker"});
  ASSERT_EQ(plain.code, 0) << plain.err;
  ASSERT_EQ(sticker.code, 0) << sticker.err;
  const auto programUsed = [](const std::string& out) {
    const auto at = out.find("program used");
    return out.substr(at, out.find('\n', at) - at);
  };
  EXPECT_TRUE(programUsed(plain.out).ends_with("/MPM_material.cgfx")) << plain.out;
  EXPECT_TRUE(programUsed(sticker.out).ends_with("/MPM_material_Stk.cgfx")) << sticker.out;
}

TEST(RshviewMaterial, EveryNodeAnswersAndErrorsAreUsageErrors) {
  const Json all = Material({"--node", "all"});
  ASSERT_TRUE(all.contains("nodes"));
  EXPECT_GE(all["nodes"].size(), 4u);
  for (const Json& node : all["nodes"]) EXPECT_TRUE(node.contains("mapping")) << node.dump();

  const Outcome unknown = Rshview({"material", "--node", "nope"});
  EXPECT_EQ(unknown.code, 2);
  EXPECT_NE(unknown.err.find("no node 'nope'"), std::string::npos) << unknown.err;
  const Outcome stray = Rshview({"material", "extra"});
  EXPECT_EQ(stray.code, 2);
  EXPECT_NE(stray.err.find("unexpected argument 'extra'"), std::string::npos) << stray.err;
  EXPECT_EQ(Rshview({"params", "--sticker"}).code, 2) << "--sticker is the material's only";
}

}  // namespace
