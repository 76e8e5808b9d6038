#include "catalogue.h"
#include "testsupport.h"

#include <QTranslator>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString catalogue = QStringLiteral(ZENTARO_TRANSLATIONS) + u"/zentaro_it.qm"_s;
const char* const labels[] = {"TOTAL", "Num", "Description", "Price", "Amount", "Serial Number: ",
                              "Payment", "    Amount not paid: ", "CANCELLED DOC SUMMARY", ""};

TEST(Catalogue, DamageIsFoundBeforeTheTranslatorReadsIt)
{
    const QByteArray good = testsupport::readBytes(catalogue);
    ASSERT_TRUE(isSoundCatalogue(good));

    QByteArray badOffset = good;
    badOffset[0x24] = char(0xff); // the first hash entry points past the messages
    QByteArray oddTranslation = good;
    oddTranslation[oddTranslation.indexOf("\x69\x00\x00") + 9] = 0x31; // first translation: odd length
    for (const QByteArray& bad : {QByteArray(), good.first(15), "x" + good.sliced(1), good.chopped(1),
                                  badOffset, oddTranslation})
        EXPECT_FALSE(isSoundCatalogue(bad));

    // Whatever single byte changes, a catalogue that passes is safe to use.
    for (qsizetype i = 0; i < good.size(); ++i) {
        QByteArray changed = good;
        changed[i] = char(~changed[i]);
        if (!isSoundCatalogue(changed))
            continue;
        QTranslator translator;
        if (translator.load(reinterpret_cast<const uchar*>(changed.constData()), int(changed.size())))
            for (const char* label : labels)
                (void)translator.translate("PrinterDriver", label);
    }
}

TEST(Catalogue, ADamagedCatalogueIsReportedAndNotKept)
{
    QTemporaryDir dir;
    const QString damaged = dir.filePath(u"zentaro_xx.qm"_s);
    QByteArray bytes = testsupport::readBytes(catalogue);
    bytes[0x24] = char(0xff);
    ASSERT_TRUE(testsupport::writeBytes(damaged, bytes.toStdString()));

    QTranslator translator;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(loadSoundCatalogue(translator, damaged));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Damaged label catalogue, labels stay untranslated: " + damaged.toStdString() + "\n");
    EXPECT_TRUE(translator.isEmpty());

    EXPECT_TRUE(loadSoundCatalogue(translator, catalogue));
    EXPECT_EQ(translator.translate("PrinterDriver", "Num"), u"Qtà"_s);
}

} // namespace
