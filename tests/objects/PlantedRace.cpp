// A race on purpose: two ranges of the executor write one number. Under the thread sanitizer this program must fail,
// which shows that the sanitizer sees through the executor.

#include <framework/process/Executor.hpp>

#include <cstdio>

int main()
{
    volatile long shared = 0;
    const auto body = [&](std::size_t, std::size_t) {
        for (int i = 0; i < 100000; ++i) {
            shared = shared + 1;
        }
    };
    for (int round = 0; round < 20; ++round) {
        orlix::imaproc::executor::parallelFor(8, 1, orlix::imaproc::ePriority::eP_Normal,
                                              orlix::imaproc::RangeBody{body});
    }
    std::printf("%ld\n", static_cast<long>(shared));
}
