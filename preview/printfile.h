#pragma once

#include "documentsettings.h"
#include "paper.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace preview {

// What the paper is like from a place in the print file on: a request's
// method element sets it for the section it starts.
struct SectionSetup
{
    qint64 offset = 0;
    QString method;
    int paperWidth = defaultPaperWidth;
    // The print file's bytes from here on are in this code page.
    QByteArray codePage = "UTF-8";
    bool fiscal = false;
    // The print run wrote the document in ESC/POS, in `codePage`; a print
    // file is taken to be ESC/POS when its bytes start with the printer's
    // reset, and its code page is the one its ESC t command names.
    bool escPos = false;
};

// Reads the command text of a print file into strips of paper: the framing
// of printed lines ("..."@) and sections (j, J) is interpreted rather than
// shown, and fiscal command lines are laid out as the fiscal printer prints
// them. `setups` are in the order of their offsets; the first applies from
// the start. Lines that are no command the printer knows are shown as they
// are and flagged, as are characters that could not be decoded and control
// characters.
Paper readPrintFile(const QByteArray& bytes, const std::vector<SectionSetup>& setups, const QString& source);

struct PreviewSettings;
// Draws every section `settings.width` wide, when it names a width.
void applyWidth(std::vector<SectionSetup>& setups, const PreviewSettings& settings);

// Flags the last section when the print file ends inside it: a request
// that broke off leaves it so, and the paper is not cut.
void flagUnclosedEnd(Paper& paper);

// Whether `bytes` look like a request rather than a print file: markup
// after any byte-order mark and blanks.
bool looksLikeRequest(const QByteArray& bytes);

} // namespace preview
