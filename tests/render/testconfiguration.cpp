#include "testdriver.h"

const ZTConfiguration& testConfiguration()
{
    static const auto configuration = ZTConfiguration::fromText(R"(zentaro : {
    doc : { paperWidth = 0; };
    receiptdoc : { paperWidth = "wide"; };
    invoicedoc : {
        paperWidth = 40;
        printHeader = "True";
        printLogo = "1";
        printCompany = "true";
        printCustomer = " true";
    };
    reportdoc : { paperWidth = 44; quantityFieldWidth = 4; };
    solddoc : { paperWidth = 36; quantityFieldWidth = 5; };
    fiscaldoc : { descriptionWidth = 5; };
};
)");
    return *configuration;
}
