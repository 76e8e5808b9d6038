#pragma once

#include "documentsettings.h"

#include <QLatin1StringView>
#include <QStringView>

#include <span>

struct DocumentType;
class PrinterDriver;
class XmlAttributes;

// The documents a request can name in its "method" element, declared once:
// what each is (its type, hence its settings and copy count; fiscal or not;
// what it does to the duplicate flag) and, for each element it reads after
// the method element, the driver operation that prints it and the
// attributes that reach the paper. The driver dispatches through this
// table, and the preview's request checks, the manual and the tools read it.
namespace Documents {

class DocumentTable;

// The element that names a request's document, by its attribute "name".
inline constexpr QLatin1StringView methodElement("method");
inline constexpr QLatin1StringView methodAttribute("name");

// Whether what is read reaches the paper.
enum class Use {
    Printed, // prints (when its switch, if any, is on)
    Kept,    // read, but nothing of it reaches the paper of this printer
};

struct Attribute
{
    QLatin1StringView name;
    Use use = Use::Printed;
    // Printed only when this switch is on; null: always.
    Switch switchedBy = nullptr;
};

// What the driver does with one element of the request.
using Handler = void (PrinterDriver::*)(const XmlAttributes&);

struct Element
{
    QLatin1StringView name;
    Handler print;
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
    // Whether it also reaches the paper with these settings.
    bool prints(qsizetype position, QStringView name, const DocumentSettings& settings) const;
};

// What choosing a document does to the driver's duplicate flag.
enum class DuplicateEffect { Unchanged, Set, Clear };

struct Document
{
    QLatin1StringView method;
    const DocumentType& type;
    // Printed by the fiscal printer: command lines instead of framed text.
    bool fiscal;
    DuplicateEffect duplicate;
    // List documents offer every element to the shared header elements first.
    bool sharesSections;
    std::span<const Element> own;

    // The element of that name this document reads, or null.
    const Element* element(QStringView name) const;
};

// The header elements every list document shares (printers, headers,
// company, receipt, orderinfo, ...).
std::span<const Element> sectionElements();
// Every document, in the order a method name is tried.
std::span<const Document> all();
// The document of that method name (exact case), or null.
const Document* find(QStringView method);

} // namespace Documents
