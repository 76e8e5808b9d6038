#pragma once

#include <QByteArrayView>
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
    static constexpr QLatin1StringView copyNumberKeyWord{"copyNumber"};
    QString copyNumberKey() const { return key(copyNumberKeyWord); }
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
// The same, for callers that go on with any name: one that names no type
// is reported in a diagnostic line, `report` and the lower-cased name (up
// to a NUL, as the suite prints it), and the prefiscal type answers for it.
const DocumentType& findOrReport(QStringView name, QByteArrayView report);
// The names of all types, comma-separated, for help texts.
QString names();

} // namespace DocumentTypes
