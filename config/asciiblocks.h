#pragma once

#include <QtGlobal>

#include <cstring>
#include <type_traits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Most text of a print run is ASCII: requests are read from UTF-8 into
// UTF-16, and print files written back from it into one byte a character.
// These copy and test sixteen characters at a time where the processor has
// the registers for it (every x86-64 has). Request texts are short (a
// price, a dish's name): a text that does not fill whole blocks ends with
// one more block laid over the end of the one before, rather than with a
// loop over its last characters.
namespace AsciiBlocks {

namespace Detail {

inline qsizetype widenTail(const char* in, qsizetype i, qsizetype length, char16_t* out, bool blankControls)
{
    for (; i < length && static_cast<unsigned char>(in[i]) < 0x80; ++i) {
        const char16_t c = char16_t(in[i]);
        out[i] = blankControls && (c < 0x20 || c == 0x7f) ? u' ' : c;
    }
    return i;
}

inline qsizetype narrowTail(const char16_t* in, qsizetype i, qsizetype length, char* out)
{
    for (; i < length && in[i] < 0x80; ++i)
        out[i] = char(in[i]);
    return i;
}

#if defined(__SSE2__)
// Bytes below 0x80 widened, and their control characters made blanks.
inline __m128i blanked(__m128i bytes)
{
    const __m128i blank = _mm_set1_epi8(0x20);
    // Signed comparisons hold: every byte here is below 0x80.
    const __m128i controls = _mm_or_si128(_mm_cmplt_epi8(bytes, blank), _mm_cmpeq_epi8(bytes, _mm_set1_epi8(0x7f)));
    return _mm_or_si128(_mm_andnot_si128(controls, bytes), _mm_and_si128(controls, blank));
}

inline __m128i load64(const void* in)
{
    return _mm_loadl_epi64(static_cast<const __m128i*>(in));
}

inline __m128i load32(const void* in)
{
    int word;
    std::memcpy(&word, in, 4);
    return _mm_cvtsi32_si128(word);
}

// Widens the `width` bytes at `at` (16, 8 or 4), if they are all ASCII.
template<int width>
inline bool widenBlock(const char* in, qsizetype at, char16_t* out, bool blankControls)
{
    const __m128i zero = _mm_setzero_si128();
    __m128i bytes = width == 16 ? _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + at))
                    : width == 8 ? load64(in + at)
                                 : load32(in + at);
    // Most text has neither control characters nor letters outside ASCII:
    // one signed comparison finds both (bytes from 0x80 compare below a
    // blank), and only a block that has some looks closer.
    const __m128i special = blankControls
        ? _mm_or_si128(_mm_cmplt_epi8(bytes, _mm_set1_epi8(0x20)), _mm_cmpeq_epi8(bytes, _mm_set1_epi8(0x7f)))
        : bytes;
    constexpr int lanes = width == 16 ? 0xffff : width == 8 ? 0xff : 0xf;
    if ((_mm_movemask_epi8(special) & lanes) != 0) {
        if ((_mm_movemask_epi8(bytes) & lanes) != 0)
            return false;
        bytes = blanked(bytes);
    }
    auto* to = reinterpret_cast<__m128i*>(out + at);
    if (width == 16) {
        _mm_storeu_si128(to, _mm_unpacklo_epi8(bytes, zero));
        _mm_storeu_si128(to + 1, _mm_unpackhi_epi8(bytes, zero));
    } else if (width == 8) {
        _mm_storeu_si128(to, _mm_unpacklo_epi8(bytes, zero));
    } else {
        _mm_storel_epi64(to, _mm_unpacklo_epi8(bytes, zero));
    }
    return true;
}

