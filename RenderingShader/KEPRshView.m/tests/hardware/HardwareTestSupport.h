// Helpers of the hardware material tests: delegates, parameters and shaders of the tests' own
// making written as short texts, the material's answers as texts, tables written as text, and
// startup directories in a temporary folder.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
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
#include "KEPRshParameterServices.h"
#include "KEPRshShaderHardwareDefault.h"
#include "KEPRshShaderHardwareLink.h"
#include "KEPRshShaderProgramLocator.h"
#include "KEPRshViewModule.h"
#include "KEPTestSupport.h"

namespace hwtest {

/// The code of a value getter or setter made to fail: distinct from E_FAIL, so that an answer
/// that passes it on shows.
inline constexpr HRESULT kFailure = static_cast<HRESULT>(0x80070005u);

/// A component of `lateType` linked to `shader`, seen through its interfaces.
struct Delegate {
  explicit Delegate(KEPIRshShader* shader = nullptr, const char* lateType = "KEPRshShaderDelegate")
      : component(KEP_var<KEPBaseUnknown>::Adopt(KEPCreateComponent(lateType))),
        link(KEPQueryVar<KEPIRshShaderLink>(component)),
        material(KEPQueryVar<KEPIHardwareMaterial>(component)),
        program(KEPQueryVar<KEPIOpenGLShaderMaterial>(component)),
        mapping(KEPQueryVar<KEPIRmaMappingManipulator>(component)),
        mappingMaterial(KEPQueryVar<KEPIRmaMappingManipulatorMaterial>(component)) {
    if (shader) {
      EXPECT_EQ(link->SetShader(shader), S_OK);
    }
  }
  KEPRshShaderHardwareExt* Ext() const {
    return dynamic_cast<KEPRshShaderHardwareExt*>(material.Get());
  }
  KEP_var<KEPBaseUnknown> component;
  KEP_var<KEPIRshShaderLink> link;
  KEP_var<KEPIHardwareMaterial> material;
  KEP_var<KEPIOpenGLShaderMaterial> program;
  KEP_var<KEPIRmaMappingManipulator> mapping;
  KEP_var<KEPIRmaMappingManipulatorMaterial> mappingMaterial;
};

/// A parameter whose value reads and writes can be made to fail (`failure`), whose name read can
/// be made to fail, and whose connection is its own: like any implementation of the parameter
/// interface, it tells KEPRshParameterServices of every change of its connection. Every value
/// getter reads `value` (a flag or an integer from value[0]), whatever `type` says.
class FakeParameter : public KEPBaseUnknown, public KEPIRshParameter {
 public:
  static KEP_var<FakeParameter> Make(std::string name, std::vector<float> values = {},
                                     std::string type = "KEPRmaScalar") {
    auto* p = new FakeParameter();
    p->name = std::move(name), p->type = std::move(type);
    std::copy_n(values.begin(), std::min<std::size_t>(values.size(), 3), p->value);
    return KEP_var<FakeParameter>::Adopt(p);
  }
  HRESULT GetName(KEPString& out) override { return nameReadable ? (out = name, S_OK) : E_FAIL; }
  HRESULT GetTypeName(KEPString& out) override { return out = type, S_OK; }
  HRESULT GetBooleanValue(unsigned char& v) override { return Read(v); }
  HRESULT GetIntegerValue(int& v) override { return Read(v); }
  HRESULT GetScalarValue(float& v) override { return Read(v); }
  HRESULT GetColorValue(float& r, float& g, float& b, float*) override {
    return FAILED(failure) ? failure : (r = value[0], g = value[1], b = value[2], S_OK);
  }
  HRESULT GetTextureValue(KEPIPLMDmtDocument*& out) override {
    return FAILED(failure) ? failure : (out = KEP_var(document).Detach(), S_OK);
  }
  HRESULT SetBooleanValue(unsigned char v) override { return SetScalarValue(v); }
  HRESULT SetIntegerValue(int v) override { return SetScalarValue(static_cast<float>(v)); }
  HRESULT SetScalarValue(float v) override {
    return FAILED(failure) ? failure : (value[0] = v, S_OK);
  }
  HRESULT SetColorValue(float, float, float, float) override { return E_FAIL; }
  HRESULT GetVectorValue(float (&)[4]) override { return E_FAIL; }
  HRESULT SetVectorValue(const float (&)[4]) override { return E_FAIL; }
  int GetVectorDimension() override { return 0; }
  HRESULT SetTextureValue(KEPIPLMDmtDocument*) override { return E_FAIL; }
  HRESULT GetConnectedShader(KEPIRshShader*& out) override {
    out = KEP_var(connected).Detach();
    return out ? S_OK : E_FAIL;
  }
  HRESULT SetConnectedShader(KEPIRshShader* shader) override {
    connected = KEP_var(shader);
    KEPRshParameterServices::NoteConnectionChange();
    return S_OK;
  }

