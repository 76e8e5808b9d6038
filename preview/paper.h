#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

struct RasterImage;

namespace preview {

// Something wrong with a printed line, shown in the picture's margin and
// listed on the terminal.
struct Flag
{
    enum class Kind {
        Wide,        // wider than the paper
        Unprintable, // a character the printer's code page lacks
        Request,     // an element or attribute the document does not read, ...
        Setting,     // a setting that read as 0 or false from text that is neither
        Notice,      // what the print run reports, a section left open, ...
    };

    Kind kind;
    // The whole finding, for the list.
    QString what;
    // A few words for the picture's margin.
    QString note;
    // Where in the request, from 1; 0 when the finding is not the request's.
    qint64 requestLine = 0;
    qint64 requestColumn = 0;
};

// Characters [start, start + length) of a row, shown marked.
struct Mark
{
    qsizetype start;
    qsizetype length;
};

// One line on the paper.
struct Row
{
    enum class Style {
        Paper,      // what the printer prints
        Annotation, // the preview's reading of a command that prints no text of its own
    };

    QString text;
    Style style = Style::Paper;
    // Where the line starts in the print file.
    qint64 offset = 0;
    std::vector<Flag> flags;
    std::vector<Mark> marks;

    // How an ESC/POS printer prints the line.
    bool bold = false;
    bool doubleHeight = false;
    bool centred = false;
    // A band of a picture instead of text: the dot rows [imageTop,
    // imageTop + imageRowsPerLine) of `image`, as tall as a line of text.
    std::shared_ptr<const RasterImage> image;
    int imageTop = 0;
};

// A line of text is 24 dots tall and a character 12 dots wide on the
// thermal printers: a picture is drawn on the character grid at that scale.
inline constexpr int imageRowsPerLine = 24;
inline constexpr int dotsPerCharacter = 12;

// One strip of paper: what one method element (or one "j" of a print file)
// starts.
struct Section
{
    // The document method; empty when not known (a print file).
    QString method;
    int paperWidth = 0;
    QByteArray codePage;
    bool fiscal = false;
    // Read from ESC/POS commands rather than command text.
    bool escPos = false;
    // Closed by its end command, so that the printer cuts the paper.
    bool cut = false;
    std::vector<Row> rows;
};

struct Paper
{
    // The input as named on the command line.
    QString source;
    std::vector<Section> sections;
    // Findings with no printed line to point at (a request that prints nothing).
    std::vector<Flag> unplaced;

    bool isFlagged() const;
    // The first row that starts at or after `offset` in the print file; else
    // the last row; null when nothing is printed.
    Row* rowAt(qint64 offset);
    // Puts a finding that concerns the whole document on its first line.
    void flagStart(const Flag& flag);
    // Calls `visit` with each row and its printed line number, from 1.
    void forEachRow(const std::function<void(const Section&, const Row&, qsizetype number)>& visit) const;
};

// Flags every row of printed text wider than its paper, counting the
// characters as the printer does.
void flagWideRows(Paper& paper);

// A text for the picture, of the same length: control characters are shown
// as their control pictures (U+2400 on), and the characters no XML text can
// hold (unpaired surrogates, U+FFFE, U+FFFF) as the replacement character
// U+FFFD, so that the SVG and HTML pictures stay readable.
QString shownText(QString text);

} // namespace preview
