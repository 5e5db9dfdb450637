#include "KEPRshParameterContext.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

#include "KEPIRshParameter.h"
#include "KEPIRshShader.h"
#include "KEPISpecObject.h"
#include "KEPParmDictionary.h"
#include "KEPRbaConfiguration.h"
#include "KEPRshShaderManager.h"

#include "KEP_var.h"

namespace {
/// The index that `text` is, if it is one whole decimal int. A text that Indexed would not write
/// ("07") only proposes its index: the search then reads that index's own keys.
std::optional<int> IndexOfText(std::string_view text) {
  int index = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, index);
  if (error != std::errc() || stop != end) return std::nullopt;
  return index;
}
}  // namespace

void KEPRshParameterContext::Resolve(KEPBaseUnknown* extended) {
  if (resolved_) return;
  resolved_ = true;
  if (!extended) return;

  // The feature's father is its shader: the configuration lives there, and so may resources.
  if (KEP_var<KEPISpecObject> specObject = KEPQueryVar<KEPISpecObject>(extended)) {
    KEPBaseUnknown* fatherObject = nullptr;
    if (SUCCEEDED(specObject->GetFather(fatherObject)) && fatherObject) {
      KEP_var<KEPBaseUnknown> father = KEP_var<KEPBaseUnknown>::Adopt(fatherObject);
      if (KEP_var<KEPIRshShader> shader = KEPQueryVar<KEPIRshShader>(father)) {
        shader->GetConfigurationId(configurationId_);
        KEPIRshShaderResources* resources = nullptr;
        if (SUCCEEDED(shader->QueryInterface(&resources))) resources_ = resources;
      }
    }
  }
  if (KEP_var<KEPIRshParameter> parameter = KEPQueryVar<KEPIRshParameter>(extended)) {
    isParameter_ = true;
    parameter->GetName(parameterName_);
  }
}

void KEPRshParameterContext::ReleaseResources() {
  if (KEPIRshShaderResources* resources = resources_) {
    resources_ = nullptr;
    resources->Release();
  }
}

// --- Primitive reads

HRESULT KEPRshParameterContext::Config(const KEPString& suffix, KEPString& out) const {
  return KEPRbaConfiguration::GetHierarchicalValue(configurationId_, parameterName_ + suffix, out);
}

HRESULT KEPRshParameterContext::Config(const KEPString& suffix, KEPUnicodeString& out) const {
  return KEPRbaConfiguration::GetHierarchicalValue(configurationId_, parameterName_ + suffix, out);
}

HRESULT KEPRshParameterContext::Config(const KEPString& suffix, int& out) const {
  return KEPRbaConfiguration::GetHierarchicalValue(configurationId_, parameterName_ + suffix, out);
}

HRESULT KEPRshParameterContext::Resource(const KEPString& key, KEPUnicodeString& out) const {
  if (!resources_ || !isParameter_) return E_FAIL;
  return resources_->GetResourceValue(parameterName_, key, out);
}

HRESULT KEPRshParameterContext::ResourceOrConfig(const KEPString& key, const KEPString& suffix,
                                                 KEPString& out) const {
  if (!resources_) return Config(suffix, out);
  KEPUnicodeString value;
  const HRESULT hr = Resource(key, value);
  if (SUCCEEDED(hr)) out = value.ToUTF8();
  return hr;
}

HRESULT KEPRshParameterContext::ResourceOrConfig(const KEPString& key, const KEPString& suffix,
                                                 KEPUnicodeString& out) const {
  if (!resources_) return Config(suffix, out);
  return Resource(key, out);
}

// --- Shared algorithms

