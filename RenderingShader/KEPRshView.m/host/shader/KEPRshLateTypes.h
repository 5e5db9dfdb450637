// Late types of the shader model's components, under which extensions are registered.
#pragma once

/// The rendering framework's shader: the parent late type of every shader node, under which
/// editors that serve any shader (the classic shader editor) are registered.
inline constexpr char KEPRmaShaderLateType[] = "KEPRmaShader";
/// Every shader node. Its parent late type is KEPRmaShaderLateType.
inline constexpr char KEPRshShaderLateType[] = "KEPRshShader";
/// A texture shader: a node that supplies a texture image and its placement to the material it is
/// connected to. Its parent late type is KEPRshShaderLateType, so it carries every extension of a
/// shader node as well as those registered for texture shaders alone.
inline constexpr char KEPRshTextureShaderLateType[] = "KEPRshTextureShader";
