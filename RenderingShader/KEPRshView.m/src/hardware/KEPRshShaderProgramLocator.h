// KEPRshShaderProgramLocator: where the CgFX program file of a shader is, along the directories
// of "KEPStartupPath".
//
// The variable's value and the directory lists built from it are process-wide: read on first
// use and never rebuilt, except that a host reset of the process state (or a test) forgets them,
// so that the next search reads the environment again as a new process would.
#pragma once

#include <string_view>

#include "KEPString.h"

class KEPRshShaderProgramLocator {
 public:
  KEPRshShaderProgramLocator() = delete;

  /// The program of a physical shader of type `typeName`: the common "MPM_material", else the
  /// type's own, else "rsh_default", each by FindByBaseName. False, `found` untouched, when none.
  static bool FindPhysicalProgram(std::string_view typeName, KEPUnicodeString& found);

  /// For each startup directory in order, and in it "materials/shaders" then "shaders", the first
  /// existing `baseName`.cgfx. False, `found` untouched, when none exists or the path is unset.
  /// Every ";"-separated segment of the value is a directory, an empty one included: it stands
  /// for the empty directory name, so ";dir" first probes "/materials/shaders/<name>.cgfx" and
  /// "/shaders/<name>.cgfx" at the root of the file system. The segments are kept as written.
  static bool FindByBaseName(std::string_view baseName, KEPUnicodeString& found);

  /// True when "KEPStartupPath" is set (the value is read on the first call of the process).
  static bool HasStartupPath();

  /// The program of `typeName` resolved along the startup path ("materials/shaders", or
  /// "shaders" for a physical type other than the texture type), else the
  /// "materials/shaders/rsh_default" fallback. False, `found` untouched, when neither is found
  /// or the path is unset.
  static bool ResolveAlongStartupPath(std::string_view typeName, KEPUnicodeString& found);

  /// The sticker sibling of `programFile`: "_Stk" inserted before its extension. An empty path
  /// gives an empty path; a path without extension comes back unchanged.
  static KEPUnicodeString StickerVariant(const KEPUnicodeString& programFile);

  /// Forgets the process-wide value and directory lists, so that the next search reads
  /// "KEPStartupPath" again. Registered as a host process-reset hook; must not run during a
  /// search.
  static void ForgetProcessCache();
};
