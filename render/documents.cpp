#include "documents.h"

#include "documenttypes.h"
#include "printerdriver.h"
#include "xmlreader.h"

using namespace Qt::StringLiterals;

namespace Documents {

namespace {

using S = DocumentSettings;
using D = PrinterDriver;
namespace Type = DocumentTypes;
constexpr Use kept = Use::Kept;
constexpr auto unchanged = DuplicateEffect::Unchanged;

} // namespace

// The driver's element operations are its own: the table is their caller.
class DocumentTable
{
public:
    static constexpr Attribute printers[] = {
        {"name"_L1}, // printed by the "headers" element, as the printer's name
        {"charsize"_L1, kept},
        {"ipaddress"_L1, kept},
        {"port"_L1, kept},
    };
    static constexpr Attribute serialNumber[] = {{"serialnumber"_L1}};
    static constexpr Attribute orderInfo[] = {
        {"date"_L1, Use::Printed, &S::printDate},   {"time"_L1, Use::Printed, &S::printTime},
        {"table"_L1, Use::Printed, &S::printTable}, {"waiter"_L1, Use::Printed, &S::printWaiter},
        {"note"_L1, Use::Printed, &S::printNote},   {"credit"_L1, Use::Printed, &S::printCredit},
    };

    static constexpr Element sections[] = {
        {"printers"_L1, &D::storePrinter, printers},
        {"geometry"_L1, &D::printGeometry, {}, Use::Printed, &S::printGeometry},
        // The free header lines, then the printer's name whatever the switch.
        {"headers"_L1, &D::printHeaderLines, {}, Use::Printed, nullptr, 0, &S::printHeader},
        {"logo"_L1, &D::printLogoElement, {}, kept},
        {"company"_L1, &D::printCompanyHeader, {}, Use::Printed, &S::printCompany, 0, &S::printCompany},
        {"receipt"_L1, &D::printReceiptHeader, serialNumber},
        {"invoice"_L1, &D::printInvoiceHeader, serialNumber},
        {"delivery"_L1, &D::printDeliveryHeader, serialNumber},
        {"orderinfo"_L1, &D::printOrderInfo, orderInfo},
    };

    static constexpr Attribute customer[] = {
        {"name"_L1},
        {"billingaddress"_L1, Use::Printed, &S::printBillingAddress},
        {"deliveryaddress"_L1, Use::Printed, &S::printDeliveryAddress},
        {"telephone"_L1, Use::Printed, &S::printTelephone},
        {"licensenumber"_L1, Use::Printed, &S::printLicenseNumber},
        {"fiscalcode"_L1, Use::Printed, &S::printFiscalCode},
    };
    static constexpr Element customerBlock{"customer"_L1, &D::printCustomerHeader, customer, Use::Printed, &S::printCustomer};

    static constexpr Attribute ticketItem[] = {{"number"_L1}, {"name"_L1}};
    static constexpr Attribute ticketVariant[] = {{"number"_L1}, {"quantity"_L1}, {"name"_L1}};
    static constexpr Attribute pricedItem[] = {{"number"_L1}, {"name"_L1}, {"price"_L1}, {"totalPrice"_L1}};
    static constexpr Attribute pricedVariant[] = {
        {"number"_L1}, {"quantity"_L1}, {"name"_L1}, {"price"_L1}, {"totalPrice"_L1}};
    static constexpr Attribute abstractItem[] = {{"number"_L1}, {"name"_L1}, {"price"_L1}};
    static constexpr Attribute price[] = {{"price"_L1}};
    static constexpr Attribute invoiceTotals[] = {{"taxable"_L1}, {"taxrate"_L1}, {"tax"_L1}, {"total"_L1}};
    static constexpr Attribute fiscalItem[] = {{"number"_L1}, {"name"_L1}, {"price"_L1}, {"department"_L1}};
    static constexpr Attribute fiscalAbstractItem[] = {{"name"_L1}, {"price"_L1}, {"department"_L1}};
    // The payment form of the fiscal lines writes only for an element named
    // "totals"; a fiscal document hands it its "total", so nothing is written.
    static constexpr Attribute fiscalPayments[] = {
        {"cash"_L1, kept},   {"creditCard"_L1, kept},   {"cheque"_L1, kept},
        {"ticket"_L1, kept}, {"discountRate"_L1, kept},
    };
    static constexpr Element fiscalTotal{"total"_L1, &D::printFiscalPayments, fiscalPayments, kept};

    static constexpr Element partialOrder[] = {
        customerBlock,
        {"receipe"_L1, &D::printTicketItem, ticketItem},
        {"otherreceipe"_L1, &D::printTicketOtherItem, ticketItem},
        {"variant"_L1, &D::printTicketVariant, ticketVariant},
    };
    static constexpr Element fullOrder[] = {
        customerBlock,
        {"receipe"_L1, &D::printPreBillItem, pricedItem},
        {"variant"_L1, &D::printPreBillVariant, pricedVariant},
        {"total"_L1, &D::printPreBillTotal, price},
    };
    static constexpr Element fullReceipt[] = {
        customerBlock,
        {"receipe"_L1, &D::printReceiptItem, pricedItem},
        {"total"_L1, &D::printReceiptTotal, price},
        {"notPaid"_L1, &D::printNotPaid, price},
    };
    static constexpr Element fullInvoice[] = {
        customerBlock,
        {"receipe"_L1, &D::printInvoiceItem, pricedItem},
        {"totals"_L1, &D::printInvoiceTotals, invoiceTotals},
    };
    static constexpr Element fullFiscal[] = {{"receipe"_L1, &D::printFiscalItem, fiscalItem}, fiscalTotal};
    static constexpr Element abstractReceipt[] = {
        {"receipe_type"_L1, &D::printAbstractItem, abstractItem},
        {"total"_L1, &D::printReceiptTotal, price},
        {"notPaid"_L1, &D::printAbstractNotPaid, price},
    };
    static constexpr Element abstractInvoice[] = {
        customerBlock,
        {"receipe_type"_L1, &D::printAbstractItem, abstractItem},
        {"totals"_L1, &D::printInvoiceTotals, invoiceTotals},
    };
    static constexpr Element abstractFiscal[] = {{"receipe_type"_L1, &D::printAbstractFiscalItem, fiscalAbstractItem}, fiscalTotal};

