// Loads and unloads the plugin again and again, and the measure library with it; the program itself is linked to
// nothing of this project. In the end it leaves a run behind.

#include <support/Maps.hpp>

#include <dlfcn.h>

#include <cstdio>

int main()
{
    for (int round = 0; round < 20; ++round) {
        void* const plugin = dlopen(ORLIX_PLUGIN, RTLD_NOW | RTLD_LOCAL);
        if (plugin == nullptr) {
            std::fprintf(stderr, "%s\n", dlerror());
            return 1;
        }
        const auto measure = reinterpret_cast<double (*)()>(dlsym(plugin, "measureSomething"));
        if (measure == nullptr || measure() != 0 || (round < 19 && dlclose(plugin) != 0)) {
            return 1;
        }
        if (round < 19 && orlix::test::isMapped("libORLIXIPLGlobalMeasure")) {
            std::fprintf(stderr, "the measure library stays loaded\n");
            return 1;
        }
    }
}
