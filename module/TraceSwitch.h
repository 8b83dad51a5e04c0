#pragma once

#include "host/system/NamedEvents.h"

// Decides whether a module's trace lines are written. All modules of the user's logon agree by an
// event: the first one makes it and signals it when the registry says so, the others find it. The
// first module also records in events which modifier keys were held when it started.
class TraceSwitch {
  public:
    // Takes the decision, once; later changes of the event or the registry are not seen.
    TraceSwitch();
    // This module's switch, made at the first use and destroyed when the module is unloaded.
    static const TraceSwitch& OfThisModule();

    bool Enabled() const { return enabled_; }

  private:
    void RecordModifierKeys();
    void DecideForTheLogon();

    // Handles keep their events alive for the other modules; null when those were there before.
    bool enabled_ = false;
    CEventHandle owned_enable_event_;
    CEventHandle modifier_event_;
    CEventHandle checkpoint_event_;
};