HRESULT KEPRshParameterContext::Range(bool hardFallback, KEPString& min, KEPString& max,
                                      KEPString& step) const {
  if (resources_) {
    // One buffer for the three asks: a missing step leaves the max text in it, and that is what
    // the step output receives.
    KEPUnicodeString buffer;
    if (FAILED(Resource("min", buffer))) return E_FAIL;
    KEPString minText = buffer.ToUTF8();
    if (FAILED(Resource("max", buffer))) return E_FAIL;
    KEPString maxText = buffer.ToUTF8();
    Resource("step", buffer);
    min = std::move(minText);
    max = std::move(maxText);
    step = buffer.ToUTF8();
    return S_OK;
  }
  KEPString minText, maxText, stepText;
  if (FAILED(Config(".Min", minText)) && (!hardFallback || FAILED(Config(".HardMin", minText))))
    return E_FAIL;
  if (FAILED(Config(".Max", maxText)) && (!hardFallback || FAILED(Config(".HardMax", maxText))))
    return E_FAIL;
  Config(".Step", stepText);  // optional: an absent step stays empty
  min = std::move(minText);
  max = std::move(maxText);
  step = std::move(stepText);
  return S_OK;
}

HRESULT KEPRshParameterContext::DoubleRange(const char* minFirst, const char* minSecond,
                                            const char* maxFirst, const char* maxSecond,
                                            double& min, double& max) const {
  KEPString minText, maxText;
  if (FAILED(Config(minFirst, minText)) && FAILED(Config(minSecond, minText))) return E_FAIL;
  if (FAILED(Config(maxFirst, maxText)) && FAILED(Config(maxSecond, maxText))) return E_FAIL;
  double low = 0.0, high = 0.0;
  if (!ParseDouble(minText, low) || !ParseDouble(maxText, high)) return E_FAIL;
  min = low;
  max = high;
  return S_OK;
}

HRESULT KEPRshParameterContext::EnumValue(int index, int& value) const {
  if (resources_) {
    KEPUnicodeString text;
    if (FAILED(Resource(Indexed("enumvalue", index), text))) return E_FAIL;
    return ParseInt(text.ToUTF8(), value) ? S_OK : E_FAIL;
  }
  if (SUCCEEDED(Config(Indexed(".EnumVal", index), value))) return S_OK;
  KEPString label;
  if (FAILED(Config(Indexed(".Enum", index), label))) return E_FAIL;
  return ParseInt(label, value) ? S_OK : E_FAIL;
}

HRESULT KEPRshParameterContext::EnumIndex(bool hardFallback, int value, int& index) const {
  if (resources_) {
    KEPUnicodeString text;
    if (FAILED(Resource(Indexed("enumindex", value), text))) return E_FAIL;
    return ParseInt(text.ToUTF8(), index) ? S_OK : E_FAIL;
  }
  KEPString minText, maxText, stepText;
  if (FAILED(Range(hardFallback, minText, maxText, stepText))) return E_FAIL;
  int min = 0, max = 0;
  if (!ParseInt(minText, min) || !ParseInt(maxText, max)) return E_FAIL;
  // The first index of [min, max] whose entry has the value. Only an index with an ".EnumVal" or
  // ".Enum" key can match, so the search visits the indices that the configuration's key names
  // propose, in ascending order, instead of every index of a range that may span the whole of
  // int; each is then tested through its keys exactly as Indexed writes them.
  for (const int i : EnumIndicesBetween(min, max)) {
    int enumValue = -1;
    if (SUCCEEDED(Config(Indexed(".EnumVal", i), enumValue)) && enumValue == value) {
      index = i;
      return S_OK;
    }
    KEPString label;
    int labelValue = 0;
    if (SUCCEEDED(Config(Indexed(".Enum", i), label)) && ParseInt(label, labelValue) &&
        labelValue == value) {
      index = i;
      return S_OK;
    }
  }
  return E_FAIL;
}

std::vector<int> KEPRshParameterContext::EnumIndicesBetween(int min, int max) const {
  std::vector<int> indices;
  std::vector<KEPString> keys;
  const KEPString stem = parameterName_ + ".Enum";  // also the stem of ".EnumVal" keys
  if (min > max || FAILED(KEPRbaConfiguration::GetHierarchicalKeys(configurationId_, stem, keys)))
    return indices;
  for (const KEPString& key : keys) {
    std::string_view rest(key);
    rest.remove_prefix(stem.size());
    if (rest.starts_with("Val")) rest.remove_prefix(3);
    if (const std::optional<int> i = IndexOfText(rest); i && *i >= min && *i <= max)
      indices.push_back(*i);
  }
  std::sort(indices.begin(), indices.end());
  indices.erase(std::unique(indices.begin(), indices.end()), indices.end());
  return indices;
}

