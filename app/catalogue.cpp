#include "catalogue.h"

#include "diagnostics.h"
#include "ztconfiguration.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTranslator>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<unsigned char, 16> magic = {0x3c, 0xb8, 0x64, 0x18, 0xca, 0xef, 0x9c, 0x95,
                                                 0xcd, 0x21, 0x1c, 0xbf, 0x60, 0xa1, 0xbd, 0xdd};

// Section tags.
enum : unsigned char {
    Contexts = 0x2f,
    Hashes = 0x42,
    Messages = 0x69,
    NumerusRules = 0x88,
    Dependencies = 0x96,
    Language = 0xa7,
};

// Field tags inside a message.
enum : unsigned char {
    End = 1,
    Translation = 3,
    SourceText = 6,
    Context = 7,
    Comment = 8,
};

// A cursor that never reads past its end.
class Reader
{
public:
    explicit Reader(QByteArrayView bytes)
        : bytes(bytes)
    {
    }

    bool atEnd() const { return position == bytes.size(); }
    qsizetype offset() const { return position; }
    bool seek(qsizetype to)
    {
        position = to;
        return to >= 0 && to <= bytes.size();
    }
    bool byte(unsigned char& value)
    {
        if (bytes.size() - position < 1)
            return false;
        value = static_cast<unsigned char>(bytes[position++]);
        return true;
    }
    bool word(quint32& value)
    {
        if (bytes.size() - position < 4)
            return false;
        value = 0;
        for (int i = 0; i < 4; ++i)
            value = value << 8 | static_cast<unsigned char>(bytes[position++]);
        return true;
    }
    bool skip(quint32 count)
    {
        if (quint64(bytes.size() - position) < count)
            return false;
        position += qsizetype(count);
        return true;
    }
    QByteArrayView rest() const { return bytes.sliced(position); }

private:
    QByteArrayView bytes;
    qsizetype position = 0;
};

// One message: fields until the end mark. Translations are UTF-16 (an even
// length) or, with the length all ones, absent.
bool isSoundMessage(Reader message)
{
    for (;;) {
        unsigned char tag = 0;
        quint32 length = 0;
        if (!message.byte(tag))
            return false;
        switch (tag) {
        case End:
            return true;
        case Translation:
            if (!message.word(length))
                return false;
            if (length == 0xffffffff)
                break;
            if (length % 2 != 0 || !message.skip(length))
                return false;
            break;
        case SourceText:
        case Context:
        case Comment:
            if (!message.word(length) || !message.skip(length))
                return false;
            break;
        default:
            return false; // older field kinds are not written by today's tools
        }
    }
}

} // namespace

bool isSoundCatalogue(QByteArrayView catalogue)
{
    const QByteArrayView head(reinterpret_cast<const char*>(magic.data()), qsizetype(magic.size()));
    if (!catalogue.startsWith(head))
        return false;
    Reader file(catalogue.sliced(magic.size()));
    QByteArrayView hashes;
    QByteArrayView messages;
    while (!file.atEnd()) {
        unsigned char tag = 0;
        quint32 length = 0;
        if (!file.byte(tag) || !file.word(length))
            return false;
        const QByteArrayView section = file.rest().first(qMin<qsizetype>(length, file.rest().size()));
        if (!file.skip(length))
            return false;
        switch (tag) {
        case Hashes:
            hashes = section;
            break;
        case Messages:
            messages = section;
            break;
        case NumerusRules:
        case Language:
            break;
        default:
            // Context tables and dependencies on other catalogues are left
            // to catalogues this program does not read.
            (void)Contexts;
            (void)Dependencies;
            return false;
        }
    }
    // Each entry of the hash table: the hash of a text, and the offset of
    // its message.
    if (hashes.size() % 8 != 0)
        return false;
    Reader table(hashes);
    while (!table.atEnd()) {
        quint32 hash = 0;
        quint32 offset = 0;
        table.word(hash);
        table.word(offset);
        Reader message(messages);
        if (!message.seek(qsizetype(offset)) || !isSoundMessage(message))
            return false;
    }
    return true;
}

QString LabelTranslator::translate(const char* context, const char* sourceText, const char* disambiguation,
                                   int n) const
{
    QString label = QTranslator::translate(context, sourceText, disambiguation, n);
    const auto isControl = [](QChar c) { return c.unicode() < 0x20 || c.unicode() == 0x7f; };
    if (std::any_of(label.cbegin(), label.cend(), isControl))
        std::replace_if(label.begin(), label.end(), isControl, u' ');
    return label;
}

bool loadSoundCatalogue(QTranslator& translator, const QString& name, const QString& directory)
{
    return loadCatalogue(translator, name, directory) == CatalogueLoad::Loaded;
}

CatalogueLoad loadCatalogue(QTranslator& translator, const QString& name, const QString& directory)
{
    if (!translator.load(name, directory)) {
        // The toolkit refuses a file whose outline is broken as it refuses
        // a missing one.
        const QString path = QDir(directory).filePath(name);
        if (!QFileInfo(path).isFile() && !QFileInfo(path + ".qm"_L1).isFile())
            return CatalogueLoad::Missing;
        printDiagnostic({"Damaged label catalogue, labels stay untranslated: ", path.toLocal8Bit()});
        return CatalogueLoad::Damaged;
    }
    QFile file(translator.filePath());
    if (file.open(QIODevice::ReadOnly) && isSoundCatalogue(file.readAll()))
        return CatalogueLoad::Loaded;
    printDiagnostic({"Damaged label catalogue, labels stay untranslated: ",
                     translator.filePath().toLocal8Bit()});
    // Loading a missing name empties the translator.
    (void)translator.load(QString());
    return CatalogueLoad::Damaged;
}

CatalogueLoad loadTranslation(QTranslator& translator, const ZTConfiguration& configuration)
{
    using namespace Qt::StringLiterals;
    const QString base = configuration.getStrValue(u"zentaro.language.basedir"_s);
    const QString file = configuration.getStrValue(u"zentaro.language.file"_s);
    // "/" as the file asks for the catalogue of the system locale in the base
    // folder; any other value is joined to the base as it stands. Without a
    // catalogue the labels stay English.
    // Without a file no catalogue is named, whatever the folder.
    if (file.isEmpty())
        return CatalogueLoad::NoneNamed;
    const bool byLocale = file == "/"_L1;
    const QString name = byLocale ? base + "/zentaro_"_L1 + QLocale::system().name() : base + file;
    const CatalogueLoad load = loadCatalogue(translator, name, byLocale ? u"."_s : QString());
    if (load != CatalogueLoad::Missing)
        return load;
    const QLocale::Language language = QLocale::system().language();
    if (byLocale && (language == QLocale::English || language == QLocale::C))
        return CatalogueLoad::NoneNamed;
    printDiagnostic({"Label catalogue not found, labels stay untranslated: ", name.toLocal8Bit()});
    return CatalogueLoad::Missing;
}
