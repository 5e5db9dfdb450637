#include "KEPRshConnectedTextureCache.h"

void KEPRshConnectedTextureCache::Store(unsigned long long generation,
                                        KEPIHardwareMaterial* material) {
  state_ = State{};
  state_.generation = generation;
  auto* object = dynamic_cast<KEPBaseUnknown*>(material);
  if (!object) return;
  state_.object.Set(object);
  state_.material = material;
  // Borrowed like the material: served by the same component, which outlives neither.
  state_.mapping = KEPQueryVar<KEPIRmaMappingManipulator>(material).Get();
}
