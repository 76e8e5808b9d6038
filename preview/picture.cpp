#include "picture.h"

#include "codepage.h"
#include "rasterlogo.h"

using namespace Qt::StringLiterals;

namespace preview {

namespace {

// Notes longer than this are cut, so that one long finding does not make
// the whole picture wide; the list on the terminal has them in full.
constexpr qsizetype longestNote = 56;
// Lines are drawn up to this many characters: a line of a megabyte would
// make a picture no one could open (the findings give its full length).
constexpr qsizetype widestDrawnLine = 400;

qsizetype drawnLength(const QString& text)
{
    return qMin(printedLength(text), widestDrawnLine);
}

// The text as drawn: control characters as their pictures, cut to the
// widest line drawn.
QString shown(const QString& text)
{
    return shownText(printedLength(text) > widestDrawnLine
                         ? printedLeft(text, widestDrawnLine - 1).toString() + u'\u2026'
                         : text);
}

} // namespace

QLatin1StringView colourOf(Canvas::Ink ink)
{
    switch (ink) {
    case Canvas::Ink::Desk: return "#ebe9e4"_L1;
    case Canvas::Ink::Paper: return "#ffffff"_L1;
    case Canvas::Ink::PaperEdge: return "#c8c5bc"_L1;
    case Canvas::Ink::Text: return "#1a1a1a"_L1;
    case Canvas::Ink::Annotation: return "#2b5d9a"_L1;
    case Canvas::Ink::LineNumber: return "#8a8a8a"_L1;
    case Canvas::Ink::Flag: return "#d0312d"_L1;
    case Canvas::Ink::Note: return "#b0201c"_L1;
    case Canvas::Ink::Overflow: return "#f7c6c1"_L1;
    case Canvas::Ink::Mark: return "#e6cff3"_L1;
    case Canvas::Ink::Heading: return "#555555"_L1;
    }
    return "#000000"_L1;
}

QString unplacedText(const Flag& flag)
{
    // Such findings stand where lines would: they get the room of two notes.
    if (flag.what.size() <= 2 * longestNote)
        return flag.what;
    return flag.what.first(2 * longestNote - 1) + u'\u2026';
}

QString marginNote(const Row& row)
{
    QStringList notes;
    for (const Flag& flag : row.flags)
        notes << flag.note;
    QString note = notes.join("; "_L1);
    if (note.size() > longestNote)
        note = note.first(longestNote - 1) + u'\u2026';
    return note;
}

Picture::Picture(const Paper& paper, Metrics metrics)
    : paper(paper), grid(metrics)
{
    const int cw = grid.charWidth;
    margin = 2 * cw;
    // Line numbers up to 99999, then the flag margin, then the paper.
    numbersRight = margin + 5 * cw;
    flagLeft = numbersRight + cw / 2 + 2;
    flagWidth = qMax(4, cw * 2 / 3);
    paperLeft = flagLeft + flagWidth + cw / 2 + 2;
    textStart = paperLeft + cw;

    int contentRight = textStart + 20 * cw;
    qsizetype noteColumns = 0;
    for (const Section& section : paper.sections) {
        // The cut mark's label stands beside the paper.
        contentRight = qMax(contentRight, paperRight(section) + 5 * cw);
        contentRight = qMax(contentRight, textStart + int(printedLength(heading(section))) * cw);
        for (const Row& row : section.rows) {
            contentRight = qMax(contentRight, textStart + int(drawnLength(row.text)) * cw);
            if (row.image)
                contentRight = qMax(contentRight, textStart + pictureWidthOf(row));
            if (!row.flags.empty())
                noteColumns = qMax(noteColumns, printedLength(marginNote(row)));
        }
    }
    for (const Flag& flag : paper.unplaced)
        contentRight = qMax(contentRight, textStart + int(printedLength(unplacedText(flag))) * cw);
    contentRight = qMax(contentRight, textStart + int(printedLength(paper.source)) * cw);
    notesLeft = contentRight + 2 * cw;
    pictureWidth = noteColumns > 0 ? notesLeft + int(noteColumns) * cw + margin : contentRight + margin;
}

int Picture::paperRight(const Section& section) const
{
    return textStart + qMax(section.paperWidth, 1) * grid.charWidth + grid.charWidth;
}

QString Picture::heading(const Section& section) const
{
    QString text = section.method.isEmpty() ? (section.fiscal ? u"fiscal section"_s : u"section"_s)
                                            : section.method;
    text += u" \u00b7 paper "_s + QString::number(section.paperWidth) + u" \u00b7 "_s
            + QString::fromLatin1(section.codePage);
    if (section.escPos)
        text += u" \u00b7 ESC/POS"_s;
    return text;
}

int Picture::bandHeight(Band::Kind kind) const
{
    switch (kind) {
    case Band::Kind::Title: return 2 * grid.rowHeight;
    case Band::Kind::PaperTop: return grid.rowHeight / 2;
    case Band::Kind::TallRow: return 2 * grid.rowHeight;
    default: return grid.rowHeight;
    }
}

int Picture::height(const std::vector<Band>& page) const
{
    int total = 2 * margin;
    for (const Band& band : page)
        total += bandHeight(band.kind);
    return total;
}

int Picture::top(const std::vector<Band>& page, std::size_t index) const
{
    int y = margin;
    for (std::size_t i = 0; i < index && i < page.size(); ++i)
        y += bandHeight(page[i].kind);
    return y;
}

std::vector<Band> Picture::bands() const
{
    std::vector<Band> all{{Band::Kind::Title}};
    qsizetype number = 0;
    for (const Section& section : paper.sections) {
        if (&section != &paper.sections.front())
            all.push_back({Band::Kind::Gap});
        all.push_back({Band::Kind::Heading, &section});
        all.push_back({Band::Kind::PaperTop, &section});
        for (const Row& row : section.rows) {
            const Band::Kind kind = row.doubleHeight ? Band::Kind::TallRow : Band::Kind::Row;
            all.push_back({kind, &section, &row, nullptr, ++number});
        }
        all.push_back({Band::Kind::End, &section});
    }
    if (!paper.unplaced.empty())
        all.push_back({Band::Kind::Gap});
    for (const Flag& flag : paper.unplaced)
        all.push_back({Band::Kind::Unplaced, nullptr, nullptr, &flag});
    return all;
}

std::vector<std::vector<Band>> Picture::pages(int largestHeight) const
{
    const std::vector<Band> all = bands();
    std::vector<std::vector<Band>> result;
    const Band title = all.front();
    std::vector<Band> page{title};
    int used = height(page);
    for (std::size_t i = 1; i < all.size(); ++i) {
        const int needed = bandHeight(all[i].kind);
        if (used + needed > largestHeight && page.size() > 1) {
            result.push_back(std::move(page));
            page = {title};
            used = height(page);
            // A strip that goes on from the page before goes on at once.
        }
        page.push_back(all[i]);
        used += needed;
    }
    result.push_back(std::move(page));
    return result;
}

void Picture::draw(Canvas& canvas, const std::vector<Band>& page, int pageNumber, int pageCount) const
{
    using Ink = Canvas::Ink;
    const int cw = grid.charWidth;
    const int rh = grid.rowHeight;
    canvas.fill(0, 0, pictureWidth, height(page), Ink::Desk);
    int top = margin;
    for (const Band& band : page) {
        const int bandTop = top;
        top += bandHeight(band.kind);
        switch (band.kind) {
        case Band::Kind::Title: {
            QString title = paper.source;
            if (pageCount > 1)
                title += u" \u00b7 page "_s + QString::number(pageNumber) + " of "_L1 + QString::number(pageCount);
            canvas.text(textStart, bandTop + grid.baseline, title, Ink::Text, printedLength(title));
            break;
        }
        case Band::Kind::Heading: {
            const QString text = heading(*band.section);
            canvas.text(textStart, bandTop + grid.baseline, text, Ink::Heading, printedLength(text));
            break;
        }
        case Band::Kind::PaperTop:
            canvas.fill(paperLeft, bandTop, paperRight(*band.section) - paperLeft, bandHeight(band.kind), Ink::Paper);
            canvas.horizontalLine(paperLeft, paperRight(*band.section), bandTop, Ink::PaperEdge, false);
            break;
        case Band::Kind::Row:
        case Band::Kind::TallRow:
            drawRow(canvas, band, bandTop);
            break;
        case Band::Kind::End: {
            const Section& section = *band.section;
            const int right = paperRight(section);
            canvas.fill(paperLeft, bandTop, right - paperLeft, rh / 2, Ink::Paper);
            if (section.cut) {
                canvas.horizontalLine(paperLeft - cw / 2, right + cw / 2, bandTop + rh / 2, Ink::Heading, true);
                canvas.text(right + cw, bandTop + rh / 2 + grid.baseline / 3, u"cut"_s, Ink::Heading, 3);
            } else {
                canvas.horizontalLine(paperLeft, right, bandTop + rh / 2, Ink::PaperEdge, false);
            }
            break;
        }
        case Band::Kind::Gap:
            break;
        case Band::Kind::Unplaced: {
            canvas.fill(flagLeft, bandTop, flagWidth, rh, Ink::Flag);
            const QString text = unplacedText(*band.flag);
            canvas.text(textStart, bandTop + grid.baseline, text, Ink::Note, printedLength(text));
            break;
        }
        }
    }
}

int Picture::pictureWidthOf(const Row& row) const
{
    if (!row.image)
        return 0;
    // No wider than the widest line drawn.
    return int(qMin(qint64(row.image->width) * grid.charWidth / dotsPerCharacter,
                    qint64(widestDrawnLine) * grid.charWidth));
}

// The dots of a picture's band, each pixel black when the dot it falls on
// is, drawn as runs of black pixels.
void Picture::drawPicture(Canvas& canvas, const Section& section, const Row& row, int top) const
{
    const RasterImage& image = *row.image;
    const int width = pictureWidthOf(row);
    const int paperPixels = qMax(section.paperWidth, 1) * grid.charWidth;
    const int left = textStart + (row.centred ? qMax(0, (paperPixels - width) / 2) : 0);
    for (int y = 0; y < grid.rowHeight; ++y) {
        const int dotRow = row.imageTop + y * imageRowsPerLine / grid.rowHeight;
        if (dotRow >= image.height)
            break;
        int runStart = -1;
        for (int x = 0; x <= width; ++x) {
            const bool black = x < width && image.blackAt(x * dotsPerCharacter / grid.charWidth, dotRow);
            if (black && runStart < 0)
                runStart = x;
            if (!black && runStart >= 0) {
                canvas.fill(left + runStart, top + y, x - runStart, 1, Canvas::Ink::Text);
                runStart = -1;
            }
        }
    }
}

void Picture::drawRow(Canvas& canvas, const Band& band, int top) const
{
    using Ink = Canvas::Ink;
    const int cw = grid.charWidth;
    const int rh = bandHeight(band.kind);
    const Section& section = *band.section;
    const Row& row = *band.row;
    const int right = paperRight(section);
    canvas.fill(paperLeft, top, right - paperLeft, rh, Ink::Paper);
    // A tall row's text and number stand on its lower half.
    const int baseline = top + rh - grid.rowHeight + grid.baseline;

    const QString number = QString::number(band.number);
    canvas.text(numbersRight - int(number.size()) * cw, baseline, number, Ink::LineNumber, number.size());
    if (row.image)
        drawPicture(canvas, section, row, top);

    // Cells are counted in printed characters: a character outside the
    // Basic Multilingual Plane takes one cell, not two.
    const auto cell = [&row](qsizetype index) { return printedLength(QStringView(row.text).first(index)); };
    const qsizetype length = drawnLength(row.text);
    // The printer centres a line on its paper.
    const int textLeft = textStart + (row.centred ? int(qMax<qsizetype>(0, section.paperWidth - length) / 2) * cw : 0);
    if (length > section.paperWidth && row.style == Row::Style::Paper) {
        canvas.fill(textStart + section.paperWidth * cw, top, int(length - section.paperWidth) * cw, rh,
                    Ink::Overflow);
    }
    for (const Mark& mark : row.marks) {
        const qsizetype start = cell(mark.start);
        const qsizetype cells = qMin(cell(mark.start + mark.length), length) - start;
        if (cells <= 0)
            continue;
        canvas.fill(textLeft + int(start) * cw, top + 1, int(cells) * cw, rh - 2, Ink::Mark);
    }
    if (!row.text.isEmpty()) {
        if (row.style == Row::Style::Annotation)
            canvas.text(textLeft, baseline, shown(row.text), Ink::Annotation, length);
        else if (row.bold || row.doubleHeight)
            canvas.printedText(textLeft, baseline, shown(row.text), length, row.bold, row.doubleHeight);
        else
            canvas.text(textLeft, baseline, shown(row.text), Ink::Text, length);
    }
    if (!row.flags.empty()) {
        canvas.fill(flagLeft, top, flagWidth, rh, Ink::Flag);
        const QString note = marginNote(row);
        canvas.text(notesLeft, baseline, note, Ink::Note, printedLength(note));
    }
}

} // namespace preview
