// Model events: what the shader model tells the views that show it.
//
// Every write of a parameter's value or connection is announced after it is made, so that every
// open editor showing the parameter refreshes (two editors of one node stay in step) and the
// application can report it. Structural changes of a shader (a connection made through the
// connection dialog, a node created) are framed by a begin and an end notification, in pairs.
// Observers are called on the user-interface thread, in the order they were added.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <functional>

#include "KEPIUnknown.h"
#include "KEPString.h"
#include "KEPTypes.h"

class KEPBaseUnknown;
class KEPIRshParameter;
class KEPIRshShader;
class KEPIRshShaderSupport;

/// What a parameter change was.
enum class KEPRshParameterChangeKind : int { Value, Connection };

/// Called after a parameter of any shader changed (borrowed pointers, valid during the call).
using KEPRshParameterObserver =
    std::function<void(KEPIRshParameter* parameter, KEPRshParameterChangeKind kind)>;

/// A begin or end of a shader modification: which shader, which class of change ("Connection",
/// "Creation", ...), which attribute kind and a flag the sender chooses.
struct KEPRbaShaderModifyNotification {
  KEPIRshShader* shader = nullptr;  ///< borrowed
  KEPString changeClass;
  int attributeKind = 0;
  int flag = 0;
};
struct KEPRbaBeginShaderModifyNotification : KEPRbaShaderModifyNotification {};
struct KEPRbaEndShaderModifyNotification : KEPRbaShaderModifyNotification {};

/// A float attribute of a shader changed through an editor: sent about the feature that owns the
/// edited node (the node's father: the document, or the shader holding a sub-shader), seen
/// through the document's KEPIRshShaderSupport when it has one, so that its material updates.
struct KEPRbaFloatShaderModifyNotification {
  KEPBaseUnknown* feature = nullptr;        ///< borrowed
  KEPIRshShaderSupport* support = nullptr;  ///< borrowed; null when the feature offers none
  int attributeKind = 0;
};

using KEPRshFloatShaderModifyObserver =
    std::function<void(const KEPRbaFloatShaderModifyNotification& notification)>;

using KEPRshShaderModifyObserver =
    std::function<void(const KEPRbaShaderModifyNotification& notification, bool begin)>;

class KEPRshModelEvents {
 public:
  /// Adds an observer of parameter changes; returns a token for RemoveObserver.
  static int AddParameterObserver(KEPRshParameterObserver observer);
  /// Adds an observer of begin/end shader-modify notifications.
  static int AddShaderModifyObserver(KEPRshShaderModifyObserver observer);
  /// Adds an observer of float shader-modify notifications.
  static int AddFloatShaderModifyObserver(KEPRshFloatShaderModifyObserver observer);
  /// Removes an observer of either kind; an unknown token does nothing. Safe inside a call.
  static void RemoveObserver(int token);

  /// Announces a change of `parameter` (the shader model calls this after each write).
  static void NoteParameterChange(KEPIRshParameter* parameter, KEPRshParameterChangeKind kind);
  /// Sends a begin or an end notification.
  static void SendBegin(const KEPRbaBeginShaderModifyNotification& notification);
  static void SendEnd(const KEPRbaEndShaderModifyNotification& notification);
  /// Sends a float shader-modify notification to its observers.
  static void SendFloatShaderModify(const KEPRbaFloatShaderModifyNotification& notification);
};

#pragma GCC visibility pop