    static constexpr Attribute period[] = {{"begindate"_L1}, {"enddate"_L1}};
    static constexpr Attribute countAndTotal[] = {{"number"_L1}, {"total"_L1}};
    static constexpr Attribute receiptsSummary[] = {
        {"number"_L1}, {"firstserial"_L1}, {"lastserial"_L1}, {"notPaid"_L1}, {"cash"_L1},
        {"creditCard"_L1}, {"bancomat"_L1}, {"other"_L1}, {"total"_L1},
    };
    static constexpr Attribute taxRate[] = {{"taxrate"_L1}, {"taxable"_L1}, {"tax"_L1}, {"amount"_L1}};
    static constexpr Attribute invoicesSummary[] = {
        {"number"_L1}, {"firstserial"_L1}, {"lastserial"_L1}, {"taxable"_L1}, {"tax"_L1}, {"total"_L1},
    };
    // Then the cancelled documents, three attributes each, read by position.
    static constexpr Attribute cancelledSummary[] = {{"number"_L1}, {"totals"_L1}};
    static constexpr Element report[] = {
        {"date"_L1, &D::printReportPeriod, period},
        {"prefiscalssummary"_L1, &D::printPrefiscalSummary, countAndTotal},
        {"receiptssummary"_L1, &D::printReceiptsSummary, receiptsSummary},
        {"taxrate_item"_L1, &D::printTaxRateRow, taxRate},
        {"invoicessummary"_L1, &D::printInvoicesSummary, invoicesSummary},
        {"cancelledsummary"_L1, &D::printCancelledSummary, cancelledSummary, Use::Printed, nullptr, 2},
    };

    static constexpr Attribute soldItem[] = {{"quantity"_L1}, {"description"_L1}, {"amount"_L1}};
    static constexpr Element sold[] = {{"receipe"_L1, &D::printSoldItem, soldItem}};

    static constexpr Attribute movement[] = {{"date"_L1}, {"type"_L1}, {"amount"_L1}};
    static constexpr Element statementOfAccount[] = {{"statement_list"_L1, &D::printStatementHeader}, {"statement"_L1, &D::printStatement, movement}};

    static constexpr Document documentTable[] = {
        {"printPartialOrder"_L1, Type::order, false, unchanged, true, partialOrder},
        {"printFullOrder"_L1, Type::prefiscal, false, unchanged, true, fullOrder},
        {"printFullOrderReceipt"_L1, Type::receipt, false, unchanged, true, fullReceipt},
        {"printFullOrderInvoice"_L1, Type::invoice, false, DuplicateEffect::Set, true, fullInvoice},
        // A delivery note's body is an order ticket.
        {"printFullOrderDelivery"_L1, Type::delivery, false, unchanged, true, partialOrder},
        {"printFullOrderFiscal"_L1, Type::fiscal, true, DuplicateEffect::Clear, false, fullFiscal},
        // The abstract order ticket prints nothing but its section.
        {"printAbstractOrder"_L1, Type::order, false, unchanged, false, {}},
        {"printAbstractOrderReceipt"_L1, Type::receipt, false, unchanged, true, abstractReceipt},
        {"printAbstractOrderInvoice"_L1, Type::invoice, false, DuplicateEffect::Set, true, abstractInvoice},
        {"printAbstractOrderFiscal"_L1, Type::fiscal, true, DuplicateEffect::Clear, false, abstractFiscal},
        {"printReport"_L1, Type::report, false, unchanged, true, report},
        {"printSold"_L1, Type::sold, false, unchanged, true, sold},
        // A statement of account is printed on the report's paper.
        {"printStatementOfAccount"_L1, Type::report, false, unchanged, true, statementOfAccount},
    };
};

namespace {

const Element* named(std::span<const Element> elements, QStringView name)
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

bool Element::prints(qsizetype position, QStringView name, const DocumentSettings& settings) const
{
    const auto on = [&settings](Switch which) { return !which || settings.*which; };
    if (use != Use::Printed || !on(switchedBy))
        return false;
    if (const Attribute* listed = attribute(name))
        return listed->use == Use::Printed && on(listed->switchedBy);
    return everyAttributeFrom >= 0 && position >= everyAttributeFrom && on(everyAttributeSwitchedBy);
}

const Element* Document::element(QStringView name) const
{
    if (sharesSections) {
        if (const Element* section = named(DocumentTable::sections, name))
            return section;
    }
    return named(own, name);
}

std::span<const Element> sectionElements()
{
    return DocumentTable::sections;
}

std::span<const Document> all()
{
    return DocumentTable::documentTable;
}

const Document* find(QStringView method)
{
    for (const Document& known : DocumentTable::documentTable) {
        if (isName(method, known.method))
            return &known;
    }
    return nullptr;
}

} // namespace Documents
