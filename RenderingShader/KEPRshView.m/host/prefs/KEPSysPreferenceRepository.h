// The user's preference repositories: named sets of key -> value, kept in one file in the user's
// configuration directory and written only when a repository is committed.
//
// A value is either a short text or a list of short integers (the group collapse states of the
// immersive editor are one short each). The file is read on the first request of any repository;
// each repository keeps the state it last committed apart from its working state, so committing
// one repository never writes another's uncommitted changes.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <map>
#include <string>
#include <variant>
#include <vector>

#include "KEPString.h"
#include "KEPTypes.h"

class KEPSysPreferenceRepository {
 public:
  /// The repository named `name` (borrowed, lives until the host resets or unloads its
  /// preferences), created empty on first request; null for an empty name, a name that is not
  /// valid UTF-8 (traced) or a name the host made unavailable.
  static KEPSysPreferenceRepository* GetRepository(const KEPString& name);

  const KEPString& Name() const { return name_; }

  // --- Text values
  /// The text stored under `key`; E_FAIL with `value` untouched when the key is missing or holds
  /// short values.
  HRESULT GetValue(const KEPString& key, KEPString& value) const;
  /// Stores a text under `key`, replacing what was there; E_INVALIDARG for an empty key, and
  /// (traced) for a key or text that is not valid UTF-8, which the file could not hold as it is.
  HRESULT SetValue(const KEPString& key, const KEPString& value);

  // --- Short values
  /// Copies at most `capacity` short values stored under `key` into `values` and returns how many
  /// were copied: 0 when the key is missing, holds a text, or `values` is null.
  int ReadSetting(const KEPString& key, short* values, int capacity) const;
  /// Stores `count` short values under `key` and returns how many were stored: 0 (nothing
  /// changed) for an empty key, a key that is not valid UTF-8 (traced), a null `values` or a
  /// count below 1.
  int WriteSetting(const KEPString& key, const short* values, int count);

  // --- Keys
  bool HasKey(const KEPString& key) const;
  /// Removes `key`; E_FAIL when it was missing.
  HRESULT RemoveKey(const KEPString& key);
  /// Keys of the working state, in lexicographic order.
  std::vector<KEPString> Keys() const;

  /// Makes the working state the committed state and writes the preference file atomically; the
  /// file then holds exactly what a new session reads back. E_FAIL (traced, naming the file)
  /// when the file cannot be written: the committed state and the file stay as they were, and
  /// the working state keeps its changes for a later attempt.
  HRESULT Commit();
  /// True when the working state differs from the committed state.
  bool HasUncommittedChanges() const;

  using Value = std::variant<KEPString, std::vector<short>>;
  using Values = std::map<KEPString, Value>;

  KEPSysPreferenceRepository(const KEPSysPreferenceRepository&) = delete;
  KEPSysPreferenceRepository& operator=(const KEPSysPreferenceRepository&) = delete;

 private:
  friend struct KEPPreferenceStore;
  explicit KEPSysPreferenceRepository(KEPString name) : name_(std::move(name)) {}
  /// False (traced) when `key`, or `text` when given, is not valid UTF-8.
  bool Storable(const KEPString& key, const KEPString* text) const;

  KEPString name_;
  Values values_;     ///< working state
  Values committed_;  ///< state in the file (or to be written to it)
};

#pragma GCC visibility pop
