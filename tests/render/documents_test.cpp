// The table of what each document reads, held to what the documents print:
// a sample request per document carries every element and attribute the
// table lists; changing a printed one must change the print file, changing
// a kept or an unlisted one must not, and neither must anything a switch
// that is off leaves out.
#include "documents.h"
#include "documenttypes.h"
#include "render.h"
#include "ztconfiguration.h"

#include <QBuffer>

#include <gtest/gtest.h>

#include <set>

using namespace Qt::StringLiterals;
using namespace Documents;

namespace {

QByteArray nameOf(Switch member)
{
    for (const SwitchKey& key : switchKeys()) {
        if (key.member == member)
            return QByteArray(key.keyWord.data(), key.keyWord.size());
    }
    return {};
}

// Every switch on (but `off`), a top margin of one line, 40 columns.
std::unique_ptr<ZTConfiguration> configuration(const QByteArray& off = {})
{
    QByteArray settings = "quantityFieldWidth = 3; priceFieldWidth = 8; totalPriceFieldWidth = 9;"
                          " paperWidth = 40; topMargin = 1;";
    for (const SwitchKey& key : switchKeys()) {
        const QByteArray name = nameOf(key.member);
        settings += " " + name + " = \"" + (off == name ? "false" : "true") + "\";";
    }
    QByteArray text = "zentaro : {\n";
    for (const DocumentType* type : DocumentTypes::all()) {
        // "zentaro.receiptdoc." holds its settings in the group "receiptdoc".
        const QByteArray group = QByteArray(type->prefix.data(), type->prefix.size()).split('.').at(1);
        text += "  " + group + " : { " + settings + " };\n";
    }
    return ZTConfiguration::fromText(text + "};\n");
}

QByteArray render(const ZTConfiguration& settings, const QString& request)
{
    QBuffer printFile;
    QBuffer input;
    input.setData(request.toUtf8());
    input.open(QIODevice::ReadOnly);
    renderRequest(input, printFile, settings);
    return printFile.data();
}

struct SampleAttribute
{
    QString name;
    QString value;
};

struct SampleElement
{
    QString name;
    std::vector<SampleAttribute> attributes;
};

// Values that print as they are and differ from each other; a variant's
// quantity must read as a number.
QString valueFor(QLatin1StringView attribute, int& counter)
{
    return attribute == "quantity"_L1 ? u"2"_s : u"V"_s + QString::number(++counter);
}

std::vector<const Element*> elementsOf(const Document& document)
{
    std::vector<const Element*> elements;
    if (document.sharesSections) {
        for (const Element& element : sectionElements())
            elements.push_back(&element);
    }
    for (const Element& element : document.own)
        elements.push_back(&element);
    return elements;
}

// A request with every element the document reads, each with its
// attributes and, where attributes are read by position, three more.
std::vector<SampleElement> sample(const Document& document)
{
    std::vector<SampleElement> elements;
    int counter = 0;
    for (const Element* element : elementsOf(document)) {
        SampleElement& sampled = elements.emplace_back();
        sampled.name = element->name;
        for (const Attribute& attribute : element->attributes)
            sampled.attributes.push_back({attribute.name, valueFor(attribute.name, counter)});
        if (element->everyAttributeFrom >= 0) {
            for (int i = 1; i <= 3; ++i)
                sampled.attributes.push_back({u"p"_s + QString::number(i), valueFor("p"_L1, counter)});
        }
    }
    return elements;
}

QString requestText(const Document& document, const std::vector<SampleElement>& elements)
{
    QString xml = "<r><method name=\""_L1 + document.method + "\"/>"_L1;
    for (const SampleElement& element : elements) {
        xml += u'<' + element.name;
        for (const SampleAttribute& attribute : element.attributes)
            xml += u' ' + attribute.name + "=\""_L1 + attribute.value + u'"';
        xml += "/>"_L1;
    }
    return xml + "</r>"_L1;
}

// Each way of changing one thing in a sample, with whether the print file
// should change: the request text before and after.
struct Change
{
    QString what;
    QString request;
    bool shows;
};

std::vector<Change> changesOf(const Document& document, Switch switchedOff)
{
    const std::vector<SampleElement> elements = sample(document);
    const std::vector<const Element*> read = elementsOf(document);
    std::vector<Change> changes;
    for (std::size_t e = 0; e < elements.size(); ++e) {
        const Element& element = *read[e];
        const bool elementShows = element.use == Use::Printed
                                  && (!switchedOff || element.switchedBy != switchedOff);
        std::vector<SampleElement> without = elements;
        without.erase(without.begin() + qsizetype(e));
        changes.push_back({u"<"_s + element.name + "> left out"_L1, requestText(document, without), elementShows});

        for (std::size_t a = 0; a < elements[e].attributes.size(); ++a) {
            std::vector<SampleElement> changed = elements;
            changed[e].attributes[a].value += u'7';
            const Attribute* listed = element.attribute(elements[e].attributes[a].name);
            const bool positional = !listed;
            const Switch attributeSwitch = positional ? element.everyAttributeSwitchedBy
                                                      : listed->switchedBy;
            const bool shows = elementShows && (positional || listed->use == Use::Printed)
                               && (!switchedOff || attributeSwitch != switchedOff);
            changes.push_back({u"<"_s + element.name + u' ' + elements[e].attributes[a].name + "> changed"_L1,
                               requestText(document, changed), shows});
        }
        if (element.everyAttributeFrom < 0) {
            std::vector<SampleElement> extended = elements;
            extended[e].attributes.push_back({u"unlisted"_s, u"U1"_s});
            changes.push_back({u"<"_s + element.name + " unlisted> added"_L1, requestText(document, extended), false});
        }
    }

    // Every element some document reads, and a misspelling, where this one
    // reads no such element.
    std::set<QString> others{u"recipe"_s};
    for (const Document& other : all()) {
        for (const Element* element : elementsOf(other))
            others.insert(element->name);
    }
    for (const QString& name : others) {
        if (document.element(name))
            continue;
        std::vector<SampleElement> extended = elements;
        SampleElement& stranger = extended.emplace_back();
        stranger.name = name;
        for (const char* attribute : {"number", "name", "price", "totalPrice", "quantity", "serialnumber", "total"})
            stranger.attributes.push_back({QString::fromLatin1(attribute), u"S1"_s});
        changes.push_back({u"<"_s + name + "> added"_L1, requestText(document, extended), false});
    }
    return changes;
}

void expectChanges(const Document& document, const ZTConfiguration& settings, Switch switchedOff)
{
    const QByteArray original = render(settings, requestText(document, sample(document)));
    for (const Change& change : changesOf(document, switchedOff)) {
        const bool changed = render(settings, change.request) != original;
        EXPECT_EQ(changed, change.shows)
            << document.method.data() << ": " << change.what.toStdString()
            << (switchedOff ? " with " + nameOf(switchedOff).toStdString() + " off" : std::string());
    }
}

TEST(Documents, WhatIsListedAsPrintedPrintsAndNothingElseDoes)
{
    const auto settings = configuration();
    for (const Document& document : all())
        expectChanges(document, *settings, nullptr);
}

TEST(Documents, WhatASwitchLeavesOutDoesNotPrint)
{
    // Each switch that the table names, off in turn.
    std::set<QByteArray> named;
    std::vector<Switch> namedSwitches;
    const auto note = [&](Switch member) {
        if (member && named.insert(nameOf(member)).second)
            namedSwitches.push_back(member);
    };
    for (const Document& document : all()) {
        for (const Element* element : elementsOf(document)) {
            note(element->switchedBy);
            note(element->everyAttributeSwitchedBy);
            for (const Attribute& attribute : element->attributes)
                note(attribute.switchedBy);
        }
    }
    ASSERT_GE(namedSwitches.size(), 12u);
    for (Switch member : namedSwitches) {
        const auto settings = configuration(nameOf(member));
        for (const Document& document : all())
            expectChanges(document, *settings, member);
    }
}

} // namespace
