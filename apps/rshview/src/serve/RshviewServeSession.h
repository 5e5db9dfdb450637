// What `rshview serve` does with the host: the document, the editors it keeps open, the events
// played on them, the viewer's answers, the display units and saving. Every member runs on the
// one user-interface thread that owns the host (the HTTP layer hands requests over through
// RshviewUiQueue); only Revision() may be read from any thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "KEPRshModelEvents.h"
#include "RshviewCommand.h"
#include "RshviewEditor.h"
#include "RshviewEditorDiff.h"
#include "RshviewEventStream.h"
#include "RshviewReply.h"
#include "RshviewValueLog.h"

/// One user event on an editor, as POST /api/nodes/{id}/events gives it.
struct RshviewEditorEvent {
  std::string editor = "immersive";  ///< "immersive" or "classic"
  bool restricted = false;
  std::string action;
  std::string path;
  std::string argument;
  /// The `view` of the editor answer the event was made on; when given, an editor built again
  /// since refuses the event (its paths may mean other widgets now).
  std::string view;
};

/// A reset of one parameter to its default, as POST /api/nodes/{id}/reset gives it: the
/// parameter of the label at `path` in that editor (the editor resolves it), or the node's
/// parameter named `parameter`; `editor` and `restricted` name the editor whose changed widgets
/// the answer lists.
struct RshviewParameterReset {
  std::string editor = "immersive";
  bool restricted = false;
  std::string parameter;
  std::string path;
  std::string view;  ///< as RshviewEditorEvent::view
};

class RshviewServeSession {
 public:
  /// Works on the loaded document of `context` (which outlives the session) and announces its
  /// changes on `events`.
  RshviewServeSession(RshviewContext& context, RshviewEventStream& events);
  ~RshviewServeSession();
  RshviewServeSession(const RshviewServeSession&) = delete;
  RshviewServeSession& operator=(const RshviewServeSession&) = delete;

  /// At most this many editors are kept open; the one used longest ago is closed for a new one.
  static constexpr std::size_t kMaxOpenEditors = 24;

  RshviewReply Document();
  /// The editor of `node` that `client` works in. Each client (a browser tab) has editors of its
  /// own, so that walking the classic editor into a sub-shader or opening a popup in one tab does
  /// not change what the widget paths of another tab's next event mean; values written anywhere
  /// show in every editor. The answer's `view` (RshviewEditorView) tells what its paths mean.
  /// `compact`: the tree in its compact form (RshviewCompactTree), with the defaults it leaves out.
  RshviewReply Editor(const std::string& node, const std::string& kind, bool restricted,
                      const std::string& client, bool compact = false);
  RshviewReply Event(const std::string& node, const RshviewEditorEvent& event,
                     const std::string& client);
  /// Writes the default the library declares for the parameter (nothing when it holds it already).
  RshviewReply Reset(const std::string& node, const RshviewParameterReset& reset,
                     const std::string& client);
  RshviewReply Material(const std::string& node);
  RshviewReply Texture(const std::string& node);
  RshviewReply Preview(const std::string& node, int size);
  RshviewReply Units();
  /// `body`: {magnitude: unit, ..., "persist": bool}.
  RshviewReply SetUnits(const nlohmann::json& body, const std::string& client);
  RshviewReply Save(const std::string& client);

  /// A parameter was written since the document was loaded or saved.
  bool Dirty() const { return dirty_; }

  /// Names this run of the server (random, 16 hex digits): a client that sees it change knows the
  /// server restarted, its revisions with it.
  const std::string& Instance() const { return instance_; }

  /// Grows with every parameter write and every units change.
  std::uint64_t Revision() const { return revision_.load(); }

 private:
  struct OpenEditor {
    std::string node;
    std::uint64_t lastUse = 0;
    bool classic = false;
    bool restricted = false;
    RshviewEditor editor;
    /// The editor's tree as last written, while nothing changed it since (snapshotStamp equals
    /// the session's stamp_): the "before" of the next event, so each event writes the tree once,
    /// and the answer to the next request of the editor.
    std::unique_ptr<RshviewWidgetText> snapshot;
    std::uint64_t snapshotStamp = 0;
    /// The snapshot's compact form, made on the first request that asks for it.
    std::optional<std::string> compact;
    /// The snapshot's view (empty until asked for: see ViewOf): an event made on a tree of
    /// another view is refused.
    std::string view;
    /// Another editor changed a connection: built again before the next use.
    bool rebuild = false;
  };
  /// Writes the tree of `open` again when something changed it since (its snapshot; the view is
  /// made again when next asked for).
  void Snapshot(OpenEditor& open);
  /// The view of the editor's tree as it is now.
  const std::string& ViewOf(OpenEditor& open);
  /// The node `id`, or null with `reply` set to the 404 answer.
  KEPHostShaderNode* FindNode(const std::string& id, RshviewReply& reply) const;
  /// The editor kept for (client, node, kind), built on first use; null with `reply` set on
  /// failure, or when `view` is given and is not the editor's view now (409).
  OpenEditor* OpenEditorOf(KEPHostShaderNode* node, bool classic, bool restricted,
                           const std::string& client, const std::string& view, RshviewReply& reply);
  /// Runs `change` as `client` and answers the writes, connection changes and created nodes it
  /// made and the widgets of `open` it changed; when `change` returns an error answer, that
  /// answer's status and error with the same lists (what was done before the refusal is done).
  template <class Change>
  RshviewReply Changed(OpenEditor& open, const std::string& client, Change change);
  void NoteWrite(KEPIRshParameter* parameter, KEPRshParameterChangeKind kind);
  static nlohmann::ordered_json Origin(const std::string& client);

  RshviewContext& context_;
  RshviewEventStream& events_;
  RshviewValueLog log_;
  int observer_ = 0;
  std::map<std::string, std::unique_ptr<OpenEditor>> editors_;
  std::atomic<std::uint64_t> revision_{0};
  std::string instance_;
  /// Grows with every event, every parameter write and every rebuild of the editors.
  std::uint64_t stamp_ = 0;
  std::uint64_t uses_ = 0;              ///< requests that used an editor
  const OpenEditor* acting_ = nullptr;  ///< the editor whose event or reset is running
  bool dirty_ = false;
  std::string client_;                  ///< the client whose request is running
  nlohmann::ordered_json writes_;       ///< the value writes of the event that is running
  nlohmann::ordered_json connections_;  ///< its connection changes
  nlohmann::ordered_json created_;      ///< the nodes it created
};
