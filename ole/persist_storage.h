#pragma once

#include "ole/part.h"

#include <objidl.h>

namespace av::ole {

/// IPersistStorage: the persisted extent as the stream "Contents" of a storage. [control thread]
///
/// The container walks the control through these states; the control holds on to no storage in any of them:
///
///     new --InitNew, Load--> normal --Save--> saving --SaveCompleted--> normal
///     normal or saving --HandsOffStorage--> hands off --SaveCompleted with a storage--> normal
///
/// A second InitNew or Load is CO_E_ALREADYINITIALIZED, a call that the state does not allow E_UNEXPECTED. Saving a new
/// control is allowed, since it may have been initialised through another of its persistence interfaces.
class PersistStorage final : public ControlPart<IPersistStorage> {
 public:
  using ControlPart::ControlPart;

  STDMETHODIMP GetClassID(CLSID* classId) override;
  STDMETHODIMP IsDirty() override;
  STDMETHODIMP InitNew(IStorage* storage) override;
  STDMETHODIMP Load(IStorage* storage) override;
  STDMETHODIMP Save(IStorage* storage, BOOL sameAsLoad) override;
  STDMETHODIMP SaveCompleted(IStorage* storage) override;
  STDMETHODIMP HandsOffStorage() override;

 private:
  enum class State { newlyMade, normal, saving, handsOff };

  State m_state = State::newlyMade;
  bool m_savedOwnStorage = false;  // the save that is under way goes to the control's own storage
  bool m_savePending = false;      // a save waits for its SaveCompleted
};

}  // namespace av::ole
