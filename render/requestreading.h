#pragma once

#include "printerdriver.h"

#include <QLatin1StringView>
#include <QStringView>

#include <span>

// What each document method reads from a request: the elements it reacts to
// after its "method" element and, of each, the attributes that reach the
// paper. Request checks and the manual are made from this table; the
// renderer's tests hold it to what the document methods actually print.
namespace RequestReading {

// Whether what is read reaches the paper.
enum class Use {
    Printed, // prints (when its switch, if any, is on)
    Kept,    // read, but nothing of it reaches the paper of this printer
};

// A per-document switch (printDate, printCustomer, ...).
using Switch = bool DocumentSettings::*;

struct Attribute
{
    QLatin1StringView name;
    Use use = Use::Printed;
    // Printed only when this switch is on; null: always.
    Switch switchedBy = nullptr;
};

struct Element
{
    QLatin1StringView name;
    std::span<const Attribute> attributes = {};
    Use use = Use::Printed;
    Switch switchedBy = nullptr;
    // Attributes from this position on are printed whatever their names
    // (free header lines, groups of cancelled documents); -1: none. They
    // print only when `everyAttributeSwitchedBy`, if set, is on.
    int everyAttributeFrom = -1;
    Switch everyAttributeSwitchedBy = nullptr;

    const Attribute* attribute(QStringView name) const;
    // Whether the attribute at `position` named `name` is read.
    bool reads(qsizetype position, QStringView name) const;
};

struct Document
{
    QLatin1StringView method;
    // List documents offer every element to the shared header elements first.
    bool sharesSections;
    std::span<const Element> own;

    // The element of that name this document reads, or null.
    const Element* element(QStringView name) const;
};

// The header elements every list document shares (printers, headers,
// company, receipt, orderinfo, ...).
std::span<const Element> sectionElements();
// One entry per document method, in the order the driver tries them.
std::span<const Document> documents();
// The document of that method name, or null when there is none.
const Document* document(QStringView method);

} // namespace RequestReading
