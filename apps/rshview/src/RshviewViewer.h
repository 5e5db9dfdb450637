// What the viewer's material answers for a node, shared by `material`, `preview` and `serve`.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "KEPHostShaderNode.h"
#include "RshviewSphere.h"

/// Every answer of the node's hardware material, asked through a delegate linked to the node as
/// the viewer asks it: {id, type, physical, program, lighting, texture, mapping}.
nlohmann::ordered_json RshviewMaterialAnswers(KEPHostShaderNode& node, bool sticker);

/// Sets KEPStartupPath for this host session, unless it is set, to LIBRARY/../startup, else to the
/// bundled samples' startup directory (the program files are searched there).
void RshviewEnsureStartupPath(const std::string& library);

/// The answers the sphere is drawn from; false when the hardware material is not registered.
bool RshviewAskSphereMaterial(KEPIRshShader* node, RshviewSphereMaterial& material);

/// Draws a sphere in `material` (`size` × `size`), passes it through the editors' preview frame
/// and writes it as a PNG file to `path` (atomically); false with `error` set on failure.
bool RshviewWriteSpherePreview(const RshviewSphereMaterial& material, int size,
                               const std::string& path, std::string& error);

/// Draws the node's sphere (`size` × `size`), passes it through the editors' preview frame and
/// writes it as a PNG file to `path` (atomically); false with `error` set on failure.
bool RshviewWritePreview(KEPIRshShader* node, int size, const std::string& path,
                         std::string& error);
