#pragma once

#include "paper.h"

#include <QLatin1StringView>
#include <QString>

#include <vector>

namespace preview {

// What a picture is drawn on: SVG text or a PNG image. Coordinates are
// whole pixels, y downwards.
class Canvas
{
public:
    enum class Ink {
        Desk,       // around the paper
        Paper,
        PaperEdge,
        Text,       // what the printer prints
        Annotation, // the preview's reading of a command
        LineNumber,
        Flag,       // the margin beside a flagged line
        Note,       // what the flag is about
        Overflow,   // behind characters past the paper's edge
        Mark,       // behind characters printed in place of others
        Heading,
    };

    virtual ~Canvas() = default;
    virtual void fill(int x, int y, int width, int height, Ink ink) = 0;
    virtual void horizontalLine(int x1, int x2, int y, Ink ink, bool dashed) = 0;
    // Text on the character grid: `columns` cells wide, its baseline at `baseline`.
    virtual void text(int x, int baseline, const QString& text, Ink ink, qsizetype columns) = 0;
    // Text as a thermal printer prints it: bold, or twice as tall (the
    // baseline is then that of the lower of the two rows it takes).
    virtual void printedText(int x, int baseline, const QString& text, qsizetype columns, bool bold,
                             bool doubleHeight)
    {
        Q_UNUSED(bold);
        Q_UNUSED(doubleHeight);
        this->text(x, baseline, text, Ink::Text, columns);
    }
};

QLatin1StringView colourOf(Canvas::Ink ink);

// Sizes of the character grid, in pixels.
struct Metrics
{
    int charWidth = 9;
    int rowHeight = 20;
    // From a row's top to the baseline of its text.
    int baseline = 15;
};

// One horizontal band of the picture.
struct Band
{
    enum class Kind {
        Title,    // the input's name (and the page)
        Heading,  // above a strip: its document, paper width and code page
        PaperTop, // the blank start of a strip
        Row,
        TallRow,  // a row printed twice as tall
        End,      // the strip's end: cut, or not
        Gap,
        Unplaced, // a finding with no line to stand beside
    };

    Kind kind;
    const Section* section = nullptr;
    const Row* row = nullptr;
    const Flag* flag = nullptr;
    qsizetype number = 0; // a row's printed line number
};

// The picture of a paper: strips of receipt paper one under the other, a
// row per printed line on the character grid, line numbers and a coloured
// margin on the left, notes on flagged lines on the right, characters past
// the paper's edge on a coloured ground.
class Picture
{
public:
    Picture(const Paper& paper, Metrics metrics);

    const Metrics& metrics() const { return grid; }
    int width() const { return pictureWidth; }
    int height(const std::vector<Band>& page) const;
    // The top of band `index` of `page`.
    int top(const std::vector<Band>& page, std::size_t index) const;
    int bandHeight(Band::Kind kind) const;

    // All bands of the paper, the title first.
    std::vector<Band> bands() const;
    // The bands cut into pages no taller than `largestHeight` (unless one
    // band is taller), each page starting with its own title.
    std::vector<std::vector<Band>> pages(int largestHeight) const;

    // Where a row's flag margin is.
    int flagMarginLeft() const { return flagLeft; }
    int flagMarginWidth() const { return flagWidth; }
    // Left edge of the text of every strip.
    int textLeft() const { return textStart; }

    // Draws one page, `pageNumber` of `pageCount`.
    void draw(Canvas& canvas, const std::vector<Band>& page, int pageNumber = 1, int pageCount = 1) const;

private:
    void drawRow(Canvas& canvas, const Band& band, int top) const;
    void drawPicture(Canvas& canvas, const Section& section, const Row& row, int top) const;
    // The width in pixels of a row's picture.
    int pictureWidthOf(const Row& row) const;
    int paperRight(const Section& section) const;
    QString heading(const Section& section) const;

    const Paper& paper;
    Metrics grid;
    int margin = 0;
    int numbersRight = 0;
    int flagLeft = 0;
    int flagWidth = 0;
    int paperLeft = 0;
    int textStart = 0;
    int notesLeft = 0;
    int pictureWidth = 0;
};

// A note for the margin: the notes of a row's flags, shortened to fit.
QString marginNote(const Row& row);
// A finding with no line to stand beside, shortened to fit.
QString unplacedText(const Flag& flag);

} // namespace preview
