// Transactions, steps, undo and redo. Everything that must not fail (handing over, unregistering,
// moving a step from one side of the history to the other) relinks what exists and allocates
// nothing.
#include "ndo/ndo_manager.h"

#include <exception>
#include <iterator>
#include <list>
#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "ndo/ndo_object.h"

namespace {

struct Step;

/// One place in a ring. Leaves its ring when destroyed; alone it is a ring of itself.
struct Link {
  Link() : mPrevP(this), mNextP(this) {}
  Link(Link const &) = delete;
  Link & operator=(Link const &) = delete;
  ~Link() { Unlink(); }

  bool IsLinked() const { return mNextP != this; }

  void Unlink() {
    mPrevP->mNextP = mNextP;
    mNextP->mPrevP = mPrevP;
    mPrevP = mNextP = this;
  }

  void LinkBefore(Link & ioOther) {
    Unlink();
    mPrevP = ioOther.mPrevP;
    mNextP = &ioOther;
    mPrevP->mNextP = this;
    ioOther.mPrevP = this;
  }

  Link * mPrevP;
  Link * mNextP;
};

// What a registration can be linked into, each a type of its own so that the ring tells which link
// of the registration it holds.
struct CreatedLink : Link {};  // the objects that a step created
struct DeletedLink : Link {};  // the objects that a step handed over
struct OpenLink : Link {};     // the objects handed over in the open transaction
struct LooseLink : Link {};    // the kept objects that no step can bring back
struct RecordLink : Link {};   // one object's records in all steps

}  // namespace

/// What the manager knows of one undoable object.
struct Ndo_Registration : CreatedLink, DeletedLink, OpenLink, LooseLink {
  Ndo_Object * mObjectP = 0;
  bool mIsKept = false;
  unsigned long long mAnnouncedIn = 0;  // number of the transaction; 0: none yet
  RecordLink mRecords;
};

namespace {

/// An announced object in a step. The state is the one before the step while the step can be
/// undone, the one after it while it can be redone. Both fields are null once the object is
/// destroyed.
struct Record : RecordLink {
  Ndo_Registration * mRegistrationP = 0;
  std::unique_ptr<Ndo_State> mStateP;
};

struct Step {
  std::string mName;
  std::list<Record> mRecords;  // in order of announcement
  CreatedLink mCreated;
  DeletedLink mDeleted;
};

template <class TLink>
Ndo_Registration & GetRegistration(Link & iLink) {
  return static_cast<Ndo_Registration &>(static_cast<TLink &>(iLink));
}

/// Sets a flag for the length of a scope.
class FlagScope {
public:
  explicit FlagScope(bool & ioFlag) : mFlag(ioFlag), mFormer(ioFlag) { mFlag = true; }
  FlagScope(FlagScope const &) = delete;
  FlagScope & operator=(FlagScope const &) = delete;
  ~FlagScope() { mFlag = mFormer; }

private:
  bool & mFlag;
  bool const mFormer;
};

}  // namespace

struct Ndo_Manager::History {
  typedef std::list<Step> Steps;

  Ndo_Registration * Find(long long iID);
  Ndo_Registration & Add(Ndo_Object * iObjectP, long long iID);
  void RequireIdle(char const * iWhat) const;

  void Keep(Ndo_Registration & ioRegistration);
  void Revive(Ndo_Registration & ioRegistration);
  void Restore(Record & iRecord, Ndo_State * iStateP);
  void Exchange(Step & ioStep, bool iBackward);
  void PutBack(std::vector<Record *> const & iOrder,
               std::vector<std::unique_ptr<Ndo_State>> const & iStates, size_t iNum);
  std::exception_ptr Rewind(Step & ioStep);

  void DropUndoSteps();
  void DropRedoSteps();
  void DropLoose();
  void Drop(Ndo_Object * iObjectP);

