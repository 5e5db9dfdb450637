// Which parameters of a shader node the immersive editor shows, in which configured groups.
//
// Read once per layout: the node's flags (sorting enabled, material-like, texture-like), its
// configured groups ("GroupCount", then "Group" + i + ".Name" / ".Order", sorted by order when
// sorting is enabled) and, in one walk of the node's parameter list, each parameter's name and
// ".Group". A parameter belongs to the group its ".Group" names exactly; a parameter without
// ".Group" belongs to no group; one whose ".Group" names a group that is not configured is shown
// nowhere (configurations rely on this to hide parameters). In a texture-like node the placement
// parameters ("type", "offset_u", ..., "group_names") are left out altogether.
#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "KEPIRshShader.h"
#include "KEPRshGroupRecord.h"
#include "KEPRshLayoutParameter.h"
#include "KEPString.h"
#include "KEPTrace.h"

class KEPRshParameterGrouping {
 public:
  /// At most this many group records are made, whatever "GroupCount" says (a warning is traced
  /// when the count is larger): a record per group number costs memory and configuration reads.
  static constexpr unsigned long long kMaxGroupCount = 4096;
  /// Groups up to this count are sorted by insertion, which keeps configuration order among
  /// equal orders; larger arrays by an introspective sort, which does not.
  static constexpr std::size_t kInsertionSortLimit = 32;

  /// Reads everything of `shader` (which may be null: nothing then) that the grouping needs.
  /// Fatal assertions: a texture-like candidate that is not a KEPISpecObject or whose father is no
  /// shader; a list entry that is no parameter or has no name.
  KEPRshParameterGrouping(KEPIRshShader* shader, const KEPTrace& trace);
  KEPRshParameterGrouping(const KEPRshParameterGrouping&) = delete;
  KEPRshParameterGrouping& operator=(const KEPRshParameterGrouping&) = delete;

  /// The node's configuration identifier; empty when it cannot be read.
  const KEPString& ConfigurationId() const { return configurationId_; }
  /// "GlobalShaderSortingOrder.Status" is "yes", "true" or "1" in any case.
  bool IsSortingEnabled() const { return sortingEnabled_; }
  /// The node is a material to which sub-shaders connect (see IsMaterialLikeId).
  bool IsMaterialLike() const { return materialLike_; }
  /// The node is a texture, scalar or bump node under a physical ("MPM") or "NRE" material.
  bool IsTextureLike() const { return textureLike_; }

  /// The configured groups, in the order they are shown.
  const std::vector<KEPRshGroupRecord>& Groups() const { return groups_; }
  /// The parameters that belong to `group`, in node order (hidden ones included).
  std::vector<KEPRshLayoutParameter*> GroupParameters(const KEPRshGroupRecord& group);
  /// The parameters without ".Group", in node order (hidden ones included).
  std::vector<KEPRshLayoutParameter*> NoGroupParameters();

  /// Configuration identifiers of material-like nodes: the listed mental-ray-style materials,
  /// and every identifier beginning with "MPM" or "NRE".
  static bool IsMaterialLikeId(std::string_view configurationId);
  /// "kep_phen_texture", "kep_phen_scalar" or "kep_phen_bump".
  static bool IsTextureNodeId(std::string_view configurationId);
  /// A texture-like node's placement parameters, which this editor never shows.
  static bool IsPlacementParameter(std::string_view name);
  /// "yes", "true" or "1" in any case: the configuration's way of saying yes.
  static bool IsYes(std::string_view text);
  /// By order, ascending as unsigned numbers (see kInsertionSortLimit).
  static void SortGroups(std::vector<KEPRshGroupRecord>& groups);

 private:
  void ReadFlags(KEPIRshShader* shader);
  void ReadGroups(const KEPTrace& trace);
  void ReadParameters(KEPIRshShader* shader);

  KEPString configurationId_;
  bool sortingEnabled_ = false;
  bool materialLike_ = false;
  bool textureLike_ = false;
  std::vector<KEPRshGroupRecord> groups_;
  /// Every parameter the editor may show, in node order (placement parameters of a texture-like
  /// node left out). Filled once: the pointers handed out stay valid.
  std::vector<KEPRshLayoutParameter> parameters_;
  /// Indices into parameters_ by the ".Group" text, each list in node order.
  std::unordered_map<KEPString, std::vector<std::size_t>> byGroup_;
};
