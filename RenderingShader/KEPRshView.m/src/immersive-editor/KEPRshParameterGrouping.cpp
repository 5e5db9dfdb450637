#include "KEPRshParameterGrouping.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <utility>

#include "KEPBaseUnknown.h"
#include "KEPISpecObject.h"
#include "KEPListP.h"
#include "KEPRbaConfiguration.h"
#include "KEPRshShaderImmLayoutSource.h"

namespace {

bool StartsWithPhysicalPrefix(std::string_view id) {
  return id.starts_with("MPM") || id.starts_with("NRE");
}

/// `text` read as the C library reads "%llu" (the configuration's unsigned 64-bit numbers).
bool ReadUnsigned64(const KEPString& text, unsigned long long& value) {
  unsigned long long read = 0;
  if (std::sscanf(text.c_str(), "%llu", &read) != 1) return false;
  value = read;
  return true;
}

}  // namespace

KEPRshParameterGrouping::KEPRshParameterGrouping(KEPIRshShader* shader, const KEPTrace& trace) {
  if (!shader) return;
  ReadFlags(shader);
  ReadGroups(trace);
  ReadParameters(shader);
}

bool KEPRshParameterGrouping::IsYes(std::string_view text) {
  const std::string lower = KEPToLower(text);
  return lower == "yes" || lower == "true" || lower == "1";
}

bool KEPRshParameterGrouping::IsMaterialLikeId(std::string_view id) {
  static constexpr std::string_view kMaterials[] = {"mia_phen_material",
                                                    "mia_phen_diffuse",
                                                    "mia_phen_clear_glass",
                                                    "mia_phen_colored_glass",
                                                    "mia_phen_frosted_glass",
                                                    "mia_phen_polished_metal",
                                                    "mia_phen_polished_plastic",
                                                    "mia_phen_satinated_metal",
                                                    "mia_phen_soft_plastic",
                                                    "mia_phen_anisotropic_metal",
                                                    "mia_phen_simple_translucent",
                                                    "mia_phen_backside_translucent",
                                                    "mia_phen_reflective_translucent",
                                                    "mia_phen_emissive",
                                                    "diamond",
                                                    "mip_car_paint",
                                                    "mip_metallic_paint"};
  return StartsWithPhysicalPrefix(id) ||
         std::find(std::begin(kMaterials), std::end(kMaterials), id) != std::end(kMaterials);
}

bool KEPRshParameterGrouping::IsTextureNodeId(std::string_view id) {
  return id == "kep_phen_texture" || id == "kep_phen_scalar" || id == "kep_phen_bump";
}

bool KEPRshParameterGrouping::IsPlacementParameter(std::string_view name) {
  static constexpr std::string_view kPlacement[] = {
      "type",   "offset_u", "offset_v", "scale_u", "scale_v", "repeat_u", "repeat_v",
      "flip_u", "flip_v",   "angle",    "invert",  "alpha",   "bump",     "group_names"};
  return std::find(std::begin(kPlacement), std::end(kPlacement), name) != std::end(kPlacement);
}

void KEPRshParameterGrouping::SortGroups(std::vector<KEPRshGroupRecord>& groups) {
  const auto before = [](const KEPRshGroupRecord& a, const KEPRshGroupRecord& b) {
    return a.order < b.order;
  };
  if (groups.size() > kInsertionSortLimit) {
    std::sort(groups.begin(), groups.end(), before);
    return;
  }
  for (std::size_t i = 1; i < groups.size(); ++i)
    for (std::size_t j = i; j > 0 && before(groups[j], groups[j - 1]); --j)
      std::swap(groups[j], groups[j - 1]);
}

void KEPRshParameterGrouping::ReadFlags(KEPIRshShader* shader) {
  if (FAILED(shader->GetConfigurationId(configurationId_))) configurationId_.clear();
  KEPString status;
  sortingEnabled_ = SUCCEEDED(KEPRbaConfiguration::GetHierarchicalValue(
                        configurationId_, "GlobalShaderSortingOrder.Status", status)) &&
                    IsYes(status);
  materialLike_ = IsMaterialLikeId(configurationId_);

  // Only a texture, scalar or bump node asks for its father: the material it textures.
  if (!IsTextureNodeId(configurationId_)) return;
  const KEP_var<KEPISpecObject> specObject = KEPQueryVar<KEPISpecObject>(shader);
  KEP_ASSERT_FATAL(specObject != NULL_var,
                   "( spec != NULL_var ) && \"KEPIRshShader is not a spec feature\"",
                   KEPRshShaderImmLayoutSource);
  KEPBaseUnknown* fatherObject = nullptr;
  if (FAILED(specObject->GetFather(fatherObject))) fatherObject = nullptr;
  const auto father = KEP_var<KEPBaseUnknown>::Adopt(fatherObject);
  const KEP_var<KEPIRshShader> father_shader = KEPQueryVar<KEPIRshShader>(father);
  KEP_ASSERT_FATAL(father_shader != NULL_var,
                   "( father_shader != NULL_var ) && "
                   "\"KEPIRshShader's father is not a spec feature\"",
                   KEPRshShaderImmLayoutSource);
  KEPString fatherId;
  textureLike_ =
      SUCCEEDED(father_shader->GetConfigurationId(fatherId)) && StartsWithPhysicalPrefix(fatherId);
}

