// Sets a flag for as long as the scope lives and then puts back what it held. Widgets and frames
// mark what they do themselves (showing a value, writing their own edit) so that the
// notifications it causes are not taken for a person's edit or for someone else's write.
#pragma once

class KEPRshFlagScope {
 public:
  KEPRshFlagScope(bool& flag, bool value) : flag_(flag), saved_(flag) { flag_ = value; }
  ~KEPRshFlagScope() { flag_ = saved_; }
  KEPRshFlagScope(const KEPRshFlagScope&) = delete;
  KEPRshFlagScope& operator=(const KEPRshFlagScope&) = delete;

 private:
  bool& flag_;
  bool saved_;
};
