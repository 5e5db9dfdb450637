// Announces a change of an introspected property of a module control to whatever is bound to it
// (the parts a style built), through the control's introspection adapter.
#pragma once

class KEPBaseUnknown;

class KEPRshIntrospectionAnnouncer {
 public:
  /// Tells the bound parts of `object` that `property` changed. The object is asked for
  /// KEPISYPIntrospectable; without it nothing happens. Its implementation must be a
  /// KEPSYPIntrospectableAdapter: any other raises the non-fatal assertion "Bad Introspectable
  /// implementation!" under `sourcePath` (the control's), and nothing is dispatched.
  static void Announce(KEPBaseUnknown* object, const char* property, const char* sourcePath);
};
