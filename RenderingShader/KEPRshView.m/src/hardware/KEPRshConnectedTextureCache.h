// KEPRshConnectedTextureCache: the material of the texture shader connected to a material's
// parameters, as last found, and the guard that ends a loop of connections.
//
// The viewer asks every frame and connections change rarely, while finding the connected texture
// means a walk over the parameters and several interface queries. So what was found is kept,
// without a reference (weakly, with borrowed interface pointers), for as long as
// KEPRshParameterServices::GetConnectionGeneration() is unchanged and the object found is alive.
#pragma once

#include <type_traits>

#include "KEPBaseUnknown_WR.h"
#include "KEPIHardwareMaterial.h"
#include "KEPIRmaMappingManipulator.h"
#include "KEPRshParameterServices.h"
#include "KEP_var.h"

class KEPRshConnectedTextureCache {
 public:
  KEPRshConnectedTextureCache() = default;
  /// Not copied: a copy of a material finds its connected texture for itself.
  KEPRshConnectedTextureCache(const KEPRshConnectedTextureCache&) = delete;
  KEPRshConnectedTextureCache& operator=(const KEPRshConnectedTextureCache&) = delete;

  /// Runs `ask(Interface&)` on the connected texture's KEPIHardwareMaterial or
  /// KEPIRmaMappingManipulator. When what was found no longer holds, calls
  /// `find(KEP_var<KEPIHardwareMaterial>&)` to look again: it sets the material found (or leaves
  /// it null) and returns false when it could not look yet, so that the next question looks
  /// again. False when there is no connected texture (or no such interface), or when a question
  /// is already being passed on by this object: a loop of connections ends there.
  template <class Interface, class Finder, class Question>
  bool Ask(Finder&& find, Question&& ask);

  /// Forgets what was found: the next question looks again.
  void Forget() { state_ = State{}; }

 private:
  struct State {
    unsigned long long generation = 0;  ///< 0: not looked up
    KEPBaseUnknown_WR object;
    KEPIHardwareMaterial* material = nullptr;
    KEPIRmaMappingManipulator* mapping = nullptr;
  };
  /// True when what was found under `generation` still holds.
  bool Holds(unsigned long long generation) const {
    return state_.generation == generation && (!state_.material || state_.object.IsAlive());
  }
  /// Keeps `material` (borrowed) as found under `generation`.
  void Store(unsigned long long generation, KEPIHardwareMaterial* material);

  State state_;
  /// Set while a question is passed on to the connected texture.
  bool asking_ = false;
};

template <class Interface, class Finder, class Question>
bool KEPRshConnectedTextureCache::Ask(Finder&& find, Question&& ask) {
  static_assert(std::is_same_v<Interface, KEPIHardwareMaterial> ||
                std::is_same_v<Interface, KEPIRmaMappingManipulator>);
  if (asking_) return false;
  const unsigned long long generation = KEPRshParameterServices::GetConnectionGeneration();
  if (!Holds(generation)) {
    Forget();
    KEP_var<KEPIHardwareMaterial> material;
    if (!find(material)) return false;
    Store(generation, material.Get());
  }
  Interface* target = nullptr;
  if constexpr (std::is_same_v<Interface, KEPIHardwareMaterial>)
    target = state_.material;
  else
    target = state_.mapping;
  if (!target) return false;
  asking_ = true;
  ask(*target);
  asking_ = false;
  return true;
}