void KEPRshParameterGrouping::ReadGroups(const KEPTrace& trace) {
  KEPString text;
  unsigned long long count = 0;
  if (FAILED(KEPRbaConfiguration::GetHierarchicalValue(configurationId_, "GroupCount", text)) ||
      !ReadUnsigned64(text, count))
    return;
  if (count > kMaxGroupCount) {
    trace.Warning("Too many groups { configuration = %s, GroupCount = %llu, groups read = %llu }",
                  configurationId_.c_str(), count, kMaxGroupCount);
    count = kMaxGroupCount;
  }
  groups_.resize(static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < groups_.size(); ++i) {
    KEPRshGroupRecord& group = groups_[i];
    group.number = i;
    group.key = "Group" + std::to_string(i);
    // A missing name leaves it empty; a missing or unreadable order keeps the largest value.
    KEPRbaConfiguration::GetHierarchicalValue(configurationId_, group.key + ".Name", group.name);
    if (SUCCEEDED(KEPRbaConfiguration::GetHierarchicalValue(configurationId_, group.key + ".Order",
                                                            text)))
      ReadUnsigned64(text, group.order);
  }
  if (sortingEnabled_ && groups_.size() >= 2) SortGroups(groups_);
}

void KEPRshParameterGrouping::ReadParameters(KEPIRshShader* shader) {
  KEPListP<KEPIRshParameter>* listed = nullptr;
  const HRESULT listedResult = shader->GetParameters(listed);
  const std::unique_ptr<KEPListP<KEPIRshParameter>> list(listed);
  if (FAILED(listedResult) || !list) return;
  // The list hands out one reference per element: taken over here, released with the handles.
  std::vector<KEP_var<KEPIRshParameter>> entries;
  entries.reserve(static_cast<std::size_t>(list->Size()));
  for (int i = 1; i <= list->Size(); ++i)
    entries.push_back(KEP_var<KEPIRshParameter>::Adopt((*list)[i]));

  parameters_.reserve(entries.size());
  for (KEP_var<KEPIRshParameter>& parameter : entries) {
    // The list is typed: an entry is a parameter unless it is null.
    KEP_ASSERT_FATAL(
        parameter != NULL_var,
        "( parameter != NULL_var ) && \"parameter from parameter list is not a KEPIRshParameter\"",
        KEPRshShaderImmLayoutSource);
    KEPString name;
    const HRESULT result_fetch_name = parameter->GetName(name);
    KEP_ASSERT_FATAL(SUCCEEDED(result_fetch_name),
                     "SUCCEEDED( result_fetch_name ) && \"parameter from parameter list has no "
                     "name\"",
                     KEPRshShaderImmLayoutSource);
    if (textureLike_ && IsPlacementParameter(name)) continue;

    KEPString group;
    const bool hasGroup = SUCCEEDED(
        KEPRbaConfiguration::GetHierarchicalValue(configurationId_, name + ".Group", group));
    KEPRshLayoutParameter& added = parameters_.emplace_back(std::move(parameter), std::move(name));
    if (hasGroup) {
      byGroup_[group].push_back(parameters_.size() - 1);
      added.SetGroup(std::move(group));
    }
  }
}

std::vector<KEPRshLayoutParameter*> KEPRshParameterGrouping::GroupParameters(
    const KEPRshGroupRecord& group) {
  std::vector<KEPRshLayoutParameter*> members;
  const auto found = byGroup_.find(group.key);
  if (found == byGroup_.end()) return members;
  members.reserve(found->second.size());
  for (std::size_t index : found->second) members.push_back(&parameters_[index]);
  return members;
}

std::vector<KEPRshLayoutParameter*> KEPRshParameterGrouping::NoGroupParameters() {
  std::vector<KEPRshLayoutParameter*> members;
  for (KEPRshLayoutParameter& parameter : parameters_)
    if (!parameter.Group()) members.push_back(&parameter);
  return members;
}