  std::string name, type;
  float value[3] = {};
  HRESULT failure = S_OK;
  bool nameReadable = true;
  KEP_var<KEPIRshShader> connected;
  KEP_var<KEPIPLMDmtDocument> document;

 private:
  FakeParameter() = default;
  template <class T>
  HRESULT Read(T& out) {
    return FAILED(failure) ? failure : (out = static_cast<T>(value[0]), S_OK);
  }
};

/// A shader over fake parameters (null entries allowed). Its type name reads answer
/// `typeNames` one after the other, the last one repeating.
class FakeShader : public KEPBaseUnknown, public KEPIRshShader {
 public:
  static KEP_var<FakeShader> Make(std::vector<std::string> typeNames,
                                  std::vector<KEP_var<FakeParameter>> parameters) {
    auto* s = new FakeShader();
    s->typeNames_ = std::move(typeNames), s->parameters = std::move(parameters);
    return KEP_var<FakeShader>::Adopt(s);
  }
  /// The first parameter named `name`, or null.
  FakeParameter* Param(const std::string& name) const {
    for (const auto& p : parameters)
      if (p && p->name == name) return p.Get();
    return nullptr;
  }
  HRESULT GetTypeName(KEPString& typeName) override {
    typeName = typeNames_[std::min(typeNameReads_++, typeNames_.size() - 1)];
    return S_OK;
  }
  HRESULT GetParameters(KEPListP<KEPIRshParameter>*& list) override {
    list = new KEPListP<KEPIRshParameter>();
    for (const auto& p : parameters) list->Append(KEP_var<KEPIRshParameter>(p.Get()).Detach());
    return S_OK;
  }
  HRESULT GetId(KEPString&) override { return E_FAIL; }
  HRESULT GetConfigurationId(KEPString&) override { return E_FAIL; }
  HRESULT GetParameter(const KEPString&, KEPIRshParameter*&) override { return E_FAIL; }
  HRESULT GetPointingComponents(std::vector<KEP_var<KEPIRshParameter>>&) override { return E_FAIL; }

  std::vector<KEP_var<FakeParameter>> parameters;

