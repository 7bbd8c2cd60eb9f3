// The host services as this process exports them: kx_host.h with its functions visible.
#ifndef KXHOST_SERVICE_EXPORTS_H
#define KXHOST_SERVICE_EXPORTS_H

#pragma GCC visibility push(default)
#include <kx_host.h>
#pragma GCC visibility pop

#endif
