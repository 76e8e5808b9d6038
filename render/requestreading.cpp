#include "requestreading.h"

#include "xmlreader.h"

using namespace Qt::StringLiterals;

namespace RequestReading {

namespace {

using S = DocumentSettings;
constexpr Use kept = Use::Kept;

constexpr Attribute printers[] = {
    {"name"_L1}, // printed by the "headers" element, as the printer's name
    {"charsize"_L1, kept},
    {"ipaddress"_L1, kept},
    {"port"_L1, kept},
};
constexpr Attribute serialNumber[] = {{"serialnumber"_L1}};
constexpr Attribute orderInfo[] = {
    {"date"_L1, Use::Printed, &S::printDate},   {"time"_L1, Use::Printed, &S::printTime},
    {"table"_L1, Use::Printed, &S::printTable}, {"waiter"_L1, Use::Printed, &S::printWaiter},
    {"note"_L1, Use::Printed, &S::printNote},   {"credit"_L1, Use::Printed, &S::printCredit},
};

constexpr Element sections[] = {
    {"printers"_L1, printers},
    {"geometry"_L1, {}, Use::Printed, &S::printGeometry},
    // The free header lines, then the printer's name whatever the switch.
    {"headers"_L1, {}, Use::Printed, nullptr, 0, &S::printHeader},
    {"logo"_L1, {}, kept},
    {"company"_L1, {}, Use::Printed, &S::printCompany, 0, &S::printCompany},
    {"receipt"_L1, serialNumber},
    {"invoice"_L1, serialNumber},
    {"delivery"_L1, serialNumber},
    {"orderinfo"_L1, orderInfo},
};

constexpr Attribute customer[] = {
    {"name"_L1},
    {"billingaddress"_L1, Use::Printed, &S::printBillingAddress},
    {"deliveryaddress"_L1, Use::Printed, &S::printDeliveryAddress},
    {"telephone"_L1, Use::Printed, &S::printTelephone},
    {"licensenumber"_L1, Use::Printed, &S::printLicenseNumber},
    {"fiscalcode"_L1, Use::Printed, &S::printFiscalCode},
};
constexpr Element customerBlock{"customer"_L1, customer, Use::Printed, &S::printCustomer};

constexpr Attribute ticketItem[] = {{"number"_L1}, {"name"_L1}};
constexpr Attribute ticketVariant[] = {{"number"_L1}, {"quantity"_L1}, {"name"_L1}};
constexpr Attribute pricedItem[] = {{"number"_L1}, {"name"_L1}, {"price"_L1}, {"totalPrice"_L1}};
constexpr Attribute pricedVariant[] = {
    {"number"_L1}, {"quantity"_L1}, {"name"_L1}, {"price"_L1}, {"totalPrice"_L1}};
constexpr Attribute abstractItem[] = {{"number"_L1}, {"name"_L1}, {"price"_L1}};
constexpr Attribute price[] = {{"price"_L1}};
constexpr Attribute invoiceTotals[] = {{"taxable"_L1}, {"taxrate"_L1}, {"tax"_L1}, {"total"_L1}};
constexpr Attribute fiscalItem[] = {{"number"_L1}, {"name"_L1}, {"price"_L1}, {"department"_L1}};
constexpr Attribute fiscalAbstractItem[] = {{"name"_L1}, {"price"_L1}, {"department"_L1}};
// The payment form of the fiscal lines writes only for an element named
// "totals"; a fiscal document hands it its "total", so nothing is written.
constexpr Attribute fiscalPayments[] = {
    {"cash"_L1, kept},   {"creditCard"_L1, kept},   {"cheque"_L1, kept},
    {"ticket"_L1, kept}, {"discountRate"_L1, kept},
};
constexpr Element fiscalTotal{"total"_L1, fiscalPayments, kept};

constexpr Element partialOrder[] = {
    customerBlock,
    {"receipe"_L1, ticketItem},
    {"otherreceipe"_L1, ticketItem},
    {"variant"_L1, ticketVariant},
};
constexpr Element fullOrder[] = {
    customerBlock,
    {"receipe"_L1, pricedItem},
    {"variant"_L1, pricedVariant},
    {"total"_L1, price},
};
constexpr Element fullReceipt[] = {
    customerBlock,
    {"receipe"_L1, pricedItem},
    {"total"_L1, price},
    {"notPaid"_L1, price},
};
constexpr Element fullInvoice[] = {
    customerBlock,
    {"receipe"_L1, pricedItem},
    {"totals"_L1, invoiceTotals},
};
constexpr Element fullFiscal[] = {{"receipe"_L1, fiscalItem}, fiscalTotal};
constexpr Element abstractReceipt[] = {
    {"receipe_type"_L1, abstractItem},
    {"total"_L1, price},
    {"notPaid"_L1, price},
};
constexpr Element abstractInvoice[] = {
    customerBlock,
    {"receipe_type"_L1, abstractItem},
    {"totals"_L1, invoiceTotals},
};
constexpr Element abstractFiscal[] = {{"receipe_type"_L1, fiscalAbstractItem}, fiscalTotal};

constexpr Attribute period[] = {{"begindate"_L1}, {"enddate"_L1}};
constexpr Attribute countAndTotal[] = {{"number"_L1}, {"total"_L1}};
constexpr Attribute receiptsSummary[] = {
    {"number"_L1}, {"firstserial"_L1}, {"lastserial"_L1}, {"notPaid"_L1}, {"cash"_L1},
    {"creditCard"_L1}, {"bancomat"_L1}, {"other"_L1}, {"total"_L1},
};
constexpr Attribute taxRate[] = {{"taxrate"_L1}, {"taxable"_L1}, {"tax"_L1}, {"amount"_L1}};
constexpr Attribute invoicesSummary[] = {
    {"number"_L1}, {"firstserial"_L1}, {"lastserial"_L1}, {"taxable"_L1}, {"tax"_L1}, {"total"_L1},
};
// Then the cancelled documents, three attributes each, read by position.
constexpr Attribute cancelledSummary[] = {{"number"_L1}, {"totals"_L1}};
constexpr Element report[] = {
    {"date"_L1, period},
    {"prefiscalssummary"_L1, countAndTotal},
    {"receiptssummary"_L1, receiptsSummary},
    {"taxrate_item"_L1, taxRate},
    {"invoicessummary"_L1, invoicesSummary},
    {"cancelledsummary"_L1, cancelledSummary, Use::Printed, nullptr, 2},
};

constexpr Attribute soldItem[] = {{"quantity"_L1}, {"description"_L1}, {"amount"_L1}};
constexpr Element sold[] = {{"receipe"_L1, soldItem}};

constexpr Attribute movement[] = {{"date"_L1}, {"type"_L1}, {"amount"_L1}};
constexpr Element statementOfAccount[] = {{"statement_list"_L1}, {"statement"_L1, movement}};

constexpr Document documentTable[] = {
    {"printPartialOrder"_L1, true, partialOrder},
    {"printFullOrder"_L1, true, fullOrder},
    {"printFullOrderReceipt"_L1, true, fullReceipt},
    {"printFullOrderInvoice"_L1, true, fullInvoice},
    // A delivery note's body is an order ticket.
    {"printFullOrderDelivery"_L1, true, partialOrder},
    {"printFullOrderFiscal"_L1, false, fullFiscal},
    {"printAbstractOrder"_L1, false, {}},
    {"printAbstractOrderReceipt"_L1, true, abstractReceipt},
    {"printAbstractOrderInvoice"_L1, true, abstractInvoice},
    {"printAbstractOrderFiscal"_L1, false, abstractFiscal},
    {"printReport"_L1, true, report},
    {"printSold"_L1, true, sold},
    {"printStatementOfAccount"_L1, true, statementOfAccount},
};

const Element* find(std::span<const Element> elements, QStringView name)
{
    for (const Element& element : elements) {
        if (isName(name, element.name))
            return &element;
    }
    return nullptr;
}

} // namespace

const Attribute* Element::attribute(QStringView name) const
{
    for (const Attribute& known : attributes) {
        if (isName(name, known.name))
            return &known;
    }
    return nullptr;
}

bool Element::reads(qsizetype position, QStringView name) const
{
    return (everyAttributeFrom >= 0 && position >= everyAttributeFrom) || attribute(name);
}

const Element* Document::element(QStringView name) const
{
    if (sharesSections) {
        if (const Element* section = find(sections, name))
            return section;
    }
    return find(own, name);
}

std::span<const Element> sectionElements()
{
    return sections;
}

std::span<const Document> documents()
{
    return documentTable;
}

const Document* document(QStringView method)
{
    for (const Document& known : documentTable) {
        if (isName(method, known.method))
            return &known;
    }
    return nullptr;
}

} // namespace RequestReading
