#include "KEPConnectionFixture.h"

#include <functional>
#include <map>

#include "KEPHostShaderDocument.h"

namespace keptest {

ConnectionDocument BuildConnectionDocument(World& world) {
  world.Add(Type("mia_phen_material")
                .Param("tint", Color(1, 1, 1))
                .Param("other", Color(1, 1, 1))
                .Param("extra", Color(1, 1, 1))
                .Param("slot", Void())
                .Param("amount", Scalar(0.5f)));
  world.Add(Type("colour_map")
                .Output("KEPRmaColor")
                .Param("input", Color(0, 0, 0))
                .Param("gain", Scalar(1)));
  world.Add(Type("bump_map").Output("KEPRmaVector").Param("height", Scalar(1)));
  world.Add(Type("kep_phen_texture").Output("KEPRmaColor").Param("gamma", Scalar(1)));
  world.Connectable("KEPRmaColor", {{"colour_map", "Colour map"}, {"kep_phen_texture", "Texture"}});
  world.Connectable("KEPRmaVoid", {{"bump_map", "Bump"}});

  ConnectionDocument d;
  auto node = [&](const std::string& type, const std::string& alias) {
    KEPHostShaderNode* n = world.Node(type, alias);
    n->SetAlias(KEPUnicodeString::FromUTF8(alias));
    return n;
  };
  d.glass = node("mia_phen_material", "Glass");
  d.metal = node("mia_phen_material", "Metal");
  world.Document()->materials = {"Glass", "Metal"};
  d.outer = node("colour_map", "Outer");
  d.inner = node("colour_map", "Inner");
  d.mixed = node("colour_map", "Mixed");
  d.tiles = node("colour_map", "Tiles");
  d.noise = node("colour_map", "Noise");
  d.bumps = node("bump_map", "Bumps");
  d.lonely = node("colour_map", "Lonely");
  auto connect = [&](KEPHostShaderNode* from, const std::string& parameter, KEPHostShaderNode* to) {
    EXPECT_EQ(world.Param(from, parameter)->SetConnectedShader(to), S_OK) << parameter;
  };
  connect(d.glass, "tint", d.mixed);
  connect(d.glass, "other", d.noise);
  connect(d.metal, "tint", d.tiles);
  connect(d.metal, "other", d.noise);
  connect(d.metal, "extra", d.outer);
  connect(d.metal, "slot", d.bumps);
  connect(d.outer, "input", d.inner);
  connect(d.inner, "input", d.glass);
  return d;
}

bool HasConnectionCycle(KEPHostShaderDocument& document, std::vector<std::string>* path) {
  // Colours of a depth-first search: a grey node met again closes a cycle.
  std::map<const KEPHostShaderNode*, int> colour;
  std::vector<std::string> stack;
  std::function<bool(KEPHostShaderNode*)> visit = [&](KEPHostShaderNode* node) {
    colour[node] = 1;
    stack.push_back(node->Id());
    for (const auto& parameter : node->Parameters()) {
      KEP_var<KEPIRshShader> connected;
      if (FAILED(parameter->GetConnectedShader(*connected.Out())) || !connected) continue;
      KEPString id;
      connected->GetId(id);
      KEPHostShaderNode* next = document.FindNode(id);
      if (!next) continue;
      if (colour[next] == 1) {
        stack.push_back(next->Id());
        return true;
      }
      if (colour[next] == 0 && visit(next)) return true;
    }
    colour[node] = 2;
    stack.pop_back();
    return false;
  };
  for (const auto& node : document.Nodes())
    if (colour[node.Get()] == 0 && visit(node.Get())) {
      if (path) *path = stack;
      return true;
    }
  return false;
}

}  // namespace keptest