  std::unordered_map<long long, Ndo_Registration> mObjects;
  Steps mUndoSteps, mRedoSteps;    // the next one to take is the last
  Steps mOpenStep;                 // one step in a transaction, else empty
  unsigned long long mSerial = 0;  // of the last transaction begun
  long long mNextID = 1;
  OpenLink mHandedOver;  // apart from the steps: an aborted transaction leaves those as they were
  LooseLink mLoose;
  bool mIsDropping = false;   // what is handed over now is handed over by a dropped owner
  bool mIsRestoring = false;  // what is looked up now is wired in
};

namespace {

template <class TLink, class TFunction>
void ForEach(TLink & iRing, TFunction const & iFunction) {
  for (Link * p = iRing.mNextP; p != &iRing; p = p->mNextP)
    iFunction(GetRegistration<TLink>(*p));
}

template <class TLink>
void UnlinkAll(TLink & ioRing) {
  while (ioRing.IsLinked())
    ioRing.mNextP->Unlink();
}

std::vector<Record *> InRestoringOrder(Step & ioStep, bool iBackward) {
  std::vector<Record *> order;
  order.reserve(ioStep.mRecords.size());
  for (Record & record : ioStep.mRecords)
    order.push_back(&record);
  if (iBackward) return std::vector<Record *>(order.rbegin(), order.rend());
  return order;
}

/// Present states of the objects that live; null for the others.
std::vector<std::unique_ptr<Ndo_State>> TakeStates(std::vector<Record *> const & iRecords) {
  std::vector<std::unique_ptr<Ndo_State>> states;
  states.reserve(iRecords.size());
  for (Record * recordP : iRecords) {
    Ndo_Registration * const registrationP = recordP->mRegistrationP;
    states.emplace_back(registrationP ? registrationP->mObjectP->NdoGetState() : 0);
  }
  return states;
}

}  // namespace

Ndo_Registration * Ndo_Manager::History::Find(long long iID) {
  auto const found = mObjects.find(iID);
  return found == mObjects.end() ? 0 : &found->second;
}

Ndo_Registration & Ndo_Manager::History::Add(Ndo_Object * iObjectP, long long iID) {
  Ndo_Registration & registration = mObjects[iID];
  registration.mObjectP = iObjectP;
  if (!mOpenStep.empty()) registration.CreatedLink::LinkBefore(mOpenStep.front().mCreated);
  return registration;
}

void Ndo_Manager::History::RequireIdle(char const * iWhat) const {
  if (!mOpenStep.empty()) throw std::logic_error(std::string(iWhat) + " inside a transaction");
}

void Ndo_Manager::History::Keep(Ndo_Registration & ioRegistration) {
  ioRegistration.mIsKept = true;
  ioRegistration.LooseLink::Unlink();
}

void Ndo_Manager::History::Revive(Ndo_Registration & ioRegistration) {
  ioRegistration.mIsKept = false;
  ioRegistration.LooseLink::Unlink();
}

// A record whose object is gone, destroyed by the restoring of another one included, is passed
// over.
void Ndo_Manager::History::Restore(Record & iRecord, Ndo_State * iStateP) {
  if (iRecord.mRegistrationP == 0 || iStateP == 0) return;
  FlagScope const restoring(mIsRestoring);
  iRecord.mRegistrationP->mObjectP->NdoRestoreState(iStateP);
}

// Whatever can fail comes before the first change or is put back. States change places last.
void Ndo_Manager::History::Exchange(Step & ioStep, bool iBackward) {
  std::vector<Record *> const order = InRestoringOrder(ioStep, iBackward);
  std::vector<std::unique_ptr<Ndo_State>> present = TakeStates(order);
  auto const revive = [this](Ndo_Registration & ioOne) { Revive(ioOne); };
  auto const keep = [this](Ndo_Registration & ioOne) { Keep(ioOne); };

  if (iBackward)
    ForEach(ioStep.mDeleted, revive);
  else
    ForEach(ioStep.mCreated, revive);
  size_t num = 0;
  try {
    for (; num < order.size(); ++num)
      Restore(*order[num], order[num]->mStateP.get());
  } catch (...) {
    PutBack(order, present, num);
    if (iBackward)
      ForEach(ioStep.mDeleted, keep);
    else
      ForEach(ioStep.mCreated, keep);
    throw;
  }
  for (size_t i = 0; i < order.size(); ++i)
    if (order[i]->mRegistrationP) order[i]->mStateP.swap(present[i]);
  if (iBackward)
    ForEach(ioStep.mCreated, keep);
  else
    ForEach(ioStep.mDeleted, keep);
}

