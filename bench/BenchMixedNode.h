// The node generator the editor benchmarks share: one node of many parameters in 32 groups, the
// parameters taking every type in turn (scalar slider, integer combo and spin box, boolean,
// colour, grey-level colour, vector sliders in a length unit and vector spin boxes, texture,
// sub-shader slot), each with its configuration.
#pragma once

#include <string>

#include "KEPHostConfiguration.h"
#include "KEPHostShaderLibrary.h"

namespace bench {

constexpr int kGroups = 32;

/// Configures parameter `name` of kind `slot` (0..9) of the mixed node and returns its value.
inline KEPHostValue MixedParameter(const std::string& id, const std::string& name, int slot) {
  const auto set = [&](const char* key, const std::string& value) {
    KEPHostConfiguration::SetValue(id, name + key, value);
  };
  switch (slot) {
    case 0:
      set(".Min", "0");
      set(".Max", "10");
      set(".Step", "0.01");
      set(".Widget", "slider");
      return KEPHostValue::Scalar(0.5f);
    case 1:
      set(".Min", "0");
      set(".Max", "2");
      set(".Widget", "combo");
      set(".Enum0", "Draft");
      set(".Enum1", "Medium");
      set(".Enum2", "High");
      set(".ComboConfiguration", "0:Draft;1:Medium;2:High");
      return KEPHostValue::Integer(1);
    case 2:
      set(".Min", "1");
      set(".Max", "64");
      set(".Widget", "spinner");
      return KEPHostValue::Integer(8);
    case 3:
      return KEPHostValue::Boolean(true);
    case 4:
      set(".Widget", "color");
      return KEPHostValue::Color(0.8f, 0.4f, 0.2f);
    case 5:
      set(".Widget", "scalar-spinner");
      set(".Min", "0");
      set(".Max", "1");
      set(".Step", "0.01");
      return KEPHostValue::Color(0.5f, 0.5f, 0.5f);
    case 6:
      set(".Widget", "sliderx3");
      set(".Min", "-1000");
      set(".Max", "1000");
      set(".Unit", "cm");
      return KEPHostValue::Vector({10.0f, 20.0f, 30.0f});
    case 7:
      return KEPHostValue::Vector({1.0f, 0.0f, 0.0f});
    case 8:
      return KEPHostValue::Texture(nullptr);
    default:
      return KEPHostValue::Void();
  }
}

/// Configures the 32 groups of node configuration `id`, in reverse display order.
inline void ConfigureGroups(const std::string& id) {
  KEPHostConfiguration::SetValue(id, "GroupCount", std::to_string(kGroups));
  KEPHostConfiguration::SetValue(id, "GlobalShaderSortingOrder.Status", "yes");
  for (int g = 0; g < kGroups; ++g) {
    const std::string key = "Group" + std::to_string(g);
    KEPHostConfiguration::SetValue(id, key + ".Name", "Group " + std::to_string(g));
    KEPHostConfiguration::SetValue(id, key + ".Order", std::to_string(kGroups - g));
    KEPHostConfiguration::SetValue(id, key + ".CollapsedByDefault", "no");
  }
}

/// The mixed node's type `id` of `count` parameters "p0", "p1", ..., spread over the groups in
/// reverse sorting order, with their configuration set.
inline KEPHostShaderTypeDefinition MixedType(const std::string& id, int count) {
  ConfigureGroups(id);
  KEPHostShaderTypeDefinition type;
  type.name = id;
  for (int i = 0; i < count; ++i) {
    const std::string name = "p" + std::to_string(i);
    KEPHostConfiguration::SetValue(id, name + ".Group", "Group" + std::to_string(i % kGroups));
    KEPHostConfiguration::SetValue(id, name + ".SortingOrder", std::to_string(count - i));
    type.parameters.push_back({name, MixedParameter(id, name, i % 10), {}});
  }
  return type;
}

}  // namespace bench
