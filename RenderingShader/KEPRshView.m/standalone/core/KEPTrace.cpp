#include "KEPTrace.h"

#include "KEPHostContext.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {
struct TraceState {
  KEPTraceSinkFn sink;
  int moduleLevel = 0;
};

KEPTraceSinkFn& Sink() {
  return KEPHostContext::State<TraceState>().sink;
}
int& ModuleLevel() {
  return KEPHostContext::State<TraceState>().moduleLevel;
}

std::string VFormat(const char* format, va_list args) {
  va_list copy;
  va_copy(copy, args);
  const int size = std::vsnprintf(nullptr, 0, format, copy);
  va_end(copy);
  if (size <= 0) return {};
  std::vector<char> buffer(static_cast<std::size_t>(size) + 1);
  std::vsnprintf(buffer.data(), buffer.size(), format, args);
  return std::string(buffer.data(), static_cast<std::size_t>(size));
}

void EmitChannel(const std::string& channel, KEPTraceLevel level, std::string text,
                 const char* file = "", int line = 0) {
  KEPTraceSink::Emit({channel, level, 0, std::move(text), file ? file : "", line});
}
}  // namespace

std::string KEPFormat(const char* format, ...) {
  va_list args;
  va_start(args, format);
  std::string text = VFormat(format, args);
  va_end(args);
  return text;
}

KEPTraceSinkFn KEPTraceSink::Set(KEPTraceSinkFn sink) {
  KEPTraceSinkFn previous = std::move(Sink());
  Sink() = std::move(sink);
  return previous;
}

void KEPTraceSink::Emit(const KEPTraceEntry& entry) {
  if (Sink()) Sink()(entry);
}

std::string KEPTraceSink::Format(const KEPTraceEntry& entry) {
  std::string text = entry.text;
  while (!text.empty() && text.back() == '\n') text.pop_back();
  switch (entry.level) {
    case KEPTraceLevel::Info:
      return "[" + entry.channel + "] info: " + text;
    case KEPTraceLevel::Warning:
      return "[" + entry.channel + "] warning: " + text;
    case KEPTraceLevel::Error:
      return "[" + entry.channel + "] error: " + text + " (" + entry.file + ":" +
             std::to_string(entry.line) + ")";
    case KEPTraceLevel::Module:
      return "[module " + std::to_string(entry.moduleLevel) + "] " + text;
    case KEPTraceLevel::Assertion:
      return "[assert] " + text + " (" + entry.file + ":" + std::to_string(entry.line) + ")";
  }
  return text;
}

void KEPTrace::Info(const char* format, ...) const {
  if (!Sink()) return;  // nobody listens: not even the text is made
  va_list args;
  va_start(args, format);
  EmitChannel(name_, KEPTraceLevel::Info, VFormat(format, args));
  va_end(args);
}

void KEPTrace::Warning(const char* format, ...) const {
  if (!Sink()) return;  // nobody listens: not even the text is made
  va_list args;
  va_start(args, format);
  EmitChannel(name_, KEPTraceLevel::Warning, VFormat(format, args));
  va_end(args);
}

void KEPTrace::Error(const char* file, int line, const char* format, ...) const {
  if (!Sink()) return;  // nobody listens: not even the text is made
  va_list args;
  va_start(args, format);
  EmitChannel(name_, KEPTraceLevel::Error, VFormat(format, args), file, line);
  va_end(args);
}

void KEPModuleTrace::SetLevel(int maxLevel) {
  ModuleLevel() = maxLevel;
}
int KEPModuleTrace::GetLevel() {
  return ModuleLevel();
}
bool KEPModuleTrace::IsEnabled(int level) {
  return level > 0 && level <= ModuleLevel();
}

void KEPModuleTrace::Trace(int level, const char* format, ...) {
  if (!IsEnabled(level) || !Sink()) return;
  va_list args;
  va_start(args, format);
  KEPTraceEntry entry{"module", KEPTraceLevel::Module, level, VFormat(format, args), "", 0};
  va_end(args);
  KEPTraceSink::Emit(entry);
}

void KEPAssertReport(const char* condition, const char* sourcePath, int line) {
  KEPTraceSink::Emit({"assert", KEPTraceLevel::Assertion, 0,
                      std::string("AssertionFailed:") + condition, sourcePath ? sourcePath : "",
                      line});
}

void KEPAssertFatalReport(const char* condition, const char* sourcePath, int line) {
  std::fprintf(stderr, "AssertionFailed:%s (%s:%d)\n", condition, sourcePath ? sourcePath : "",
               line);
  std::fflush(stderr);
  std::abort();
}
