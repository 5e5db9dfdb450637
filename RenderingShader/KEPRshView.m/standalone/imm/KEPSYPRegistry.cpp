// The registry of introspectable classes: builders and adapter factories by class name.
//
// A builder runs on the first Find of its class; what it built is kept for the process (a
// replaced builder's metaclass too, since callers hold borrowed pointers to it). A builder that
// fails, names no class or another class, or names its own class as its base is traced on channel
// "KEPSYP" once, and its class stays without a metaclass until a builder is registered again.
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "KEPSYPMetaClass.h"
#include "KEPTrace.h"

namespace {

constexpr const char* kSource = "RenderingShader/KEPRshView.m/standalone/imm/KEPSYPRegistry";

const KEPTrace& Trace() {
  static const KEPTrace trace("KEPSYP");
  return trace;
}

enum class BuildState { NotBuilt, Building, Built, Failed };

struct Registration {
  KEPSYPBuilderFunction builder = nullptr;
  BuildState state = BuildState::NotBuilt;
  std::unique_ptr<KEPSYPMetaClass> metaclass;
};

struct Registry {
  std::map<std::string, Registration, std::less<>> classes;
  std::map<std::string, KEPSYPAdapterFactory, std::less<>> adapters;
  /// Metaclasses of replaced builders: still valid for whoever borrowed them.
  std::vector<std::unique_ptr<KEPSYPMetaClass>> retired;
};

// Never destroyed: controls released while the process exits may still ask for their metaclass.
Registry& TheRegistry() {
  static Registry& registry = *new Registry;
  return registry;
}

unsigned ResultBits(HRESULT result) {
  return static_cast<unsigned>(static_cast<std::uint32_t>(result));
}

/// Runs the builder of `className`; the metaclass on success, else null (traced).
std::unique_ptr<KEPSYPMetaClass> RunBuilder(std::string_view className,
                                            KEPSYPBuilderFunction builder) {
  const std::string name(className);
  auto metaclass = std::make_unique<KEPSYPMetaClass>();
  KEPSYPMetaClassBuilder filler(*metaclass);
  HRESULT result = E_FAIL;
  try {
    result = builder(filler);
  } catch (const std::exception& e) {
    Trace().Error(kSource, __LINE__, "Builder threw { class = %s, what = %s }", name.c_str(),
                  e.what());
    return nullptr;
  } catch (...) {
    Trace().Error(kSource, __LINE__, "Builder threw { class = %s }", name.c_str());
    return nullptr;
  }
  if (FAILED(result)) {
    Trace().Error(kSource, __LINE__, "Builder failed { class = %s, result = 0x%08X }", name.c_str(),
                  ResultBits(result));
    return nullptr;
  }
  if (metaclass->GetName() != className) {
    Trace().Error(kSource, __LINE__, "Builder named another class { class = %s, named = %s }",
                  name.c_str(), metaclass->GetName().c_str());
    return nullptr;
  }
  if (metaclass->GetBaseName() == className) {
    Trace().Error(kSource, __LINE__, "Class names itself as its base { class = %s }", name.c_str());
    return nullptr;
  }
  return metaclass;
}

}  // namespace

void KEPSYPRegistry::RegisterBuilder(const char* className, KEPSYPBuilderFunction builder) {
  if (!className || !*className || !builder) {
    Trace().Error(kSource, __LINE__, "Builder registration without class name or builder");
    return;
  }
  Registry& registry = TheRegistry();
  Registration& registration = registry.classes[className];
  if (registration.metaclass) registry.retired.push_back(std::move(registration.metaclass));
  registration.builder = builder;
  registration.state = BuildState::NotBuilt;
}

void KEPSYPRegistry::RegisterAdapter(const char* className, KEPSYPAdapterFactory factory) {
  if (!className || !*className || !factory) {
    Trace().Error(kSource, __LINE__, "Adapter registration without class name or factory");
    return;
  }
  TheRegistry().adapters.insert_or_assign(className, factory);
}

const KEPSYPMetaClass* KEPSYPRegistry::Find(std::string_view className) {
  Registry& registry = TheRegistry();
  auto it = registry.classes.find(className);
  if (it == registry.classes.end()) return nullptr;
  switch (it->second.state) {
    case BuildState::Built:
      return it->second.metaclass.get();
    case BuildState::Failed:
    case BuildState::Building:  // the builder asked for its own class
      return nullptr;
    case BuildState::NotBuilt:
      break;
  }
  it->second.state = BuildState::Building;
  const KEPSYPBuilderFunction builder = it->second.builder;
  std::unique_ptr<KEPSYPMetaClass> built = RunBuilder(className, builder);
  // The builder may have registered or cleared classes: look the entry up again.
  it = registry.classes.find(className);
  if (it == registry.classes.end() || it->second.builder != builder ||
      it->second.state != BuildState::Building)
    return nullptr;
  it->second.state = built ? BuildState::Built : BuildState::Failed;
  it->second.metaclass = std::move(built);
  return it->second.metaclass.get();
}

const KEPSYPMetaClass* KEPSYPRegistry::FindFor(const KEPBaseUnknown* object) {
  if (!object) return nullptr;
  for (const KEPMetaClass* meta = object->GetMetaObject(); meta; meta = meta->Base())
    if (const KEPSYPMetaClass* found = Find(meta->Name())) return found;
  return nullptr;
}

KEPSYPAdapterFactory KEPSYPRegistry::FindAdapter(const KEPBaseUnknown* object) {
  if (!object) return nullptr;
  const Registry& registry = TheRegistry();
  for (const KEPMetaClass* meta = object->GetMetaObject(); meta; meta = meta->Base()) {
    auto it = registry.adapters.find(std::string_view(meta->Name()));
    if (it != registry.adapters.end()) return it->second;
  }
  return nullptr;
}

void KEPSYPRegistry::Clear() {
  Registry& registry = TheRegistry();
  registry.classes.clear();
  registry.adapters.clear();
  registry.retired.clear();
}