// The first iNum, the last first. An object that cannot be put back stays as it is: the failure
// that led here is the one to tell.
void Ndo_Manager::History::PutBack(std::vector<Record *> const & iOrder,
                                   std::vector<std::unique_ptr<Ndo_State>> const & iStates,
                                   size_t iNum) {
  while (iNum-- > 0) {
    try {
      Restore(*iOrder[iNum], iStates[iNum].get());
    } catch (...) {
    }
  }
}

// Restores as much as can be and gives the first failure.
std::exception_ptr Ndo_Manager::History::Rewind(Step & ioStep) {
  std::exception_ptr failure;
  for (auto record = ioStep.mRecords.rbegin(); record != ioStep.mRecords.rend(); ++record) {
    try {
      Restore(*record, record->mStateP.get());
    } catch (...) {
      if (!failure) failure = std::current_exception();
    }
  }
  return failure;
}

// What a step that can be undone created lives, or is kept by the step that handed it over.
void Ndo_Manager::History::DropUndoSteps() {
  for (Step & step : mUndoSteps) {
    UnlinkAll(step.mCreated);
    ForEach(step.mDeleted, [this](Ndo_Registration & ioOne) {
      if (ioOne.mIsKept) ioOne.LooseLink::LinkBefore(mLoose);
    });
    UnlinkAll(step.mDeleted);
  }
  mUndoSteps.clear();
}

// What a step that can be redone handed over lives again, unless it was created in one of them.
// First all hand-overs are forgotten, so that what is left of them belongs to the open step.
void Ndo_Manager::History::DropRedoSteps() {
  for (Step & step : mRedoSteps)
    UnlinkAll(step.mDeleted);
  for (Step & step : mRedoSteps) {
    ForEach(step.mCreated, [this](Ndo_Registration & ioOne) {
      bool const isHandedOver = ioOne.DeletedLink::IsLinked() || ioOne.OpenLink::IsLinked();
      if (ioOne.mIsKept && !isHandedOver) ioOne.LooseLink::LinkBefore(mLoose);
    });
    UnlinkAll(step.mCreated);
  }
  mRedoSteps.clear();
}

// A dropped owner hands over what it owns, which thereby joins the ring behind it.
void Ndo_Manager::History::DropLoose() {
  FlagScope const dropping(mIsDropping);
  while (mLoose.IsLinked())
    Drop(GetRegistration<LooseLink>(*mLoose.mNextP).mObjectP);
}

void Ndo_Manager::History::Drop(Ndo_Object * iObjectP) {
  iObjectP->NdoCleanup();
  delete iObjectP;
}

/// The manager has neither dynamic initialisation nor a destructor, so that static objects can
/// register and unregister whenever they are built and destroyed.
struct Ndo_ManagerInstance {
  static Ndo_Manager sManager;
};
constinit Ndo_Manager Ndo_ManagerInstance::sManager;
constinit Ndo_Manager & Ndo_gManager = Ndo_ManagerInstance::sManager;

Ndo_Manager::History & Ndo_Manager::GetHistory() {
  if (mHistoryP == 0) mHistoryP = new History;
  return *mHistoryP;
}

void Ndo_Manager::BeginTransaction(std::string const & iName) {
  History & history = GetHistory();
  history.RequireIdle("Begin");
  History::Steps step(1);
  step.front().mName = iName;
  history.mOpenStep.splice(history.mOpenStep.end(), step);
  ++history.mSerial;
}

