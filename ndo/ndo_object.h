// The base class of everything that can be undone, and of the snapshots it hands out.
#pragma once

#include "foundation/vrad_export.h"

class Ndo_ExternalRefBase;
class Ndo_Manager;
class Ndo_State;
struct Ndo_Registration;

/// An object whose edits can be undone. The undo identifier ties it to the manager's history; an
/// object without one (-1) takes no part in undo and is destroyed at once by `NdoDelete`.
/// Thread: one at a time for all undoable objects together; there are no locks.
class VRAD_EXPORT Ndo_Object {
public:
  enum EUndoFlag : int { kNotUndoable = 0, kUndoable = 1 };

  /// Unregisters: the manager drops every state of this identifier, external references yield null.
  virtual ~Ndo_Object();

  /// The way in which an object leaves its owner. An undoable one passes to the manager, which may
  /// revive it; any other is destroyed. A second call does nothing. Allocates nothing.
  virtual void NdoDelete();

  /// A new snapshot of the present state. A caller other than the manager deletes it.
  virtual Ndo_State * NdoGetState() = 0;

  /// Makes the object equal to the snapshot, which stays the caller's.
  virtual void NdoRestoreState(Ndo_State * iStateP) = 0;

  /// The manager's last call before it destroys an object that it kept. Does nothing here.
  virtual void NdoCleanup();

  /// -1: not undoable. Identifiers are never used twice.
  long long NdoGetID() const { return mUndoID; }
  bool NdoIsUndoable() const { return mUndoID != -1; }

protected:
  /// An undoable object registers with the manager; in a transaction the manager notes its
  /// creation.
  explicit Ndo_Object(EUndoFlag iFlag);

  /// A copy of an undoable object has an identifier of its own, any other has none.
  Ndo_Object(Ndo_Object const & iOther);

  /// Keeps the target's identifier.
  Ndo_Object & operator=(Ndo_Object const & iOther);

  /// Called before the first change of an edit, and only if the edit will change something. In a
  /// transaction the first call takes a snapshot; every other call costs two comparisons.
  /// Fails: passes on what `NdoGetState` throws; the object then counts as not announced.
  void NdoAboutToModify();

  /// Says that an owner, not the manager, destroys this object. Undoing the step that created it
  /// then leaves it with its owner. Called right after construction.
  void NdoSetOwned();

private:
  friend class Ndo_ExternalRefBase;
  friend class Ndo_Manager;

  long long mUndoID;                  // -1: not undoable
  Ndo_Registration * mRegistrationP;  // the manager's; null exactly when not undoable
  Ndo_ExternalRefBase * mFirstRefP;   // all external references to this object, linked
};

/// A snapshot of one object. States name other undoable objects by identifier, never by copy.
class VRAD_EXPORT Ndo_State {
public:
  /// A new blank object of the class that made this state, not undoable. Only
  /// `Ndo_Manager::ReCreate` calls it, and then restores the blank object from this state.
  virtual Ndo_Object * NdoReCreate() = 0;

  virtual ~Ndo_State();

protected:
  Ndo_State() = default;
  Ndo_State(Ndo_State const &) = default;
  Ndo_State & operator=(Ndo_State const &) = default;
};
