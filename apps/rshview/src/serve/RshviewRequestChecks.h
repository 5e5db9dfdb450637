// The checks every request of `rshview serve` passes before it reaches the host: its Host and
// Origin headers (a page of another site must not reach the server, even through a name that
// resolves to this machine), its client id, and the shape of its JSON body.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "RshviewServeSession.h"

/// The addresses ("host:port") a request may name in its Host header: 127.0.0.1, localhost and
/// [::1] with `port`, and `bindHost` with `port` (an IPv6 address in brackets).
std::vector<std::string> RshviewOwnAddresses(const std::string& bindHost, int port);

/// `host` (a Host header) is one of `own` (host names compared without regard to case).
bool RshviewHostAllowed(const std::string& host, const std::vector<std::string>& own);

/// `origin` (an Origin header) is "http://" followed by one of `own`.
bool RshviewOriginAllowed(const std::string& origin, const std::vector<std::string>& own);

/// A client id of 1 to 64 letters, digits, '-', '_' or '.'.
bool RshviewClientIdValid(const std::string& id);

/// Parses a request body: an empty body is {} when `emptyIsObject`; the body must be a JSON
/// object. False with `error` set: the parser's message with line and column for malformed JSON
/// (`malformed` true), what was wrong else.
bool RshviewParseBody(const std::string& body, bool emptyIsObject, nlohmann::json& json,
                      std::string& error, bool& malformed);

/// Reads the body of POST /api/nodes/{id}/events; false with `error` naming the unknown or
/// missing key, or the key whose value has the wrong type.
bool RshviewReadEditorEvent(const nlohmann::json& body, RshviewEditorEvent& event,
                            std::string& error);

/// Reads the body of POST /api/nodes/{id}/reset, as RshviewReadEditorEvent does; exactly one of
/// `path` and `parameter` must be given.
bool RshviewReadParameterReset(const nlohmann::json& body, RshviewParameterReset& reset,
                               std::string& error);

/// The editor kind of a query or a body: "immersive" or "classic", else false.
bool RshviewEditorKindValid(const std::string& kind);
