// The undo history: transactions, steps, and the objects that they keep alive.
#pragma once

#include <string>

#include "foundation/vrad_export.h"

class Ndo_Object;
class Ndo_State;
struct Ndo_ManagerInstance;
struct Ndo_Registration;

/// The one undo manager of the process, `Ndo_gManager`. It knows every undoable object by its
/// identifier, takes a snapshot of each object that announces an edit in a transaction, and keeps
/// the objects that left their owners for as long as a step may bring them back.
/// Thread: one at a time, the one that edits. Usable before every dynamic initialiser and after
/// every static destructor.
class VRAD_EXPORT Ndo_Manager {
public:
  Ndo_Manager(Ndo_Manager const &) = delete;
  Ndo_Manager & operator=(Ndo_Manager const &) = delete;

  /// Opens a transaction. `iName` is shown by `GetUndoName` and `GetRedoName` once it is a step.
  /// Fails: `std::logic_error` inside a transaction.
  void BeginTransaction(std::string const & iName = std::string());

  /// Closes the transaction. True: a step was recorded, because some object announced an edit or
  /// was handed over; the redo steps are then gone. Drops what is kept for no step. Fails:
  /// `std::logic_error` without a transaction.
  bool EndTransaction();

  /// Restores what was announced, the last first, revives what was handed over, and records
  /// nothing. Objects created meanwhile live on. Fails: `std::logic_error` without a transaction;
  /// passes on the first exception of an object's restoring after the others were restored.
  void AbortTransaction();

  bool IsRecording() const;

  /// Takes back the last step, or repeats the last step taken back. False: nothing to do. Objects
  /// destroyed since are passed over.
  /// Fails: `std::logic_error` inside a transaction; when an object throws, the objects are put
  /// back as they were and the step stays where it was.
  bool Undo();
  bool Redo();

  int GetNumUndoSteps() const;
  int GetNumRedoSteps() const;

  /// Name of the step that `Undo` or `Redo` would take next; empty if there is none.
  std::string GetUndoName() const;
  std::string GetRedoName() const;

  /// Drops all steps, then what is kept for no step. An open transaction stays open.
  void ClearHistory();

  /// Destroys the kept objects that no step can bring back.
  void DropUnreferenced();

  /// Whether the object announced an edit in the open transaction. O(1).
  bool HasAnnounced(long long iID) const;

  /// Objects that announced in the open transaction; 0 outside one.
  int GetNumAnnounced() const;

  /// The living or kept object of an identifier, null if there is none. O(1). While an object is
  /// being restored by this manager, a kept object that is looked up is revived.
  Ndo_Object * LookupObject(long long iID);

  /// Whether the manager holds the object, handed over by `NdoDelete` or by an undone creation.
  bool IsKept(long long iID) const;

  /// Brings a destroyed object back: `NdoReCreate`, then the identifier, then `NdoRestoreState`;
  /// kept objects that the state names are revived. The state stays the caller's, the object
  /// belongs to the caller. A kept object of that identifier is destroyed and replaced. Null state:
  /// null. Fails: `std::logic_error` if the identifier belongs to an object that is not kept;
  /// passes on what the state or the object throws, and nothing is left behind.
  Ndo_Object * ReCreate(Ndo_State * iStateP, long long iID);

private:
  friend class Ndo_Object;
  friend struct Ndo_ManagerInstance;

  struct History;

  constexpr Ndo_Manager() : mHistoryP(0) {}

  History & GetHistory();
  Ndo_Registration * Register(Ndo_Object * iObjectP);
  void Unregister(Ndo_Registration * iRegistrationP) noexcept;
  void HandOver(Ndo_Registration * iRegistrationP) noexcept;
  void Announce(Ndo_Registration * iRegistrationP);
  void ForgetCreation(Ndo_Registration * iRegistrationP) noexcept;

  History * mHistoryP;  // built at the first use, never destroyed
};

extern VRAD_EXPORT Ndo_Manager & Ndo_gManager;

/// A transaction for the length of a scope: aborted at its end unless `End` was called.
class VRAD_EXPORT Ndo_Transaction {
public:
  explicit Ndo_Transaction(std::string const & iName = std::string());
  Ndo_Transaction(Ndo_Transaction const &) = delete;
  Ndo_Transaction & operator=(Ndo_Transaction const &) = delete;
  ~Ndo_Transaction();

  /// As `Ndo_Manager::EndTransaction`.
  bool End();

private:
  bool mEnded;
};
