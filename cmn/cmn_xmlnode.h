// The dump tree: what an object says about itself, for inspection.
#pragma once

#include <string>
#include <vector>

#include "cmn/cmn_refcountobject.h"
#include "foundation/vrad_export.h"

class Cmn_XMLNode;

/// Counts handles on a node for those who know the class only by name.
class VRAD_EXPORT Cmn_XMLNode_ForwardDeclarationHack {
public:
  static void AddReference(Cmn_XMLNode const * iNodeP);
  static void RemoveReference(Cmn_XMLNode const * iNodeP);
};

typedef Cmn_AliasedRefCountPtr<Cmn_XMLNode, Cmn_XMLNode *, Cmn_XMLNode_ForwardDeclarationHack>
    Cmn_XMLNodePtr;

/// A name, a value and children in order. Shared by handles; one thread at a time.
class VRAD_EXPORT Cmn_XMLNode : public Cmn_RefCountObject {
public:
  explicit Cmn_XMLNode(std::string const & iName, std::string const & iValue = std::string());
  Cmn_XMLNode(Cmn_XMLNode const &) = delete;
  Cmn_XMLNode & operator=(Cmn_XMLNode const &) = delete;

  std::string const & GetName() const;
  std::string const & GetValue() const;

  int GetNumChildren() const;

  /// Null outside [0, GetNumChildren()).
  Cmn_XMLNodePtr GetChild(int iIndex) const;

  /// The child of that name with `iNth` others of the name before it; null if absent.
  Cmn_XMLNodePtr FindChild(std::string const & iName, int iNth = 0) const;

  /// Puts a child last. Null: nothing. Needs: this node is not below the child.
  void AddChild(Cmn_XMLNodePtr const & iChild);

protected:
  ~Cmn_XMLNode() override;

private:
  std::string mName, mValue;
  std::vector<Cmn_XMLNodePtr> mChildren;  // none null
};

/// A node without children. A number's value is its decimal text; the last argument is reserved.
VRAD_EXPORT Cmn_XMLNodePtr Cmn_CreateXMLNode(std::string const & iName);
VRAD_EXPORT Cmn_XMLNodePtr Cmn_CreateXMLNode(std::string const & iName, int iValue,
                                             int iReserved = 0);
VRAD_EXPORT Cmn_XMLNodePtr Cmn_CreateXMLNode(std::string const & iName, signed char iValue,
                                             int iReserved = 0);
VRAD_EXPORT Cmn_XMLNodePtr Cmn_CreateXMLNode(std::string const & iName, std::string const & iValue,
                                             int iReserved = 0);

/// Decimal text, whatever the locale.
VRAD_EXPORT std::string Cmn_Int32ToString(int iValue);
