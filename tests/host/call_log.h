#pragma once

#include "support/conversation.h"

#include <windows.h>

#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <utility>

namespace av::test {

/// Where a recording party writes down the calls that are made on it, and looks up how to answer. A call is spelled
/// "Interface::Method(arguments that matter)"; scripts go by the part before the parenthesis. [control thread]
class CallLog {
 public:
  using Hook = std::function<void()>;

  /// From now on `method` answers with this failure (or other result) and does nothing.
  void answer(const std::string& method, HRESULT result) { m_answers[method] = result; }
  void answerAsUsual() { m_answers.clear(); }
  /// Runs once, inside the next call of `method`, before it answers.
  void inside(const std::string& method, Hook hook) { m_hooks[method] = std::move(hook); }
  /// Whether a hook is still waiting for its call.
  bool isWaitingFor(const std::string& method) const { return m_hooks.count(method) != 0; }

  /// Writes a call down, runs its hook, and returns the scripted result, or `usual`.
  HRESULT note(const std::string& method, const std::string& arguments = {}, HRESULT usual = S_OK) {
    m_calls.push_back(method + "(" + arguments + ")");
    ++m_counts[method];
    if (const auto found = m_hooks.find(method); found != m_hooks.end()) {
      const Hook hook = std::move(found->second);
      m_hooks.erase(found);
      hook();
    }
    const auto answer = m_answers.find(method);
    return answer == m_answers.end() ? usual : answer->second;
  }

  /// The calls since the last look, in their order.
  Calls take() { return std::exchange(m_calls, {}); }
  const Calls& calls() const { return m_calls; }
  /// How often `method` was called in all.
  int count(const std::string& method) const {
    const auto found = m_counts.find(method);
    return found == m_counts.end() ? 0 : found->second;
  }

  /// Breaches of COM's own rules: a call on a party that nobody holds, a Release too many.
  void complain(const std::string& what) { m_complaints.push_back(what); }
  const Calls& complaints() const { return m_complaints; }

 private:
  Calls m_calls;
  Calls m_complaints;
  std::map<std::string, int> m_counts;
  std::map<std::string, Hook> m_hooks;
  std::map<std::string, HRESULT> m_answers;
};

/// Counts the references on one recording party. The party itself lives as long as its container, so that a call after
/// the last Release is seen and not a crash.
class CountedParty {
 public:
  CountedParty(CallLog& log, std::string name) : m_log(log), m_name(std::move(name)) {}
  CountedParty(const CountedParty&) = delete;
  CountedParty& operator=(const CountedParty&) = delete;

  ULONG addRef() { return static_cast<ULONG>(++m_references); }
  ULONG release() {
    if (m_references == 0) {
      m_log.complain("one Release too many on the " + m_name);
      return 0;
    }
    return static_cast<ULONG>(--m_references);
  }
  /// References that others hold; the container itself holds none.
  long references() const { return m_references; }

  HRESULT note(const std::string& method, const std::string& arguments = {}, HRESULT usual = S_OK) {
    if (m_references == 0) m_log.complain(method + " on the " + m_name + ", which the caller does not hold");
    return m_log.note(method, arguments, usual);
  }
  const std::string& name() const { return m_name; }

 private:
  CallLog& m_log;
  std::string m_name;
  long m_references = 0;
};

inline std::string text(const RECT& rect) {
  std::ostringstream out;
  out << rect.left << ',' << rect.top << ',' << rect.right << ',' << rect.bottom;
  return out.str();
}

}  // namespace av::test
