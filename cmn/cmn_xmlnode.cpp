#include "cmn/cmn_xmlnode.h"

void Cmn_XMLNode_ForwardDeclarationHack::AddReference(Cmn_XMLNode const * iNodeP) {
  iNodeP->AddReference();
}

void Cmn_XMLNode_ForwardDeclarationHack::RemoveReference(Cmn_XMLNode const * iNodeP) {
  iNodeP->RemoveReference();
}

Cmn_XMLNode::Cmn_XMLNode(std::string const & iName, std::string const & iValue)
    : mName(iName), mValue(iValue) {}
Cmn_XMLNode::~Cmn_XMLNode() = default;

std::string const & Cmn_XMLNode::GetName() const {
  return mName;
}

std::string const & Cmn_XMLNode::GetValue() const {
  return mValue;
}

int Cmn_XMLNode::GetNumChildren() const {
  return static_cast<int>(mChildren.size());
}

Cmn_XMLNodePtr Cmn_XMLNode::GetChild(int iIndex) const {
  if (iIndex < 0 || iIndex >= GetNumChildren()) return Cmn_XMLNodePtr();
  return mChildren[static_cast<size_t>(iIndex)];
}

Cmn_XMLNodePtr Cmn_XMLNode::FindChild(std::string const & iName, int iNth) const {
  for (Cmn_XMLNodePtr const & child : mChildren) {
    if (child->GetName() == iName && iNth-- == 0) return child;
  }
  return Cmn_XMLNodePtr();
}

void Cmn_XMLNode::AddChild(Cmn_XMLNodePtr const & iChild) {
  if (iChild) mChildren.push_back(iChild);
}

Cmn_XMLNodePtr Cmn_CreateXMLNode(std::string const & iName) {
  return Cmn_XMLNodePtr(new Cmn_XMLNode(iName));
}

Cmn_XMLNodePtr Cmn_CreateXMLNode(std::string const & iName, int iValue, int) {
  return Cmn_XMLNodePtr(new Cmn_XMLNode(iName, Cmn_Int32ToString(iValue)));
}

Cmn_XMLNodePtr Cmn_CreateXMLNode(std::string const & iName, signed char iValue, int) {
  return Cmn_XMLNodePtr(new Cmn_XMLNode(iName, Cmn_Int32ToString(iValue)));
}

Cmn_XMLNodePtr Cmn_CreateXMLNode(std::string const & iName, std::string const & iValue, int) {
  return Cmn_XMLNodePtr(new Cmn_XMLNode(iName, iValue));
}

std::string Cmn_Int32ToString(int iValue) {
  return std::to_string(iValue);
}
