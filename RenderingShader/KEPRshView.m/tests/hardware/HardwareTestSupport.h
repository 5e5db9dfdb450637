// Helpers of the hardware material tests: delegates for nodes, and startup directories in
// temporary folders.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "KEPCreateComponent.h"
#include "KEPIHardwareMaterial.h"
#include "KEPIOpenGLShaderMaterial.h"
#include "KEPIRmaMappingManipulator.h"
#include "KEPIRmaMappingManipulatorMaterial.h"
#include "KEPIRshShaderLink.h"
#include "KEPPixelImage.h"
#include "KEPRshShaderHardwareDefault.h"
#include "KEPRshShaderHardwareExt.h"
#include "KEPRshShaderHardwareLink.h"
#include "KEPRshViewModule.h"
#include "KEPTestSupport.h"

namespace hwtest {

/// A "KEPRshShaderDelegate" component linked to `shader`.
class Delegate {
 public:
  explicit Delegate(KEPIRshShader* shader = nullptr)
      : component_(KEP_var<KEPBaseUnknown>::Adopt(KEPCreateComponent("KEPRshShaderDelegate"))) {
    if (shader) {
      EXPECT_EQ(Link()->SetShader(shader), S_OK);
    }
  }
  KEP_var<KEPIRshShaderLink> Link() const { return KEPQueryVar<KEPIRshShaderLink>(component_); }
  KEP_var<KEPIHardwareMaterial> Material() const {
    return KEPQueryVar<KEPIHardwareMaterial>(component_);
  }
  KEP_var<KEPIOpenGLShaderMaterial> Program() const {
    return KEPQueryVar<KEPIOpenGLShaderMaterial>(component_);
  }
  KEP_var<KEPIRmaMappingManipulator> Mapping() const {
    return KEPQueryVar<KEPIRmaMappingManipulator>(component_);
  }
  KEP_var<KEPIRmaMappingManipulatorMaterial> MappingMaterial() const {
    return KEPQueryVar<KEPIRmaMappingManipulatorMaterial>(component_);
  }
  KEPBaseUnknown* Component() const { return component_.Get(); }
  void Reset() { component_.Reset(); }

 private:
  KEP_var<KEPBaseUnknown> component_;
};

/// Startup directories under a temporary folder, named by label ("A", "B", ...), with files.
/// Sets "KEPStartupPath" and resets the module's process-wide caches; undoes both when done.
class Startup {
 public:
  Startup() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kephwXXXXXX").string();
    root_ = mkdtemp(pattern.data());
    KEPRshShaderHardwareExt::ResetProcessCachesForTests();
  }
  ~Startup() {
    unsetenv("KEPStartupPath");
    KEPRshShaderHardwareExt::ResetProcessCachesForTests();
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
  }
  /// Full path of a directory label (the directory need not exist).
  std::string Dir(const std::string& label) const { return (root_ / label).string(); }
  /// Creates `relative` under directory `label`; returns its full path.
  std::string File(const std::string& label, const std::string& relative) {
    const std::filesystem::path path = root_ / label / relative;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << "// program\n";
    return path.string();
  }
  /// Sets "KEPStartupPath" to the labels' directories joined with ";" (a label "" stays empty).
  void SetPath(const std::vector<std::string>& labels) {
    std::string value;
    for (std::size_t i = 0; i < labels.size(); ++i)
      value += (i ? ";" : "") + (labels[i].empty() ? std::string() : Dir(labels[i]));
    setenv("KEPStartupPath", value.c_str(), 1);
    KEPRshShaderHardwareExt::ResetProcessCachesForTests();
  }

 private:
  std::filesystem::path root_;
};

/// Resets the process-wide stores and registers the module before every test.
class HardwareFixture : public keptest::Fixture {
 protected:
  void SetUp() override {
    keptest::Fixture::SetUp();
    unsetenv("KEPStartupPath");
    KEPRshShaderHardwareExt::ResetProcessCachesForTests();
    KEPTexturePixelImage::FlushCache();
    KEPRshViewRegister();
  }
  void TearDown() override {
    KEPTexturePixelImage::FlushCache();
    keptest::Fixture::TearDown();
  }
};

}  // namespace hwtest
