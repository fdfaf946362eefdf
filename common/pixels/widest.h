// Compiles a plain loop several times and runs the version with the widest vectors the processor has.
#pragma once

namespace pixels {

/// Vector registers that widest() may use, in the order of their width.
enum class VectorLevel { base, avx2, avx512 };

/// What this processor has, or the lower level that limitVectors() set.
VectorLevel vectorLevel() noexcept;

/// For tests, which compare the versions: never use more than this level.
void limitVectors(VectorLevel most) noexcept;

namespace detail {

template <class Loop> [[gnu::flatten, gnu::noinline]] void onBase(Loop& loop) { loop(); }

#if defined(__x86_64__) && !defined(__clang__)
template <class Loop> [[gnu::target("avx2"), gnu::flatten, gnu::noinline]] void onAvx2(Loop& loop) { loop(); }

template <class Loop>
[[gnu::target("avx512f,avx512bw,avx512dq,avx512vl,prefer-vector-width=512"), gnu::flatten,
    gnu::noinline]] void
onAvx512(Loop& loop)
{
    loop();
}
#endif

} // namespace detail

/// Runs loop(), which should be a plain counted loop over contiguous pixels with everything inlined. The
/// versions differ in speed only: the build never contracts or reorders floating-point operations.
template <class Loop> void widest(Loop loop)
{
#if defined(__x86_64__) && !defined(__clang__)
    switch (vectorLevel()) {
    case VectorLevel::avx512:
        return detail::onAvx512(loop);
    case VectorLevel::avx2:
        return detail::onAvx2(loop);
    case VectorLevel::base:
        break;
    }
#endif
    detail::onBase(loop);
}

} // namespace pixels