bool Ndo_Manager::EndTransaction() {
  if (!IsRecording()) throw std::logic_error("End without a transaction");
  History & history = *mHistoryP;
  Step & step = history.mOpenStep.front();
  bool const isStep = !step.mRecords.empty() || history.mHandedOver.IsLinked();
  if (isStep) {
    history.DropRedoSteps();
    ForEach(history.mHandedOver,
            [&step](Ndo_Registration & ioOne) { ioOne.DeletedLink::LinkBefore(step.mDeleted); });
    UnlinkAll(history.mHandedOver);
    history.mUndoSteps.splice(history.mUndoSteps.end(), history.mOpenStep);
  } else {
    UnlinkAll(step.mCreated);
    history.mOpenStep.clear();
  }
  history.DropLoose();
  return isStep;
}

void Ndo_Manager::AbortTransaction() {
  if (!IsRecording()) throw std::logic_error("Abort without a transaction");
  History & history = *mHistoryP;
  History::Steps aborted;
  aborted.swap(history.mOpenStep);
  Step & step = aborted.front();
  ForEach(history.mHandedOver, [&history](Ndo_Registration & ioOne) { history.Revive(ioOne); });
  UnlinkAll(history.mHandedOver);
  UnlinkAll(step.mCreated);
  if (std::exception_ptr const failure = history.Rewind(step)) std::rethrow_exception(failure);
}

bool Ndo_Manager::IsRecording() const {
  return mHistoryP && !mHistoryP->mOpenStep.empty();
}

bool Ndo_Manager::Undo() {
  History & history = GetHistory();
  history.RequireIdle("Undo");
  if (history.mUndoSteps.empty()) return false;
  history.Exchange(history.mUndoSteps.back(), true);
  history.mRedoSteps.splice(history.mRedoSteps.end(), history.mUndoSteps,
                            std::prev(history.mUndoSteps.end()));
  return true;
}

bool Ndo_Manager::Redo() {
  History & history = GetHistory();
  history.RequireIdle("Redo");
  if (history.mRedoSteps.empty()) return false;
  history.Exchange(history.mRedoSteps.back(), false);
  history.mUndoSteps.splice(history.mUndoSteps.end(), history.mRedoSteps,
                            std::prev(history.mRedoSteps.end()));
  return true;
}

int Ndo_Manager::GetNumUndoSteps() const {
  return mHistoryP ? static_cast<int>(mHistoryP->mUndoSteps.size()) : 0;
}

int Ndo_Manager::GetNumRedoSteps() const {
  return mHistoryP ? static_cast<int>(mHistoryP->mRedoSteps.size()) : 0;
}

std::string Ndo_Manager::GetUndoName() const {
  return GetNumUndoSteps() ? mHistoryP->mUndoSteps.back().mName : std::string();
}

std::string Ndo_Manager::GetRedoName() const {
  return GetNumRedoSteps() ? mHistoryP->mRedoSteps.back().mName : std::string();
}

void Ndo_Manager::ClearHistory() {
  History & history = GetHistory();
  history.DropUndoSteps();
  history.DropRedoSteps();
  history.DropLoose();
}

void Ndo_Manager::DropUnreferenced() {
  GetHistory().DropLoose();
}

bool Ndo_Manager::HasAnnounced(long long iID) const {
  if (!IsRecording()) return false;
  Ndo_Registration const * const registrationP = mHistoryP->Find(iID);
  return registrationP && registrationP->mAnnouncedIn == mHistoryP->mSerial;
}

int Ndo_Manager::GetNumAnnounced() const {
  return IsRecording() ? static_cast<int>(mHistoryP->mOpenStep.front().mRecords.size()) : 0;
}

Ndo_Object * Ndo_Manager::LookupObject(long long iID) {
  Ndo_Registration * const registrationP = mHistoryP ? mHistoryP->Find(iID) : 0;
  if (registrationP == 0) return 0;
  if (mHistoryP->mIsRestoring && registrationP->mIsKept) {
    mHistoryP->Revive(*registrationP);
    registrationP->DeletedLink::Unlink();
    registrationP->OpenLink::Unlink();
  }
  return registrationP->mObjectP;
}