 private:
  FakeShader() = default;
  std::vector<std::string> typeNames_;
  std::size_t typeNameReads_ = 0;
};

/// A fake shader of `type` from blank-separated words: "name=2" or "name=0.8,0.1,0.2" (values),
/// "name=2!" (its reads and writes fail with kFailure), "?name=2" (its name cannot be read),
/// "name>" (a void parameter connected to `connected`), "~" (a null entry).
inline KEP_var<FakeShader> Shader(const std::string& type, const std::string& words,
                                  KEPIRshShader* connected = nullptr) {
  std::vector<KEP_var<FakeParameter>> parameters;
  std::istringstream in(words);
  for (std::string word; in >> word;) {
    if (word == "~") {
      parameters.emplace_back();
      continue;
    }
    const std::size_t at = word.find_first_of("=>");
    auto p = FakeParameter::Make(word.substr(word[0] == '?', at - (word[0] == '?')), {},
                                 word[at] == '>' ? "KEPRmaVoid" : "KEPRmaScalar");
    p->nameReadable = word[0] != '?';
    if (word.back() == '!') p->failure = kFailure;
    std::istringstream values(word.substr(at + 1));
    for (float* v = p->value; v < p->value + 3 && values >> *v; ++v) values.ignore(1);
    if (word[at] == '>' && connected) p->SetConnectedShader(connected);
    parameters.push_back(p);
  }
  return FakeShader::Make({type}, std::move(parameters));
}

/// Rows of a table written as text: one row a line (a line ending in "|" goes on on the next),
/// cells separated by "|" and trimmed; a line beginning with "#" is a comment. Every row must
/// have as many cells as the first.
inline std::vector<std::vector<std::string>> Table(const std::string& text) {
  std::vector<std::vector<std::string>> rows;
  std::istringstream lines(text);
  for (std::string line, part; std::getline(lines, part);) {
    line += part;
    const std::size_t begin = line.find_first_not_of(' '), end = line.find_last_not_of(' ');
    if (end == std::string::npos || line[begin] == '#') line.clear();
    if (line.empty() || line[end] == '|') continue;
    rows.emplace_back();
    std::istringstream cells(line);
    for (std::string cell; std::getline(cells, cell, '|');) {
      const std::size_t first = cell.find_first_not_of(' '), last = cell.find_last_not_of(' ');
      rows.back().push_back(first == std::string::npos ? "" : cell.substr(first, last - first + 1));
    }
    line.clear();
    EXPECT_EQ(rows.back().size(), rows.front().size()) << "cells of row " << rows.size();
  }
  return rows;
}

/// Values and result codes joined by blanks: "S" for S_OK, "E" for E_FAIL, "F" for kFailure.
inline std::string Code(HRESULT hr) {
  return hr == S_OK ? "S" : hr == E_FAIL ? "E" : hr == kFailure ? "F" : "?";
}
template <class... T>
std::string Out(const T&... values) {
  std::ostringstream s;
  ((s << values << ' '), ...);
  std::string text = s.str();
  return text.substr(0, text.size() - 1);
}

/// A texture shader type whose answers differ from every value that the material tests give.
inline keptest::Type TextureType(const std::string& name = "kep_phen_texture") {
  using namespace keptest;
  return Type(name)
      .TextureShader()
      .Param("image", Texture(SourcePath("samples/startup/textures/checker.png")))
      .Param("_uv_mapping", Integer(4))
      .Param("_uv_flip_u", Boolean(true))
      .Param("_uv_flip_v", Boolean(false))
      .Param("_uv_offset_u", Scalar(0.3f))
      .Param("_uv_offset_v", Scalar(0.4f))
      .Param("_uv_scale_u", Scalar(3.0f))
      .Param("_uv_scale_v", Scalar(6.0f))
      .Param("_uv_angle", Scalar(90.0f));
}

/// One answer of a delegate's material as text. Outputs start at values that no rule gives (-1
/// and 9), so that an output left untouched shows; writes are of 3 (size) and 0.125, 0.75
/// (translations).
inline std::string Ask(const Delegate& d, std::string_view q) {
  KEPIHardwareMaterial& m = *d.material;
  KEPIRmaMappingManipulator& mp = *d.mapping;
  KEPIRmaMappingManipulatorMaterial& mm = *d.mappingMaterial;
  float fu = -1, fv = -1, c[3] = {-1, -1, -1};
  unsigned char bu = 9, bv = 9;
  int iu = -1, iv = -1;
  short type = -1;
  double x = -1, y = -1, z = -1, tu = 0.125, tv = 0.75;
  HRESULT hr = S_OK;
  if (q == "ambient") return m.GetAmbient(fu, c), Out(fu, c[0], c[1], c[2]);
  if (q == "diffuse") return m.GetDiffuse(fu, c), Out(fu, c[0], c[1], c[2]);
  if (q == "specular") return m.GetSpecular(fu, c, fv), Out(fu, c[0], c[1], c[2], fv);
  if (q == "coefficient") return Out(m.GetTransparencyCoef());
  if (q == "flip") return m.GetTextureFlip(bu, bv), Out(+bu, +bv);
  if (q == "position") return m.GetTexturePosition(fu, fv), Out(fu, fv);
  if (q == "size") return m.GetTextureSize(fu, fv), Out(fu, fv);
  if (q == "wrapping") return m.GetTextureWrapping(iu, iv), Out(iu, iv);
  if (q == "angle") return Out(m.GetTextureAngle());
  if (q == "image") {
    auto image = KEP_var<KEPTexturePixelImage>::Adopt(m.GetTextureImage());
    return image ? std::filesystem::path(image->GetPath().ToUTF8()).filename().string() : "none";
  }
  if (q == "repeat") return hr = mm.GetTextureRepeat(bu), Out(Code(hr), +bu);
  if (q == "luminosity") return hr = mm.GetLuminosity(x), Out(Code(hr), x);
  if (q == "contrast") return hr = mm.GetContrast(x), Out(Code(hr), x);
  if (q == "shininess") return hr = mm.GetShininess(x), Out(Code(hr), x);
  if (q == "transparency") return hr = mm.GetTransparency(x), Out(Code(hr), x);
  if (q == "color") return hr = mm.GetColor(x, y, z), Out(Code(hr), x, y, z);
  if (q == "transparentColor") return hr = mm.GetTransparentColor(x, y, z), Out(Code(hr), x, y, z);
  if (q == "useTransparent") return hr = mm.GetUseTranparentColor(bu), Out(Code(hr), +bu);
  if (q == "mappingType") return hr = mp.GetMappingType(type), Out(Code(hr), type);
  if (q == "ratio") return hr = mp.GetRatio(x), Out(Code(hr), x);
  if (q == "getSize") return hr = mp.GetSize(x), Out(Code(hr), x);
  if (q == "scale") return hr = mp.GetScale(x), Out(Code(hr), x);
  if (q == "rotation") return hr = mp.GetRotation(x), Out(Code(hr), x);
  if (q == "flipU") return hr = mp.GetFlipU(bu), Out(Code(hr), +bu);
  if (q == "flipV") return hr = mp.GetFlipV(bu), Out(Code(hr), +bu);
  if (q == "translationU") return hr = mp.GetTranslationU(x), Out(Code(hr), x);
  if (q == "translationV") return hr = mp.GetTranslationV(x), Out(Code(hr), x);
  if (q == "setSize") return Code(mp.SetSize(3.0));
  if (q == "setTranslation")
    return hr = mp.SetTranslationU(tu), Out(Code(hr), Code(mp.SetTranslationV(tv)));
  ADD_FAILURE() << "no question " << q;
  return {};
}

/// A temporary folder for startup directories ("A", "B", ...) and their files. Sets
/// "KEPStartupPath" and forgets the module's process-wide search state; undoes both when done.
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
  /// Full path of `relative` in the folder ("A", "A/shaders/x.cgfx").
  std::string Dir(const std::string& relative) const { return (root_ / relative).string(); }
  /// Creates `relative` (a copy of `from` when given); returns its full path.
  std::string File(const std::string& relative, const std::string& from = "") {
    const std::filesystem::path path = root_ / relative;
    std::filesystem::create_directories(path.parent_path());
    if (from.empty()) std::ofstream(path) << "// program\n";
    if (!from.empty()) std::filesystem::copy_file(from, path);
    return path.string();
  }
  /// Sets "KEPStartupPath" to the directories of the ";"-separated labels ("" stays empty).
  void SetPath(const std::string& labels) {
    std::string value, label;
    std::istringstream in(labels);
    for (bool first = true; std::getline(in, label, ';'); first = false)
      value += (first ? "" : ";") + (label.empty() ? label : Dir(label));
    setenv("KEPStartupPath", value.c_str(), 1);
    KEPRshShaderProgramLocator::ForgetProcessCache();
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
