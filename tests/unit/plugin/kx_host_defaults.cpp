// The default services in a source file of their own, as hosts have them.
#include <kx_host_defaults.h>
