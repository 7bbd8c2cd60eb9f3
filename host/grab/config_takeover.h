// Takes a changed configuration over into a running grab, and back when the camera refuses it.
#ifndef KXHOST_CONFIG_TAKEOVER_H
#define KXHOST_CONFIG_TAKEOVER_H

namespace kxhost {

struct HostServices;

// All of these are for the grab thread.

/// Takes the live keys of what is offered. Returns whether there was something.
bool takeLive(HostServices& host);

/// Takes what a reload offers as a whole. Returns whether there was something; `restart` tells
/// whether the grab has to start again for it, and is left alone when nothing was taken.
bool takeReload(HostServices& host, bool& restart);

/// The camera runs with what was taken last: there is no way back any more.
void settleReload(HostServices& host);

/// Brings back what was in force before the last reload, if that is not settled yet. Returns
/// whether there was something to bring back.
bool fallBack(HostServices& host);

} // namespace kxhost

#endif
