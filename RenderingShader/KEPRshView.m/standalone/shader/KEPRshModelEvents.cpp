#include "KEPRshModelEvents.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "KEPHostContext.h"

namespace {

// Observers of both kinds, in the order they were added. Removal during a dispatch only empties
// the entry; the list is compacted once no dispatch is running, so a dispatch never sees its
// list move under it and an observer removed by an earlier one is not called.
struct ModelEventsState {
  struct Entry {
    int token;
    KEPRshParameterObserver parameter;
    KEPRshShaderModifyObserver shader;
    KEPRshFloatShaderModifyObserver floatModify;
    bool Empty() const { return !parameter && !shader && !floatModify; }
  };
  std::vector<Entry> entries;
  int nextToken = 1;
  int dispatching = 0;
  std::size_t removed = 0;  ///< emptied entries still in the list

  // Entries stay in token order (tokens grow, compaction keeps the order), so a removal finds
  // its entry by binary search; the list is compacted once half of it is empty, so that closing
  // an editor of many widgets costs each widget a logarithm, not a pass over every observer.
  void Compact() {
    if (dispatching > 0 || removed * 2 <= entries.size()) return;
    std::erase_if(entries, [](const Entry& e) { return e.Empty(); });
    removed = 0;
  }
};

ModelEventsState& State() {
  return KEPHostContext::State<ModelEventsState>();
}

template <class Call>
void Dispatch(Call call) {
  ModelEventsState& state = State();
  ++state.dispatching;
  // Observers added during the dispatch wait for the next one.
  const std::size_t count = state.entries.size();
  for (std::size_t i = 0; i < count; ++i) call(state.entries[i]);
  --state.dispatching;
  state.Compact();
}

void SendShaderModify(const KEPRbaShaderModifyNotification& notification, bool begin) {
  Dispatch([&](ModelEventsState::Entry& entry) {
    if (entry.shader) {
      const KEPRshShaderModifyObserver observer = entry.shader;  // may remove itself
      observer(notification, begin);
    }
  });
}

}  // namespace

int KEPRshModelEvents::AddParameterObserver(KEPRshParameterObserver observer) {
  ModelEventsState& state = State();
  const int token = state.nextToken++;
  state.entries.push_back({token, std::move(observer), {}, {}});
  return token;
}

int KEPRshModelEvents::AddShaderModifyObserver(KEPRshShaderModifyObserver observer) {
  ModelEventsState& state = State();
  const int token = state.nextToken++;
  state.entries.push_back({token, {}, std::move(observer), {}});
  return token;
}

int KEPRshModelEvents::AddFloatShaderModifyObserver(KEPRshFloatShaderModifyObserver observer) {
  ModelEventsState& state = State();
  const int token = state.nextToken++;
  state.entries.push_back({token, {}, {}, std::move(observer)});
  return token;
}

void KEPRshModelEvents::RemoveObserver(int token) {
  ModelEventsState& state = State();
  auto entry = std::lower_bound(
      state.entries.begin(), state.entries.end(), token,
      [](const ModelEventsState::Entry& e, int wanted) { return e.token < wanted; });
  if (entry == state.entries.end() || entry->token != token) return;
  if (entry->Empty()) return;
  entry->parameter = nullptr;
  entry->shader = nullptr;
  entry->floatModify = nullptr;
  ++state.removed;
  state.Compact();
}

void KEPRshModelEvents::NoteParameterChange(KEPIRshParameter* parameter,
                                            KEPRshParameterChangeKind kind) {
  Dispatch([&](ModelEventsState::Entry& entry) {
    if (entry.parameter) {
      const KEPRshParameterObserver observer = entry.parameter;  // may remove itself
      observer(parameter, kind);
    }
  });
}

void KEPRshModelEvents::SendBegin(const KEPRbaBeginShaderModifyNotification& notification) {
  SendShaderModify(notification, true);
}

void KEPRshModelEvents::SendEnd(const KEPRbaEndShaderModifyNotification& notification) {
  SendShaderModify(notification, false);
}

void KEPRshModelEvents::SendFloatShaderModify(
    const KEPRbaFloatShaderModifyNotification& notification) {
  Dispatch([&](ModelEventsState::Entry& entry) {
    if (entry.floatModify) {
      const KEPRshFloatShaderModifyObserver observer = entry.floatModify;  // may remove itself
      observer(notification);
    }
  });
}
