// The source path that the immersive editor's assertions carry: the editor's class, whichever of
// its helpers (grouping, ordering, layout) finds the inconsistency.
#pragma once

inline constexpr char KEPRshShaderImmLayoutSource[] =
    "RenderingShader/KEPRshView.m/src/KEPRshShaderImmLayout";
