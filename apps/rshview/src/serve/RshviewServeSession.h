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
};

/// A reset of one parameter to its default, as POST /api/nodes/{id}/reset gives it; `editor` and
/// `restricted` name the editor whose changed widgets the answer lists.
struct RshviewParameterReset {
  std::string editor = "immersive";
  bool restricted = false;
  std::string parameter;
};

class RshviewServeSession {
 public:
  /// Works on the loaded document of `context` (which outlives the session) and announces its
  /// changes on `events`.
  RshviewServeSession(RshviewContext& context, RshviewEventStream& events);
  ~RshviewServeSession();
  RshviewServeSession(const RshviewServeSession&) = delete;
  RshviewServeSession& operator=(const RshviewServeSession&) = delete;

  RshviewReply Document();
  RshviewReply Editor(const std::string& node, const std::string& kind, bool restricted);
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
    bool classic = false;
    bool restricted = false;
    RshviewEditor editor;
    /// The editor's tree as last written, while nothing changed it since (snapshotStamp equals
    /// the session's stamp_): the "before" of the next event, so each event writes the tree once,
    /// and the answer to the next request of the editor.
    std::unique_ptr<RshviewWidgetText> snapshot;
    std::uint64_t snapshotStamp = 0;
  };
  /// The node `id`, or null with `reply` set to the 404 answer.
  KEPHostShaderNode* FindNode(const std::string& id, RshviewReply& reply) const;
  /// The editor kept for (node, kind), built on first use; null with `reply` set on failure.
  OpenEditor* OpenEditorOf(KEPHostShaderNode* node, bool classic, bool restricted,
                           RshviewReply& reply);
  /// Runs `change` as `client`: its error answer when it returns one, else the writes it made and
  /// the widgets of `open` it changed.
  template <class Change>
  RshviewReply Changed(OpenEditor& open, const std::string& client, Change change);
  void NoteWrite(KEPIRshParameter* parameter);
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
  bool dirty_ = false;
  std::string client_;             ///< the client whose request is running
  nlohmann::ordered_json writes_;  ///< the writes of the event that is running
};
