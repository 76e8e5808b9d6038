#pragma once

#include <QByteArrayView>
#include <QString>
#include <QTranslator>

class ZTConfiguration;

// Whether a compiled label catalogue (.qm) holds together: every section
// within the file, every entry of the hash table pointing at a message, and
// every message a sequence of fields inside its section, closed by an end
// mark. The toolkit's translator checks a catalogue's outline when it loads
// it but follows the hash table's offsets unchecked when it translates, so
// a damaged catalogue must be caught before it is installed.
bool isSoundCatalogue(QByteArrayView catalogue);

// The translator of printed labels. A catalogue can hold control characters
// in a label that its outline does not show (a damaged or a hostile one);
// they would end a printed line or start a printer command, so they reach
// the paper as blanks, like control characters in request text.
class LabelTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* sourceText, const char* disambiguation = nullptr,
                      int n = -1) const override;
};

// What became of a label catalogue asked for.
enum class CatalogueLoad {
    NoneNamed, // the labels are printed as written, in English
    Loaded,
    Missing,   // reported in one line; the labels stay English
    Damaged,   // reported in one line; the labels stay English
};

// Loads `name` as QTranslator::load(name, directory) does and keeps it only
// when it is sound; a damaged catalogue gets one line on standard output
// and leaves the translator empty. Answers whether a catalogue was kept.
bool loadSoundCatalogue(QTranslator& translator, const QString& name, const QString& directory = {});
// The same, saying what became of it; a missing one is not reported here.
CatalogueLoad loadCatalogue(QTranslator& translator, const QString& name, const QString& directory = {});

// Loads the label catalogue that the configuration's language settings name
// ("zentaro.language.basedir" and "zentaro.language.file"), if it is sound.
// The locale's catalogue ("/" as the file) is not missed under an English
// or C locale, whose labels are the English texts themselves.
CatalogueLoad loadTranslation(QTranslator& translator, const ZTConfiguration& configuration);