HRESULT KEPRshParameterContext::Unit(KEPICkeUnit*& unit) const {
  KEPString name;
  if (FAILED(Config(".Unit", name))) return E_FAIL;
  KEPICkeUnit* found = KEPParmDictionary::FindUnit(KEPUnicodeString::FromUTF8(name));
  if (!found) found = KEPParmDictionary::FindUnit(KEPUnicodeString::FromUTF8(KEPToUpper(name)));
  if (!found) return E_FAIL;
  found->AddRef();
  unit = found;
  return S_OK;
}

HRESULT KEPRshParameterContext::Magnitude(KEPICkeMagnitude*& magnitude) const {
  KEPString name;
  if (FAILED(Config(".Magnitude", name))) return E_FAIL;
  KEPICkeMagnitude* found = KEPParmDictionary::FindMagnitude(KEPUnicodeString::FromUTF8(name));
  if (!found)
    found = KEPParmDictionary::FindMagnitude(KEPUnicodeString::FromUTF8(KEPToUpper(name)));
  if (!found) return E_FAIL;
  found->AddRef();
  magnitude = found;
  return S_OK;
}

HRESULT KEPRshParameterContext::ConnectableState(KEPBaseUnknown* extended, KEPString& state) const {
  if (SUCCEEDED(Config(".ConnectableState", state))) return S_OK;
  KEPString typeName;
  if (KEP_var<KEPIRshParameter> parameter = KEPQueryVar<KEPIRshParameter>(extended))
    parameter->GetTypeName(typeName);
  std::vector<KEPString> names;
  std::vector<KEPUnicodeString> labels;
  HRESULT hr = E_FAIL;
  if (const KEPRshShaderManager* manager = KEPRshShaderManager::GetManager())
    hr = manager->GetConnectableShaders(typeName, names, labels, 2);
  state = names.empty() ? "No" : "Yes";
  return hr;
}

// --- Text conversions

bool KEPRshParameterContext::ParseDouble(const KEPString& text, double& value) {
  double parsed = 0.0;
  if (std::sscanf(text.c_str(), "%le", &parsed) != 1) return false;
  value = parsed;
  return true;
}

bool KEPRshParameterContext::ParseInt(const KEPString& text, int& value) {
  int parsed = 0;
  if (std::sscanf(text.c_str(), "%d", &parsed) != 1) return false;
  value = parsed;
  return true;
}

bool KEPRshParameterContext::ParseIntRange(const KEPString& minText, const KEPString& maxText,
                                           const KEPString& stepText, int& min, int& max,
                                           int& step) {
  int low = 0, high = 0;
  if (!ParseInt(minText, low) || !ParseInt(maxText, high)) return false;
  min = low;
  max = high;
  ParseInt(stepText, step);
  return true;
}

bool KEPRshParameterContext::ParseFourFloats(const KEPString& text, float (&value)[4]) {
  float read[4] = {value[0], value[1], value[2], value[3]};
  int count = 0;
  const char* cursor = text.c_str();
  while (count < 4) {
    cursor += std::strspn(cursor, " \t,[]()");
    if (!*cursor) break;
    double number = 0.0;
    int used = 0;
    if (std::sscanf(cursor, "%le%n", &number, &used) != 1) break;
    read[count++] = static_cast<float>(number);
    cursor += used;
  }
  if (count < 2) return false;
  for (int i = 0; i < 4; ++i) value[i] = read[i];
  return true;
}

bool KEPRshParameterContext::ParseBoolean(const KEPString& text, bool& value) {
  const KEPString lower = KEPToLower(text);
  if (lower == "on" || lower == "true") {
    value = true;
    return true;
  }
  if (lower == "off" || lower == "false") {
    value = false;
    return true;
  }
  int number = 0;
  if (!ParseInt(lower, number)) return false;
  value = number != 0;
  return true;
}

KEPString KEPRshParameterContext::Indexed(const char* stem, long long index) {
  return KEPString(stem) + std::to_string(index);
}
