// Loads and unloads the plugin again and again; the program itself is linked to nothing of this project.

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
        if (measure == nullptr || measure() != 0 || dlclose(plugin) != 0) {
            return 1;
        }
    }
}
