// Helpers of the hardware material tests: delegates for nodes, and startup directories in
// temporary folders.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "KEPCreateComponent.h"
#include "KEPHostImages.h"
#include "KEPIHardwareMaterial.h"
#include "KEPIOpenGLShaderMaterial.h"
#include "KEPIRmaMappingManipulator.h"
#include "KEPIRmaMappingManipulatorMaterial.h"
#include "KEPIRshShader.h"
#include "KEPIRshShaderLink.h"
#include "KEPPixelImage.h"
#include "KEPRshShaderHardwareDefault.h"
#include "KEPRshShaderHardwareExt.h"
#include "KEPRshShaderHardwareLink.h"
#include "KEPRshShaderProgramLocator.h"
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
    KEPRshShaderProgramLocator::ForgetProcessCache();
  }
  ~Startup() {
    unsetenv("KEPStartupPath");
    KEPRshShaderProgramLocator::ForgetProcessCache();
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
    KEPRshShaderProgramLocator::ForgetProcessCache();
  }

 private:
  std::filesystem::path root_;
};

/// A scalar parameter whose name read can be made to fail, for the pairing of names and
/// positions that the host's own parameters never exercise.
class FakeParameter : public KEPBaseUnknown, public KEPIRshParameter {
 public:
  static KEP_var<FakeParameter> Make(std::string name, float value, bool nameReadable = true) {
    auto* p = new FakeParameter();
    p->name_ = std::move(name), p->value_ = value, p->nameReadable_ = nameReadable;
    return KEP_var<FakeParameter>::Adopt(p);
  }
  HRESULT GetName(KEPString& name) override {
    if (!nameReadable_) return E_FAIL;
    name = name_;
    return S_OK;
  }
  HRESULT GetTypeName(KEPString& typeName) override {
    typeName = "KEPRmaScalar";
    return S_OK;
  }
  HRESULT GetScalarValue(float& value) override {
    value = value_;
    return S_OK;
  }
  HRESULT SetScalarValue(float value) override {
    value_ = value;
    return S_OK;
  }
  HRESULT GetBooleanValue(unsigned char&) override { return E_FAIL; }
  HRESULT SetBooleanValue(unsigned char) override { return E_FAIL; }
  HRESULT GetIntegerValue(int&) override { return E_FAIL; }
  HRESULT SetIntegerValue(int) override { return E_FAIL; }
  HRESULT GetColorValue(float&, float&, float&, float*) override { return E_FAIL; }
  HRESULT SetColorValue(float, float, float, float) override { return E_FAIL; }
  HRESULT GetVectorValue(float (&)[4]) override { return E_FAIL; }
  HRESULT SetVectorValue(const float (&)[4]) override { return E_FAIL; }
  int GetVectorDimension() override { return 0; }
  HRESULT GetTextureValue(KEPIPLMDmtDocument*&) override { return E_FAIL; }
  HRESULT SetTextureValue(KEPIPLMDmtDocument*) override { return E_FAIL; }
  HRESULT GetConnectedShader(KEPIRshShader*& shader) override {
    shader = nullptr;
    return E_FAIL;
  }
  HRESULT SetConnectedShader(KEPIRshShader*) override { return E_FAIL; }

 private:
  FakeParameter() = default;
  std::string name_;
  float value_ = 0.0f;
  bool nameReadable_ = true;
};

/// A shader over fake parameters (null entries allowed). Its type name answers follow
/// `typeNames` call by call, the last one repeating.
class FakeShader : public KEPBaseUnknown, public KEPIRshShader {
 public:
  static KEP_var<FakeShader> Make(std::vector<std::string> typeNames,
                                  std::vector<KEP_var<FakeParameter>> parameters) {
    auto* s = new FakeShader();
    s->typeNames_ = std::move(typeNames), s->parameters_ = std::move(parameters);
    return KEP_var<FakeShader>::Adopt(s);
  }
  HRESULT GetTypeName(KEPString& typeName) override {
    typeName = typeNames_[std::min(typeNameReads_++, typeNames_.size() - 1)];
    return S_OK;
  }
  HRESULT GetParameters(KEPListP<KEPIRshParameter>*& parameters) override {
    parameters = new KEPListP<KEPIRshParameter>();
    for (const auto& p : parameters_) {
      if (p) p->AddRef();
      parameters->Append(p.Get());
    }
    return S_OK;
  }
  HRESULT GetId(KEPString&) override { return E_FAIL; }
  HRESULT GetConfigurationId(KEPString&) override { return E_FAIL; }
  HRESULT GetParameter(const KEPString&, KEPIRshParameter*&) override { return E_FAIL; }
  HRESULT GetPointingComponents(std::vector<KEP_var<KEPIRshParameter>>&) override { return E_FAIL; }

 private:
  FakeShader() = default;
  std::vector<std::string> typeNames_;
  std::size_t typeNameReads_ = 0;
  std::vector<KEP_var<FakeParameter>> parameters_;
};

/// Resets the process-wide stores and registers the module before every test.
class HardwareFixture : public keptest::Fixture {
 protected:
  void SetUp() override {
    keptest::Fixture::SetUp();
    unsetenv("KEPStartupPath");
    KEPRshShaderProgramLocator::ForgetProcessCache();
    KEPHostImages::FlushCache();
    KEPRshViewRegister();
  }
  void TearDown() override {
    KEPHostImages::FlushCache();
    keptest::Fixture::TearDown();
  }
};

}  // namespace hwtest
