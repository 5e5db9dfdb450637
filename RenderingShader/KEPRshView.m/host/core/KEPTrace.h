// Traces: named channels with information, warning and error levels, the classic module trace
// with numeric levels, and non-fatal assertions. Everything goes to one process-wide sink that
// the application prints and tests capture.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <functional>
#include <string>

enum class KEPTraceLevel { Info, Warning, Error, Module, Assertion };

struct KEPTraceEntry {
  std::string channel;  ///< channel name, "module" for the module trace, "assert" for assertions
  KEPTraceLevel level;
  int moduleLevel = 0;  ///< numeric level of a module trace entry
  std::string text;
  std::string file;  ///< source path of error entries and assertions
  int line = 0;
};

using KEPTraceSinkFn = std::function<void(const KEPTraceEntry&)>;

class KEPTraceSink {
 public:
  /// Installs the sink and returns the previous one; an empty function drops every entry.
  static KEPTraceSinkFn Set(KEPTraceSinkFn sink);
  static void Emit(const KEPTraceEntry& entry);
  /// Formats an entry as one line for a terminal.
  static std::string Format(const KEPTraceEntry& entry);
};

/// A named trace channel ("KEPRmaUI", "KEPRshParameterConfiguration", a class name).
class KEPTrace {
 public:
  explicit KEPTrace(std::string name) : name_(std::move(name)) {}
  const std::string& Name() const { return name_; }

  void Info(const char* format, ...) const __attribute__((format(printf, 2, 3)));
  void Warning(const char* format, ...) const __attribute__((format(printf, 2, 3)));
  void Error(const char* file, int line, const char* format, ...) const
      __attribute__((format(printf, 4, 5)));

 private:
  std::string name_;
};

/// The module's classic trace with numeric levels; disabled (level 0) until the host enables it.
class KEPModuleTrace {
 public:
  static void SetLevel(int maxLevel);
  static int GetLevel();
  static bool IsEnabled(int level);
  /// Writes when `level` is enabled.
  static void Trace(int level, const char* format, ...) __attribute__((format(printf, 2, 3)));
};

/// printf-style formatting into a std::string.
std::string KEPFormat(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Reports "AssertionFailed:" + condition + explanation with the source path and goes on.
void KEPAssertReport(const char* condition, const char* sourcePath, int line);
/// Prints the same text to standard error and stops the process.
[[noreturn]] void KEPAssertFatalReport(const char* condition, const char* sourcePath, int line);

/// Non-fatal assertion: `condition` is the text after "AssertionFailed:" when it fails.
#define KEP_ASSERT(expr, conditionText, sourcePath)                    \
  do {                                                                 \
    if (!(expr)) KEPAssertReport(conditionText, sourcePath, __LINE__); \
  } while (0)
#define KEP_ASSERT_FATAL(expr, conditionText, sourcePath)                   \
  do {                                                                      \
    if (!(expr)) KEPAssertFatalReport(conditionText, sourcePath, __LINE__); \
  } while (0)

#pragma GCC visibility pop
