// Shared set-up of the metadata tests: a registered module, a world, and parameters made in one
// line, each alone in a node of its own type, with its own configuration and resources.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KEPHostConfiguration.h"
#include "KEPIRshParameterDialog.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPRshViewModule.h"
#include "KEPTestSupport.h"
#include "KEP_var.h"

namespace keptest {

using Keys = std::vector<std::pair<std::string, std::string>>;

inline Keys With(Keys keys, const Keys& more) {
  keys.insert(keys.end(), more.begin(), more.end());
  return keys;
}

inline KEP_var<KEPIRshParameterImmLayout> Imm(KEPBaseUnknown* parameter) {
  return KEPQueryVar<KEPIRshParameterImmLayout>(parameter);
}
inline KEP_var<KEPIRshParameterDialog> Dlg(KEPBaseUnknown* parameter) {
  return KEPQueryVar<KEPIRshParameterDialog>(parameter);
}

/// The two behaviours of a parameter; Each calls `check` with the immersive, then the classic.
struct Behaviours {
  KEP_var<KEPIRshParameterImmLayout> imm;
  KEP_var<KEPIRshParameterDialog> dlg;
  template <class Check>
  void Each(Check check) const {
    check(imm.Get());
    check(dlg.Get());
  }
};
inline Behaviours Behave(KEPBaseUnknown* parameter) {
  return {Imm(parameter), Dlg(parameter)};
}

class MetadataTest : public Fixture {
 protected:
  void SetUp() override {
    Fixture::SetUp();
    KEPRshViewRegister();
    world_.emplace();
  }
  void TearDown() override {
    world_.reset();
    Fixture::TearDown();
  }

  /// Parameter "p" holding `value`, alone in a node of a new type whose configuration (its id in
  /// `configurationId` when asked) holds `config` with "p" before each key; with `resources` the
  /// node offers shader resources, exactly those.
  KEPHostParameter* Param(KEPHostValue value, const Keys& config = {},
                          const std::optional<Keys>& resources = std::nullopt,
                          std::string* configurationId = nullptr) {
    const std::string type = "t" + std::to_string(++types_);
    Type definition(type);
    definition.Param("p", std::move(value)).Resources(resources.has_value());
    for (const auto& [key, text] : resources.value_or(Keys{})) definition.Resource("p", key, text);
    world_->Add(definition);
    for (const auto& [suffix, text] : config)
      KEPHostConfiguration::SetValue(type, "p" + suffix, text);
    if (configurationId) *configurationId = type;
    return world_->Param(world_->Node(type), "p");
  }
  World& TheWorld() { return *world_; }

 private:
  std::optional<World> world_;
  int types_ = 0;
};

}  // namespace keptest
