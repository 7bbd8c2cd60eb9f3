// The host services in which the example does not differ from the usual.
#include <kx_host_defaults.h>
