// Writes a full-receipt print request with a given number of items, the shape
// of what the till sends: method, printer, headers, company, receipt number,
// order, customer, one "receipe" per item, the total and the unpaid amount.
// The items cycle through a menu with names of every length (some longer than
// the description column, some with entities and accented letters) and vary
// in quantity, so the renderer sees realistic text. The output is the same
// for the same count.
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

struct Dish
{
    const char* name;  // already escaped for an attribute value
    int cents;
};

const Dish menu[] = {
    {"Pizza Margherita", 750},
    {"Spaghetti alla carbonara grande", 900},
    {"Acqua minerale", 200},
    {"Tagliatelle al rag&#249;", 1050},
    {"Insalata mista", 550},
    {"Tiramis&#249;", 600},
    {"Caff&#232;", 120},
    {"Birra media", 500},
    {"Vino rosso della casa 1/2 l", 800},
    {"Lasagne &amp; verdure grigliate", 1150},
    {"Cotoletta alla milanese con patate al forno", 1600},
    {"Bruschetta", 450},
    {"Crème brûlée", 650},
    {"Risotto ai funghi porcini", 1300},
    {"Coca-Cola 33 cl", 300},
    {"Pizza quattro stagioni &quot;speciale&quot;", 950},
    {"Panna cotta", 550},
    {"Grappa", 400},
    {"Filetto di manzo al pepe verde", 2200},
    {"Pane e coperto", 200},
};
constexpr unsigned menuSize = sizeof(menu) / sizeof(menu[0]);

std::string amount(long long cents)
{
    char text[32];
    std::snprintf(text, sizeof text, "%lld.%02lld", cents / 100, cents % 100);
    return text;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s items output.xml\n", argv[0]);
        return 2;
    }
    char* end = nullptr;
    const long long items = std::strtoll(argv[1], &end, 10);
    if (*end != '\0' || items < 0) {
        std::fprintf(stderr, "bad item count: %s\n", argv[1]);
        return 2;
    }
    std::FILE* out = std::fopen(argv[2], "wb");
    if (!out) {
        std::perror(argv[2]);
        return 1;
    }

    std::fputs("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<document>\n"
               "  <method name=\"printFullOrderReceipt\"/>\n"
               "  <printers name=\"Cassa 1\" charsize=\"1\" ipaddress=\"192.168.1.40\" port=\"9100\"/>\n"
               "  <logo/>\n"
               "  <headers line1=\"Trattoria da Nino\" line2=\"Via Roma 12, Bologna\"/>\n"
               "  <company name=\"Nino s.r.l.\" address=\"Via Roma 12\" vat=\"P.IVA 01234567890\"/>\n"
               "  <receipt serialnumber=\"1042\"/>\n"
               "  <orderinfo date=\"21/11/2026\" time=\"20:45\" table=\"7\" waiter=\"Marta\" note=\"\" credit=\"\"/>\n"
               "  <customer name=\"Anna Verdi\" billingaddress=\"Via Po 3, 40100 Bologna\"/>\n",
               out);

    unsigned long long state = 12345;  // a fixed seed: the same request every time
    long long total = 0;
    for (long long i = 0; i < items; ++i) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        const Dish& dish = menu[(state >> 33) % menuSize];
        const int number = 1 + int((state >> 45) % 4 == 0 ? (state >> 20) % 12 : 0);
        const long long line = (long long)number * dish.cents;
        total += line;
        std::fprintf(out, "  <receipe number=\"%d\" name=\"%s\" price=\"%s\" totalPrice=\"%s\"/>\n",
                     number, dish.name, amount(dish.cents).c_str(), amount(line).c_str());
    }

    std::fprintf(out, "  <total price=\"%s\"/>\n  <notPaid price=\"0.00\"/>\n</document>\n",
                 amount(total).c_str());
    if (std::fclose(out) != 0) {
        std::perror(argv[2]);
        return 1;
    }
    return 0;
}