bool Ndo_Manager::IsKept(long long iID) const {
  Ndo_Registration const * const registrationP = mHistoryP ? mHistoryP->Find(iID) : 0;
  return registrationP && registrationP->mIsKept;
}

// The former object goes before the new one is restored: what it hands over is what the state
// names.
Ndo_Object * Ndo_Manager::ReCreate(Ndo_State * iStateP, long long iID) {
  if (iStateP == 0) return 0;
  History & history = GetHistory();
  if (LookupObject(iID) && !IsKept(iID)) throw std::logic_error("identifier in use");
  std::unique_ptr<Ndo_Object> object(iStateP->NdoReCreate());
  if (object == 0) return 0;
  if (Ndo_Object * const formerP = LookupObject(iID)) {
    FlagScope const dropping(history.mIsDropping);
    history.Drop(formerP);
  }
  object->mRegistrationP = &history.Add(object.get(), iID);
  object->mUndoID = iID;
  if (iID >= history.mNextID) history.mNextID = iID + 1;
  FlagScope const restoring(history.mIsRestoring);
  object->NdoRestoreState(iStateP);
  return object.release();
}

Ndo_Registration * Ndo_Manager::Register(Ndo_Object * iObjectP) {
  History & history = GetHistory();
  Ndo_Registration & registration = history.Add(iObjectP, history.mNextID);
  iObjectP->mUndoID = history.mNextID++;
  return &registration;
}

void Ndo_Manager::Unregister(Ndo_Registration * iRegistrationP) noexcept {
  RecordLink & records = iRegistrationP->mRecords;
  while (records.IsLinked()) {
    Record & record = static_cast<Record &>(static_cast<RecordLink &>(*records.mNextP));
    record.Unlink();
    record.mRegistrationP = 0;
    record.mStateP.reset();
  }
  mHistoryP->mObjects.erase(iRegistrationP->mObjectP->mUndoID);
}

void Ndo_Manager::HandOver(Ndo_Registration * iRegistrationP) noexcept {
  if (iRegistrationP->mIsKept) return;
  History & history = *mHistoryP;
  iRegistrationP->mIsKept = true;
  if (history.mOpenStep.empty() || history.mIsDropping)
    iRegistrationP->LooseLink::LinkBefore(history.mLoose);
  else
    iRegistrationP->OpenLink::LinkBefore(history.mHandedOver);
}

void Ndo_Manager::Announce(Ndo_Registration * iRegistrationP) {
  History & history = *mHistoryP;
  if (history.mOpenStep.empty() || iRegistrationP->mAnnouncedIn == history.mSerial) return;
  std::list<Record> record(1);
  record.front().mStateP.reset(iRegistrationP->mObjectP->NdoGetState());
  record.front().mRegistrationP = iRegistrationP;
  record.front().LinkBefore(iRegistrationP->mRecords);
  Step & step = history.mOpenStep.front();
  step.mRecords.splice(step.mRecords.end(), record);
  iRegistrationP->mAnnouncedIn = history.mSerial;
}

void Ndo_Manager::ForgetCreation(Ndo_Registration * iRegistrationP) noexcept {
  iRegistrationP->CreatedLink::Unlink();
}

Ndo_Transaction::Ndo_Transaction(std::string const & iName) : mEnded(false) {
  Ndo_gManager.BeginTransaction(iName);
}

Ndo_Transaction::~Ndo_Transaction() {
  if (mEnded || !Ndo_gManager.IsRecording()) return;
  try {
    Ndo_gManager.AbortTransaction();
  } catch (...) {
  }
}

bool Ndo_Transaction::End() {
  bool const isStep = Ndo_gManager.EndTransaction();
  mEnded = true;
  return isStep;
}
