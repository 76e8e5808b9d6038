#pragma once

#include <QLatin1StringView>
#include <QString>
#include <QStringView>

#include <span>

// A kind of document the suite prints, and where its settings live: every
// setting of a document type is "<prefix><key word>", its number of copies
// among them.
struct DocumentType
{
    QLatin1StringView name;   // as requests and tools name it: "receipt"
    QLatin1StringView prefix; // ends in a point, so that a key word follows it

    QString key(QLatin1StringView keyWord) const { return prefix + keyWord; }
    // The setting that says how many copies of such a document to print.
    QString copyNumberKey() const { return key(QLatin1StringView("copyNumber")); }
};

namespace DocumentTypes {

extern const DocumentType order;
extern const DocumentType prefiscal;
extern const DocumentType fiscal;
extern const DocumentType receipt;
extern const DocumentType invoice;
extern const DocumentType delivery;
extern const DocumentType report;
extern const DocumentType sold;

// Every type, in the order the suite lists them.
std::span<const DocumentType* const> all();
// The type of that name in any letter case, or null.
const DocumentType* find(QStringView name);
// The names of all types, comma-separated, for help texts.
QString names();

} // namespace DocumentTypes