// Narrows the `width` units at `at` (16, 8 or 4), if they are all ASCII.
template<int width>
inline bool narrowBlock(const char16_t* in, qsizetype at, char* out)
{
    const __m128i nonAscii = _mm_set1_epi16(short(0xff80));
    const __m128i low = width == 4 ? load64(in + at) : _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + at));
    const __m128i high =
        width == 16 ? _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + at + 8)) : _mm_setzero_si128();
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(_mm_or_si128(low, high), nonAscii), _mm_setzero_si128()))
        != 0xffff)
        return false;
    const __m128i bytes = _mm_packus_epi16(low, high);
    if (width == 16) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + at), bytes);
    } else if (width == 8) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + at), bytes);
    } else {
        const int word = _mm_cvtsi128_si32(bytes);
        std::memcpy(out + at, &word, 4);
    }
    return true;
}

// Which of the `width` units at `at` (8 or 4) are `limit` or above, one bit
// pair a unit. A saturating subtraction leaves a unit non-zero exactly when
// it was at least the limit.
template<int width>
inline unsigned atLeastMask(const char16_t* in, qsizetype at, char16_t limit)
{
    const __m128i units = width == 8 ? _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + at)) : load64(in + at);
    const __m128i over = _mm_subs_epu16(units, _mm_set1_epi16(short(limit - 1)));
    const unsigned zero = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi16(over, _mm_setzero_si128())));
    return ~zero & (width == 8 ? 0xffffu : 0xffu);
}

template<int width>
using Width = std::integral_constant<int, width>;

// Runs `block(at, Width<width>())` over [0, length) in blocks of `width`
// units, the last one laid over the end of the one before; a text shorter
// than that takes blocks half as wide, down to `smallest`. Answers where
// the first block that fails starts, or `length` when none does; a text
// under `smallest` units is left to the caller (answers 0).
template<int width, int smallest, typename Block>
inline qsizetype walkBlocks(qsizetype length, Block block)
{
    if (length >= width) {
        qsizetype i = 0;
        for (; length - i >= width; i += width) {
            if (!block(i, Width<width>()))
                return i;
        }
        return i == length || block(length - width, Width<width>()) ? length : i;
    }
    if constexpr (width > smallest)
        return walkBlocks<width / 2, smallest>(length, block);
    else
        return 0;
}
#endif

} // namespace Detail

// Copies `size` bytes, for the short pieces a printed line is made of: in a
// few overlapping word-sized moves rather than through a call meant for
// long runs.
inline void copyShort(char* out, const char* in, std::size_t size)
{
    const auto move = [out, in](std::size_t at, auto word) {
        std::memcpy(&word, in + at, sizeof word);
        std::memcpy(out + at, &word, sizeof word);
    };
    if (size >= 16) {
        struct Block { quint64 low, high; };
        for (std::size_t i = 0; i + 16 <= size; i += 16)
            move(i, Block());
        move(size - 16, Block());
    } else if (size >= 8) {
        move(0, quint64());
        move(size - 8, quint64());
    } else if (size >= 4) {
        move(0, quint32());
        move(size - 4, quint32());
    } else {
        for (std::size_t i = 0; i < size; ++i)
            out[i] = in[i];
    }
}

// Widens the leading ASCII of `in` into `out`, control characters (below
// 0x20, and 0x7F) as blanks when asked; answers how many bytes were copied,
// which stops at the first byte above 0x7F or at the end.
inline qsizetype widen(const char* in, qsizetype length, char16_t* out, bool blankControls)
{
    qsizetype done = 0;
#if defined(__SSE2__)
    done = Detail::walkBlocks<16, 4>(length, [=](qsizetype at, auto width) {
        return Detail::widenBlock<decltype(width)::value>(in, at, out, blankControls);
    });
#endif
    return done == length ? length : Detail::widenTail(in, done, length, out, blankControls);
}

// Narrows the leading ASCII of `in` into `out`, one byte a character;
// answers how many characters were copied, which stops at the first
// character above U+007F or at the end.
inline qsizetype narrow(const char16_t* in, qsizetype length, char* out)
{
    qsizetype done = 0;
#if defined(__SSE2__)
    done = Detail::walkBlocks<16, 4>(length, [=](qsizetype at, auto width) {
        return Detail::narrowBlock<decltype(width)::value>(in, at, out);
    });
#endif
    return done == length ? length : Detail::narrowTail(in, done, length, out);
}

