#pragma once

// What two parties are expected to say to each other, and whether they did.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

namespace av::test {

/// Calls in the order in which they have to come, each spelled as the recording party writes it down.
using Calls = std::vector<std::string>;

/// One step of an expected conversation: a single call, or several sequences whose order among each other is open.
/// Inside each of the sequences the order counts.
struct Step {
  Step(const char* call) : sequences{{call}} {}  // NOLINT(google-explicit-constructor): lists of calls read so
  Step(std::string call) : sequences{{std::move(call)}} {}  // NOLINT(google-explicit-constructor)
  explicit Step(std::vector<Calls> interleaved) : sequences(std::move(interleaved)) {}

  std::vector<Calls> sequences;
};

using Conversation = std::vector<Step>;

/// Each of `calls` once, in whatever order.
inline Step inAnyOrder(std::initializer_list<const char*> calls) {
  std::vector<Calls> sequences;
  for (const char* call : calls) sequences.push_back({call});
  return Step(std::move(sequences));
}

/// All of the sequences, each in its own order, interleaved in whatever way.
inline Step interleaved(std::vector<Calls> sequences) { return Step(std::move(sequences)); }

/// One conversation after the other.
inline Conversation operator+(Conversation first, const Conversation& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

namespace detail {

/// Walks through expectation and calls side by side. Sequences of one step may begin with the same call, so a choice
/// that leads nowhere is taken back.
class ConversationMatch {
 public:
  ConversationMatch(const Conversation& expected, const Calls& said) : m_expected(expected), m_said(said) {}

  bool matches() { return step(0, 0); }
  /// How many of the calls can be explained at most.
  std::size_t explained() const { return m_explained; }

 private:
  bool step(std::size_t index, std::size_t call) {
    m_explained = std::max(m_explained, call);
    if (index == m_expected.size()) return call == m_said.size();
    std::vector<std::size_t> positions(m_expected[index].sequences.size(), 0);
    return sequences(index, positions, call);
  }

  bool sequences(std::size_t index, std::vector<std::size_t>& positions, std::size_t call) {
    m_explained = std::max(m_explained, call);
    const std::vector<Calls>& open = m_expected[index].sequences;
    bool done = true;
    for (std::size_t i = 0; i < open.size(); ++i) {
      if (positions[i] == open[i].size()) continue;
      done = false;
      if (call == m_said.size() || open[i][positions[i]] != m_said[call]) continue;
      ++positions[i];
      if (sequences(index, positions, call + 1)) return true;
      --positions[i];
    }
    return done && step(index + 1, call);
  }

  const Conversation& m_expected;
  const Calls& m_said;
  std::size_t m_explained = 0;
};

inline Calls lines(const Conversation& expected) {
  Calls result;
  for (const Step& step : expected) {
    const bool single = step.sequences.size() == 1;
    char label = 'a';
    for (const Calls& sequence : step.sequences) {
      for (const std::string& call : sequence) result.push_back(single ? call : std::string(1, label) + "| " + call);
      ++label;
    }
  }
  return result;
}

}  // namespace detail

/// Whether exactly the expected calls were made: none missing, none besides. The failure shows both lists side by
/// side, with "a|", "b|" before the sequences of one unordered step, and marks the first call that does not fit.
inline testing::AssertionResult agree(const Conversation& expected, const Calls& said) {
  detail::ConversationMatch match(expected, said);
  if (match.matches()) return testing::AssertionSuccess();
  const Calls left = detail::lines(expected);
  std::size_t width = 8;
  for (const std::string& line : left) width = std::max(width, line.size());
  std::ostringstream table;
  table << "the conversation went another way\n"
        << "   " << std::left << std::setw(static_cast<int>(width)) << "expected"
        << "   said\n";
  // One row more than calls: the mark may stand where calls are missing at the end.
  const std::size_t rows = std::max(left.size(), said.size() + 1);
  for (std::size_t row = 0; row < rows; ++row) {
    const std::string& expectedCall = row < left.size() ? left[row] : std::string();
    const std::string& saidCall = row < said.size() ? said[row] : std::string();
    const bool first = row == match.explained();
    if (expectedCall.empty() && saidCall.empty() && !first) continue;
    table << "   " << std::left << std::setw(static_cast<int>(width)) << expectedCall << (first ? " > " : "   ")
          << (first && saidCall.empty() ? "(nothing more)" : saidCall) << '\n';
  }
  return testing::AssertionFailure() << table.str();
}

}  // namespace av::test
