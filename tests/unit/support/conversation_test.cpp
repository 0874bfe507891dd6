#include "support/conversation.h"

#include <gtest/gtest.h>

namespace av::test {
namespace {

const Conversation threeInOrder{"A", "B", "C"};

TEST(ConversationMatcher, AgreesWithTheSameCallsInTheSameOrder) {
  EXPECT_TRUE(agree(threeInOrder, {"A", "B", "C"}));
  EXPECT_TRUE(agree({}, {}));
}

TEST(ConversationMatcher, RefusesAMissingCallWhereverItIsMissing) {
  EXPECT_FALSE(agree(threeInOrder, {"B", "C"}));
  EXPECT_FALSE(agree(threeInOrder, {"A", "C"}));
  EXPECT_FALSE(agree(threeInOrder, {"A", "B"}));
  EXPECT_FALSE(agree(threeInOrder, {}));
}

TEST(ConversationMatcher, RefusesACallThatIsNotExpected) {
  EXPECT_FALSE(agree(threeInOrder, {"X", "A", "B", "C"}));
  EXPECT_FALSE(agree(threeInOrder, {"A", "X", "B", "C"}));
  EXPECT_FALSE(agree(threeInOrder, {"A", "B", "C", "X"}));
  EXPECT_FALSE(agree(threeInOrder, {"A", "B", "C", "C"}));
  EXPECT_FALSE(agree({}, {"A"}));
}

TEST(ConversationMatcher, RefusesAnotherOrder) { EXPECT_FALSE(agree(threeInOrder, {"A", "C", "B"})); }

TEST(ConversationMatcher, LeavesTheOrderInsideAGroupOpenAndItsBordersClosed) {
  const Conversation expected{"A", inAnyOrder({"B", "C", "D"}), "E"};
  EXPECT_TRUE(agree(expected, {"A", "B", "C", "D", "E"}));
  EXPECT_TRUE(agree(expected, {"A", "D", "B", "C", "E"}));
  EXPECT_FALSE(agree(expected, {"B", "A", "C", "D", "E"}));
  EXPECT_FALSE(agree(expected, {"A", "B", "C", "E", "D"}));
  EXPECT_FALSE(agree(expected, {"A", "B", "C", "E"}));
  EXPECT_FALSE(agree(expected, {"A", "B", "C", "D", "D", "E"}));
}

TEST(ConversationMatcher, KeepsTheOrderOfEachSequenceThatItInterleaves) {
  const Conversation expected{interleaved({{"A", "B"}, {"C", "D"}})};
  EXPECT_TRUE(agree(expected, {"A", "B", "C", "D"}));
  EXPECT_TRUE(agree(expected, {"C", "A", "D", "B"}));
  EXPECT_FALSE(agree(expected, {"B", "A", "C", "D"}));
  EXPECT_FALSE(agree(expected, {"D", "C", "A", "B"}));
}

TEST(ConversationMatcher, FindsTheWayWhereSequencesBeginAlike) {
  const Conversation expected{interleaved({{"A", "B"}, {"A", "C"}})};
  EXPECT_TRUE(agree(expected, {"A", "C", "A", "B"}));
  EXPECT_TRUE(agree(expected, {"A", "A", "C", "B"}));
  EXPECT_FALSE(agree(expected, {"A", "B", "C", "A"}));
}

TEST(ConversationMatcher, ShowsBothListsAndMarksWhereTheyPart) {
  const std::string message = agree(threeInOrder, {"A", "X", "C"}).message();
  EXPECT_NE(std::string::npos, message.find("A          A"));
  EXPECT_NE(std::string::npos, message.find("B        > X"));
  const std::string shorter = agree(threeInOrder, {"A", "B"}).message();
  EXPECT_NE(std::string::npos, shorter.find("C        > (nothing more)"));
}

}  // namespace
}  // namespace av::test
