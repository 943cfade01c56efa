#include <support/Read.hpp>

#include <immintrin.h>

namespace orlix::bench
{

long readBytes(const void* bytes, std::size_t size)
{
    const auto* const p = static_cast<const char*>(bytes);
    __m256i sum[4] = {};
    for (std::size_t i = 0; i + 128 <= size; i += 128) {
        for (std::size_t k = 0; k < 4; ++k) {
            const auto* const pack = reinterpret_cast<const __m256i*>(p + i + 32 * k);
            sum[k] = _mm256_add_epi64(sum[k], _mm256_loadu_si256(pack));
        }
    }
    const __m256i all = _mm256_add_epi64(_mm256_add_epi64(sum[0], sum[1]), _mm256_add_epi64(sum[2], sum[3]));
    return all[0] + all[1] + all[2] + all[3];
}

} // namespace orlix::bench