// Whether every byte of `in` is a printable ASCII character, from the blank
// to the tilde: text that prints as it stands on any printer.
inline bool isPrintableAscii(const char* in, qsizetype length)
{
#if defined(__SSE2__)
    if (length >= 4) {
        return Detail::walkBlocks<16, 4>(length, [in](qsizetype at, auto width) {
                   constexpr int bytes = decltype(width)::value;
                   const __m128i block = bytes == 16 ? _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + at))
                                         : bytes == 8 ? Detail::load64(in + at)
                                                      : Detail::load32(in + at);
                   // Bytes from 0x80 compare below a blank, as signed numbers.
                   const __m128i odd = _mm_or_si128(_mm_cmplt_epi8(block, _mm_set1_epi8(0x20)),
                                                    _mm_cmpeq_epi8(block, _mm_set1_epi8(0x7f)));
                   return (_mm_movemask_epi8(odd) & ((1 << bytes) - 1)) == 0;
               })
               == length;
    }
#endif
    for (qsizetype i = 0; i < length; ++i) {
        const auto c = static_cast<unsigned char>(in[i]);
        if (c < 0x20 || c >= 0x7f)
            return false;
    }
    return true;
}

// Whether `in`, valid UTF-8, holds no control character and no character
// from U+0300 on: text that a UTF-8 printer prints as it stands, as nothing
// in it combines with what comes before.
inline bool isPrintableUtf8BelowCombining(const char* in, qsizetype length)
{
    for (qsizetype i = 0; i < length; ++i) {
        const auto c = static_cast<unsigned char>(in[i]);
        // U+0300 starts with the byte 0xCC; continuation bytes are below it.
        if (c < 0x20 || c == 0x7f || c >= 0xcc)
            return false;
    }
    return true;
}

// Whether any character of `in` is `limit` or above.
inline bool anyAtLeast(const char16_t* in, qsizetype length, char16_t limit)
{
#if defined(__SSE2__)
    if (length >= 4) {
        return Detail::walkBlocks<8, 4>(length, [in, limit](qsizetype at, auto width) {
                   return Detail::atLeastMask<decltype(width)::value>(in, at, limit) == 0;
               })
               != length;
    }
#endif
    for (qsizetype i = 0; i < length; ++i) {
        if (in[i] >= limit)
            return true;
    }
    return false;
}

// The position of the first `c` in `in` from `from` on, or -1; for text and
// bytes alike.
template<typename Char>
inline qsizetype indexOf(const Char* in, qsizetype length, Char c, qsizetype from = 0)
{
    static_assert(sizeof(Char) == 1 || sizeof(Char) == 2);
    qsizetype i = from;
#if defined(__SSE2__)
    constexpr qsizetype units = 16 / sizeof(Char);
    const __m128i wanted = sizeof(Char) == 1 ? _mm_set1_epi8(char(c)) : _mm_set1_epi16(short(c));
    // One bit a byte: a unit of two bytes sets two.
    const auto found = [&wanted, in](qsizetype at) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + at));
        return unsigned(_mm_movemask_epi8(sizeof(Char) == 1 ? _mm_cmpeq_epi8(block, wanted)
                                                            : _mm_cmpeq_epi16(block, wanted)));
    };
    for (; length - i >= units; i += units) {
        if (const unsigned mask = found(i))
            return i + __builtin_ctz(mask) / qsizetype(sizeof(Char));
    }
    // The last block laid over the end of the text: the units before `i`
    // were searched already.
    if (i < length && length >= units) {
        const qsizetype at = length - units;
        const unsigned mask = found(at) >> (sizeof(Char) * (i - at));
        return mask ? i + __builtin_ctz(mask) / qsizetype(sizeof(Char)) : -1;
    }
#endif
    for (; i < length; ++i) {
        if (in[i] == c)
            return i;
    }
    return -1;
}

} // namespace AsciiBlocks
