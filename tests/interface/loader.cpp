// Opens the libraries it is given, one after the other, as a host does: with immediate binding.
#include <cstdio>

#include <dlfcn.h>

int main(int count, char** arguments)
{
    for (int i = 1; i < count; ++i) {
        if (dlopen(arguments[i], RTLD_NOW | RTLD_GLOBAL) == nullptr) {
            std::fprintf(stderr, "%s\n", dlerror());
            return 1;
        }
    }
    return 0;
}
