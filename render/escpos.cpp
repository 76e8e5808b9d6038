#include "escpos.h"

#include <QStringEncoder>

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

// One name for all the names of a page: "IBM850" for "CP850" and "ibm850".
QByteArray canonical(const QByteArray& name)
{
    const QStringEncoder encoder(name.constData());
    const char* known = encoder.isValid() ? encoder.name() : nullptr;
    return known && *known ? QByteArray(known) : name.toUpper();
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
