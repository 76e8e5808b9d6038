#pragma once

#include <QtGlobal>

#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Most text of a print run is ASCII: requests are read from UTF-8 into
// UTF-16, and print files written back from it into one byte a character.
// These copy and test sixteen characters at a time where the processor has
// the registers for it (every x86-64 has), and leave the rest to the
// caller's own loop.
namespace AsciiBlocks {

#if defined(__SSE2__)
namespace Detail {

// Bytes below 0x80 widened, and their control characters made blanks.
inline __m128i blanked(__m128i bytes)
{
    const __m128i blank = _mm_set1_epi8(0x20);
    // Signed comparisons hold: every byte here is below 0x80.
    const __m128i controls = _mm_or_si128(_mm_cmplt_epi8(bytes, blank), _mm_cmpeq_epi8(bytes, _mm_set1_epi8(0x7f)));
    return _mm_or_si128(_mm_andnot_si128(controls, bytes), _mm_and_si128(controls, blank));
}

} // namespace Detail
#endif

// Widens the leading ASCII of `in` into `out`, control characters (below
// 0x20, and 0x7F) as blanks when asked; answers how many bytes were copied,
// which stops at the first byte above 0x7F or at the end.
inline qsizetype widen(const char* in, qsizetype length, char16_t* out, bool blankControls)
{
    qsizetype i = 0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    for (; length - i >= 16; i += 16) {
        __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i));
        if (_mm_movemask_epi8(bytes) != 0)
            break;
        if (blankControls)
            bytes = Detail::blanked(bytes);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_unpacklo_epi8(bytes, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i + 8), _mm_unpackhi_epi8(bytes, zero));
    }
    // Most names and values are short: eight bytes, then four, at a time.
    if (length - i >= 8) {
        __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(in + i));
        if ((_mm_movemask_epi8(bytes) & 0xff) == 0) {
            if (blankControls)
                bytes = Detail::blanked(bytes);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_unpacklo_epi8(bytes, zero));
            i += 8;
        }
    }
    if (length - i >= 4) {
        int word;
        std::memcpy(&word, in + i, 4);
        __m128i bytes = _mm_cvtsi32_si128(word);
        if ((_mm_movemask_epi8(bytes) & 0xf) == 0) {
            if (blankControls)
                bytes = Detail::blanked(bytes);
            _mm_storel_epi64(reinterpret_cast<__m128i*>(out + i), _mm_unpacklo_epi8(bytes, zero));
            i += 4;
        }
    }
#endif
    for (; i < length && static_cast<unsigned char>(in[i]) < 0x80; ++i) {
        const char16_t c = char16_t(in[i]);
        out[i] = blankControls && (c < 0x20 || c == 0x7f) ? u' ' : c;
    }
    return i;
}

// Narrows the leading ASCII of `in` into `out`, one byte a character, in
// blocks of sixteen; answers how many characters were copied.
inline qsizetype narrow(const char16_t* in, qsizetype length, char* out)
{
    qsizetype i = 0;
#if defined(__SSE2__)
    const __m128i nonAscii = _mm_set1_epi16(short(0xff80));
    const auto ascii = [&nonAscii](__m128i units) {
        return _mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(units, nonAscii), _mm_setzero_si128())) == 0xffff;
    };
    for (; length - i >= 16; i += 16) {
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i + 8));
        if (!ascii(_mm_or_si128(low, high)))
            break;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_packus_epi16(low, high));
    }
#else
    Q_UNUSED(in);
    Q_UNUSED(length);
    Q_UNUSED(out);
#endif
    return i;
}

// Whether any character of `in` is `limit` or above.
inline bool anyAtLeast(const char16_t* in, qsizetype length, char16_t limit)
{
    qsizetype i = 0;
#if defined(__SSE2__)
    // A saturating subtraction leaves a unit non-zero exactly when it was
    // at least the limit.
    const __m128i below = _mm_set1_epi16(short(limit - 1));
    const auto over = [&below](__m128i units) {
        return _mm_movemask_epi8(_mm_cmpeq_epi16(_mm_subs_epu16(units, below), _mm_setzero_si128())) != 0xffff;
    };
    for (; length - i >= 8; i += 8) {
        if (over(_mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i))))
            return true;
    }
#endif
    for (; i < length; ++i) {
        if (in[i] >= limit)
            return true;
    }
    return false;
}

// The position of the first `c` in `in` from `from` on, or -1.
inline qsizetype indexOf(const char16_t* in, qsizetype length, char16_t c, qsizetype from = 0)
{
    qsizetype i = from;
#if defined(__SSE2__)
    const __m128i wanted = _mm_set1_epi16(short(c));
    for (; length - i >= 8; i += 8) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i));
        if (const int found = _mm_movemask_epi8(_mm_cmpeq_epi16(units, wanted)))
            return i + __builtin_ctz(unsigned(found)) / 2;
    }
#endif
    for (; i < length; ++i) {
        if (in[i] == c)
            return i;
    }
    return -1;
}

} // namespace AsciiBlocks
