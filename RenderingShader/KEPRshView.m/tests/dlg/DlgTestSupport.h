// Small helpers shared by the classic toolkit's tests.
#pragma once

#include <string>
#include <string_view>

#include "KEPDialog.h"
#include "KEPDlgFrame.h"
#include "KEP_var.h"

namespace dlgtest {

using Root = KEP_var<KEPDialog>;

inline Root MakeRoot(const char* name = "root") {
  return Root::Adopt(new KEPDlgFrame(nullptr, name, 0));
}

/// Subscribes `subscriber` to (sender, kind) with `given` data and counts the calls; the data of
/// the last call lands in `seen`.
inline int Count(KEPDialog* subscriber, KEPDialog* sender, std::string_view kind, int* counter,
                 KEPDlgClientData given = 0, KEPDlgClientData* seen = nullptr) {
  return subscriber->AddCallback(
      sender, kind,
      [counter, seen](KEPDialog*, KEPNotification*, KEPDlgClientData d) {
        ++*counter;
        if (seen) *seen = d;
      },
      given);
}

inline HRESULT Inject(KEPVidWidget* widget, KEPVidAction action, std::string_view argument,
                      std::string* error = nullptr) {
  std::string text;
  const HRESULT hr = widget->InjectUserEvent(action, argument, text);
  if (error) *error = text;
  return hr;
}

}  // namespace dlgtest
