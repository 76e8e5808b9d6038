#include "escpos.h"

#include <algorithm>
#include <cstring>

namespace EscPos {

namespace {

// Pages 0 to 19 of the table most printers share; the Japanese pages and
// those Qt cannot encode (CP853) are left out. Pages above 19 differ from
// one model to the next, so they are reached through codePageNumber.
constexpr CodePageNumber table[] = {
    {0, "CP437"},  {2, "CP850"},       {3, "CP860"},         {4, "CP863"},  {5, "CP865"},
    {11, "CP851"}, {13, "CP857"},      {14, "CP737"},        {15, "ISO-8859-7"},
    {16, "windows-1252"}, {17, "CP866"}, {18, "CP852"},      {19, "CP858"},
};

// One name for the usual names of a page, without asking the encoders (whose
// converters are slow to open): "CP858" for "IBM00858", "ibm858" and "858",
// "CP1252" for "windows-1252".
QByteArray canonical(QByteArrayView name)
{
    QByteArray upper = name.trimmed().toByteArray().toUpper();
    for (const char* prefix : {"WINDOWS-", "IBM-", "IBM", "CP"}) {
        if (upper.startsWith(prefix)) {
            upper.remove(0, qsizetype(std::strlen(prefix)));
            break;
        }
    }
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (upper.isEmpty() || !std::all_of(upper.cbegin(), upper.cend(), isDigit))
        return name.trimmed().toByteArray().toUpper();
    while (upper.size() > 1 && upper.startsWith('0'))
        upper.remove(0, 1);
    return "CP" + upper;
}

} // namespace

std::span<const CodePageNumber> codePageNumbers()
{
    return table;
}

int codePageNumber(const QByteArray& name)
{
    const QByteArray wanted = canonical(name);
    for (const CodePageNumber& page : table) {
        if (canonical(page.name) == wanted)
            return page.number;
    }
    return -1;
}

QByteArray codePageOfNumber(int number)
{
    for (const CodePageNumber& page : table) {
        if (page.number == number)
            return page.name;
    }
    return {};
}

} // namespace EscPos
