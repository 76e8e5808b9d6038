#include "documenttypes.h"

#include "diagnostics.h"

#include <cstring>

using namespace Qt::StringLiterals;

namespace DocumentTypes {

// The kitchen ticket's type keeps the suite's short prefix.
constinit const DocumentType order{"order"_L1, "zentaro.doc."_L1};
constinit const DocumentType prefiscal{"prefiscal"_L1, "zentaro.prefiscaldoc."_L1};
constinit const DocumentType fiscal{"fiscal"_L1, "zentaro.fiscaldoc."_L1};
constinit const DocumentType receipt{"receipt"_L1, "zentaro.receiptdoc."_L1};
constinit const DocumentType invoice{"invoice"_L1, "zentaro.invoicedoc."_L1};
constinit const DocumentType delivery{"delivery"_L1, "zentaro.deliverydoc."_L1};
constinit const DocumentType report{"report"_L1, "zentaro.reportdoc."_L1};
constinit const DocumentType sold{"sold"_L1, "zentaro.solddoc."_L1};

namespace {

constinit const DocumentType* const types[] = {
    &order, &prefiscal, &fiscal, &receipt, &invoice, &delivery, &report, &sold,
};

} // namespace

std::span<const DocumentType* const> all()
{
    return types;
}

const DocumentType* find(QStringView name)
{
    for (const DocumentType* type : types) {
        if (name.compare(type->name, Qt::CaseInsensitive) == 0)
            return type;
    }
    return nullptr;
}

const DocumentType& findOrReport(QStringView name, QByteArrayView report)
{
    if (const DocumentType* type = find(name))
        return *type;
    const QByteArray shown = name.toString().toLower().toLocal8Bit();
    printDiagnostic({report, QByteArrayView(shown.constData(), qsizetype(std::strlen(shown.constData())))});
    return prefiscal;
}

QString names()
{
    QString list;
    for (const DocumentType* type : types) {
        if (!list.isEmpty())
            list += ", "_L1;
        list += type->name;
    }
    return list;
}

} // namespace DocumentTypes
