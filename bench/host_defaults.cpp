// The host services in which the benchmarks' host does not differ from the usual.
#include <kx_host_defaults.h>
