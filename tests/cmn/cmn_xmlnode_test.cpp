#include "cmn/cmn_xmlnode.h"

#include <limits>

#include <gtest/gtest.h>

TEST(Cmn_CreateXMLNode, NameAlone) {
  Cmn_XMLNodePtr const node = Cmn_CreateXMLNode("Chunk");
  EXPECT_EQ("Chunk", node->GetName());
  EXPECT_EQ("", node->GetValue());
  EXPECT_EQ(0, node->GetNumChildren());
}

TEST(Cmn_CreateXMLNode, IntValueIsDecimal) {
  EXPECT_EQ("-12", Cmn_CreateXMLNode("Number", -12)->GetValue());
  EXPECT_EQ("12", Cmn_CreateXMLNode("Number", 12, 1)->GetValue());
}

TEST(Cmn_CreateXMLNode, SignedCharValueIsANumberNotACharacter) {
  EXPECT_EQ("65", Cmn_CreateXMLNode("Number", static_cast<signed char>(65))->GetValue());
  EXPECT_EQ("-1", Cmn_CreateXMLNode("Number", static_cast<signed char>(-1), 0)->GetValue());
}

TEST(Cmn_CreateXMLNode, StringValueIsKept) {
  EXPECT_EQ("a < b & c", Cmn_CreateXMLNode("Text", std::string("a < b & c"))->GetValue());
  EXPECT_EQ("literal", Cmn_CreateXMLNode("Text", "literal", 0)->GetValue());
}

TEST(Cmn_CreateXMLNode, NodeBelongsToItsHandle) {
  EXPECT_EQ(1, Cmn_CreateXMLNode("Chunk")->GetRefCount());
}

TEST(Cmn_XMLNode_AddChild, KeepsTheOrder) {
  Cmn_XMLNodePtr const node = Cmn_CreateXMLNode("Parent");
  node->AddChild(Cmn_CreateXMLNode("First"));
  node->AddChild(Cmn_CreateXMLNode("Second"));
  ASSERT_EQ(2, node->GetNumChildren());
  EXPECT_EQ("First", node->GetChild(0)->GetName());
  EXPECT_EQ("Second", node->GetChild(1)->GetName());
}

TEST(Cmn_XMLNode_AddChild, NullDoesNothing) {
  Cmn_XMLNodePtr const node = Cmn_CreateXMLNode("Parent");
  node->AddChild(Cmn_XMLNodePtr());
  EXPECT_EQ(0, node->GetNumChildren());
}

TEST(Cmn_XMLNode_AddChild, SharesTheChild) {
  Cmn_XMLNodePtr const child = Cmn_CreateXMLNode("Child");
  {
    Cmn_XMLNodePtr const node = Cmn_CreateXMLNode("Parent");
    node->AddChild(child);
    EXPECT_EQ(2, child->GetRefCount());
  }
  EXPECT_EQ(1, child->GetRefCount());
}

TEST(Cmn_XMLNode_GetChild, GivesNullOutsideTheChildren) {
  Cmn_XMLNodePtr const node = Cmn_CreateXMLNode("Parent");
  node->AddChild(Cmn_CreateXMLNode("Child"));
  EXPECT_FALSE(node->GetChild(-1));
  EXPECT_TRUE(node->GetChild(0));
  EXPECT_FALSE(node->GetChild(1));
}

TEST(Cmn_XMLNode_FindChild, GivesTheNthOfAName) {
  Cmn_XMLNodePtr const node = Cmn_CreateXMLNode("Parent");
  node->AddChild(Cmn_CreateXMLNode("A", 1));
  node->AddChild(Cmn_CreateXMLNode("B", 2));
  node->AddChild(Cmn_CreateXMLNode("A", 3));
  EXPECT_EQ("1", node->FindChild("A")->GetValue());
  EXPECT_EQ("3", node->FindChild("A", 1)->GetValue());
  EXPECT_EQ("2", node->FindChild("B", 0)->GetValue());
}

TEST(Cmn_XMLNode_FindChild, GivesNullIfAbsent) {
  Cmn_XMLNodePtr const node = Cmn_CreateXMLNode("Parent");
  node->AddChild(Cmn_CreateXMLNode("A"));
  EXPECT_FALSE(node->FindChild("C"));
  EXPECT_FALSE(node->FindChild("A", 1));
  EXPECT_FALSE(node->FindChild("A", -1));
}

TEST(Cmn_XMLNode_ForwardDeclarationHack, Counts) {
  Cmn_XMLNodePtr const node = Cmn_CreateXMLNode("Node");
  Cmn_XMLNode_ForwardDeclarationHack::AddReference(node.Get());
  EXPECT_EQ(2, node->GetRefCount());
  Cmn_XMLNode_ForwardDeclarationHack::RemoveReference(node.Get());
  EXPECT_EQ(1, node->GetRefCount());
}

TEST(Cmn_Int32ToString, IsDecimal) {
  EXPECT_EQ("0", Cmn_Int32ToString(0));
  EXPECT_EQ("1000000", Cmn_Int32ToString(1000000));
  EXPECT_EQ("-2147483648", Cmn_Int32ToString(std::numeric_limits<int>::min()));
  EXPECT_EQ("2147483647", Cmn_Int32ToString(std::numeric_limits<int>::max()));
}
