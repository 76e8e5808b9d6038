#include "asciiblocks.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// The block operations against plain loops, on every length a request text
// or printed line is likely to have and with the first character they stop
// at in every position: block edges and the block laid over the end are
// where such code goes wrong.
namespace {

constexpr qsizetype longest = 70;

TEST(AsciiBlocks, AgreeWithPlainLoopsAtEveryLengthAndStop)
{
    for (qsizetype length = 0; length <= longest; ++length) {
        for (qsizetype stop = 0; stop <= length; ++stop) {
            // Letters, a control character or two, and at `stop` (unless it
            // is the end) a character outside ASCII.
            std::string bytes;
            std::u16string units;
            for (qsizetype i = 0; i < length; ++i) {
                const char c = i % 11 == 5 ? '\t' : char('a' + i % 26);
                bytes += i == stop ? '\xC3' : c;
                units += i == stop ? u'\u00e9' : char16_t(c);
            }
            const qsizetype ascii = stop;
            SCOPED_TRACE("length " + std::to_string(length) + ", stop " + std::to_string(stop));

            std::u16string widened(std::size_t(length), u'#');
            EXPECT_EQ(AsciiBlocks::widen(bytes.data(), length, widened.data(), true), ascii);
            for (qsizetype i = 0; i < ascii; ++i)
                EXPECT_EQ(widened[std::size_t(i)], bytes[std::size_t(i)] == '\t' ? u' ' : char16_t(bytes[std::size_t(i)]));

            std::string narrowed(std::size_t(length), '#');
            EXPECT_EQ(AsciiBlocks::narrow(units.data(), length, narrowed.data()), ascii);
            EXPECT_EQ(narrowed.substr(0, std::size_t(ascii)), bytes.substr(0, std::size_t(ascii)));

            EXPECT_EQ(AsciiBlocks::anyAtLeast(units.data(), length, 0x80), stop < length);
            EXPECT_FALSE(AsciiBlocks::anyAtLeast(units.data(), length, 0x100));

            for (qsizetype from = 0; from <= length; ++from) {
                const std::size_t expected = units.find(u'\u00e9', std::size_t(from));
                EXPECT_EQ(AsciiBlocks::indexOf(units.data(), length, u'\u00e9', from),
                          expected == std::u16string::npos ? -1 : qsizetype(expected));
            }
        }
    }
}

} // namespace
